// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/MainWindow.h"

#include "host/CORVChildWindow.h"
#include "host/CORVFileDialog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVUtilityFns.h"
#include "workbench/application/OpenDocuments.h"
#include "workbench/application/WorkbenchOptions.h"

#include <QAction>
#include <QMdiArea>
#include <QMenuBar>
#include <QTimer>

MainWindow::MainWindow(const WorkbenchOptions&)
    : m_pArea(new QMdiArea(this)), m_pDocuments(new OpenDocuments(m_pArea, this))
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(CORVUtilityFns::getAppName());
    m_pArea->setObjectName(QStringLiteral("mdiArea"));
    setCentralWidget(m_pArea);
    CORVChildWindow::setMainWindow(this);
    makeMenus();
    resize(1280, 860);
}

MainWindow::~MainWindow()
{
    // Its windows close while this one is whole.
    delete m_pDocuments;
}

void MainWindow::makeMenus()
{
    QMenu* pFile = menuBar()->addMenu(tr("&File"));
    pFile->addAction(tr("&Open a sequence ..."), this, &MainWindow::askForSequence, QKeySequence::Open);
    pFile->addAction(
        tr("&Close"), this, [this] { m_pDocuments->closeCurrent(); }, QKeySequence::Close);
    pFile->addSeparator();
    pFile->addAction(tr("&Quit"), this, &QWidget::close, QKeySequence(Qt::CTRL + Qt::Key_Q));
}

void MainWindow::askForSequence()
{
    const QString folder = CORVFileDialog::getExistingDirectory(this, tr("Open a sequence"), QString());
    if (!folder.isEmpty()) {
        open(folder);
    }
}

void MainWindow::openLater(const QStringList& paths)
{
    QTimer::singleShot(0, this, [this, paths] {
        for (const QString& path : paths) {
            open(path);
        }
    });
}

bool MainWindow::open(const QString& strPath)
{
    const auto outcome = m_pDocuments->openSequence(strPath);
    if (outcome.document == nullptr) {
        CORVMessageBox::error(this, CORVUtilityFns::getAppName(), outcome.error);
    }
    return outcome.document != nullptr;
}
