// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/SimulateDialog.h"

#include "host/CORVFileDialog.h"
#include "workbench/application/elapsedText.h"
#include "workbench/application/simulateCall.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int sizes[] = {128, 256, 512, 1024};
constexpr int standardSize = 256;
constexpr int patience = 5000; // milliseconds that the program has to clean up after an abort

} // namespace

SimulateDialog::SimulateDialog(const QString& strParentFolder, const QString& strProgram, QWidget* pParent)
    : QDialog(pParent), m_strProgram(strProgram), m_pKind(new QComboBox(this)), m_pSize(new QComboBox(this)),
      m_pFolder(new QLineEdit(this)), m_pBrowse(new QPushButton(tr("&Browse ..."), this)), m_pMessage(new QLabel(this)),
      m_pBar(new QProgressBar(this)), m_pStart(nullptr), m_pCancel(nullptr)
{
    setObjectName(QStringLiteral("simulateDialog"));
    setWindowTitle(tr("Simulate a mouse"));
    makeForm(strParentFolder);
    makeProgress();
    connect(m_pKind, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &SimulateDialog::proposeFolder);
    connect(m_pBrowse, &QPushButton::clicked, this, &SimulateDialog::chooseFolder);
    connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this, &SimulateDialog::finished);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError eError) {
        if (eError == QProcess::FailedToStart) {
            fail(tr("%1 cannot be started: %2").arg(m_strProgram, m_process.errorString()));
        }
    });
    m_tick.setInterval(200);
    connect(&m_tick, &QTimer::timeout, this, [this] {
        m_pMessage->setText(
            (m_bAborted ? tr("Aborting...  %1") : tr("Simulating  %1")).arg(elapsedText(m_since.elapsed())));
    });
    setRunning(false);
}

SimulateDialog::~SimulateDialog()
{
    m_process.disconnect(this);
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        if (!m_process.waitForFinished(patience)) {
            m_process.kill();
            m_process.waitForFinished(patience);
        }
    }
}

void SimulateDialog::makeForm(const QString& strParentFolder)
{
    auto* pForm = new QFormLayout;
    m_pKind->setObjectName(QStringLiteral("simulateKind"));
    for (const auto& kind : simulateCall::kinds()) {
        m_pKind->addItem(kind.text, kind.word);
    }
    m_pSize->setObjectName(QStringLiteral("simulateSize"));
    for (const int nSize : sizes) {
        m_pSize->addItem(tr("%1 x %1 pixels").arg(nSize), nSize);
    }
    m_pSize->setCurrentIndex(m_pSize->findData(standardSize));
    m_pFolder->setObjectName(QStringLiteral("simulateFolder"));
    m_pFolder->setMinimumWidth(fontMetrics().averageCharWidth() * 38);
    m_pBrowse->setObjectName(QStringLiteral("simulateBrowse"));
    m_pBrowse->setAutoDefault(false);
    auto* pRow = new QHBoxLayout;
    pRow->addWidget(m_pFolder, 1);
    pRow->addWidget(m_pBrowse);
    pForm->addRow(tr("&Kind:"), m_pKind);
    pForm->addRow(tr("Si&ze:"), m_pSize);
    auto* pLabel = new QLabel(tr("New &folder:"), this);
    pLabel->setBuddy(m_pFolder);
    pForm->addRow(pLabel, pRow);
    auto* pLayout = new QVBoxLayout(this);
    pLayout->addLayout(pForm);
    m_strProposed = strParentFolder;
    m_pFolder->setText(QDir::toNativeSeparators(simulateCall::freeFolder(strParentFolder, QStringLiteral("epi"))));
    m_strProposed = m_pFolder->text();
}

void SimulateDialog::makeProgress()
{
    m_pMessage->setObjectName(QStringLiteral("simulateMessage"));
    m_pMessage->setTextFormat(Qt::PlainText);
    m_pMessage->setWordWrap(true);
    m_pMessage->setMinimumHeight(m_pMessage->fontMetrics().lineSpacing() * 2);
    m_pMessage->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    m_pBar->setObjectName(QStringLiteral("simulateBar"));
    m_pBar->setAccessibleName(tr("Progress"));
    m_pBar->setTextVisible(false);
    auto* pButtons = new QDialogButtonBox(this);
    m_pStart = pButtons->addButton(tr("&Simulate"), QDialogButtonBox::AcceptRole);
    m_pStart->setObjectName(QStringLiteral("simulateStart"));
    m_pStart->setDefault(true);
    m_pCancel = pButtons->addButton(QDialogButtonBox::Cancel);
    m_pCancel->setObjectName(QStringLiteral("simulateCancel"));
    connect(m_pStart, &QPushButton::clicked, this, &SimulateDialog::start);
    connect(m_pCancel, &QPushButton::clicked, this, &SimulateDialog::reject);
    layout()->addWidget(m_pBar);
    layout()->addWidget(m_pMessage);
    layout()->addWidget(pButtons);
}

QString SimulateDialog::folder() const
{
    return QDir::fromNativeSeparators(m_pFolder->text().trimmed());
}

// A name that the user has typed stays.
void SimulateDialog::proposeFolder()
{
    if (m_pFolder->text() != m_strProposed) {
        return;
    }
    m_strProposed = QDir::toNativeSeparators(
        simulateCall::freeFolder(QFileInfo(folder()).path(), m_pKind->currentData().toString()));
    m_pFolder->setText(m_strProposed);
}

void SimulateDialog::chooseFolder()
{
    const QString parent =
        CORVFileDialog::getExistingDirectory(this, tr("Where to put the simulated mouse"), QFileInfo(folder()).path());
    if (!parent.isEmpty()) {
        m_strProposed = QDir::toNativeSeparators(simulateCall::freeFolder(parent, m_pKind->currentData().toString()));
        m_pFolder->setText(m_strProposed);
    }
}

void SimulateDialog::start()
{
    if (folder().isEmpty()) {
        fail(tr("Please name a folder for the new sequence."));
        return;
    }
    m_bAborted = false;
    m_since.start();
    m_pMessage->clear();
    setRunning(true);
    m_process.start(m_strProgram, simulateCall::arguments(folder(), m_pKind->currentData().toString(),
                                                          m_pSize->currentData().toInt(), false));
}

void SimulateDialog::finished(int nStatus, QProcess::ExitStatus eEnd)
{
    setRunning(false);
    if (eEnd == QProcess::NormalExit && nStatus == 0) {
        accept();
    } else if (m_bAborted) {
        fail(tr("Aborted; nothing was written."));
    } else {
        const QString text = simulateCall::complaint(m_process.readAllStandardError());
        fail(!text.isEmpty() ? text : tr("The simulation ended without a word (%1).").arg(nStatus));
    }
}

void SimulateDialog::reject()
{
    if (m_process.state() == QProcess::NotRunning) {
        QDialog::reject();
        return;
    }
    m_bAborted = true;
    m_pCancel->setEnabled(false);
    m_process.terminate();
}

void SimulateDialog::setRunning(bool bRunning)
{
    for (QWidget* pWidget :
         {static_cast<QWidget*>(m_pKind), static_cast<QWidget*>(m_pSize), static_cast<QWidget*>(m_pFolder),
          static_cast<QWidget*>(m_pBrowse), static_cast<QWidget*>(m_pStart)}) {
        pWidget->setEnabled(!bRunning);
    }
    m_pCancel->setEnabled(true);
    m_pCancel->setText(bRunning ? tr("&Abort") : tr("Cancel"));
    m_pBar->setRange(0, bRunning ? 0 : 1);
    m_pBar->setVisible(bRunning);
    if (bRunning) {
        m_tick.start();
    } else {
        m_tick.stop();
    }
}

void SimulateDialog::fail(const QString& strReason)
{
    setRunning(false);
    m_pMessage->setText(strReason);
    m_pFolder->setFocus();
}
