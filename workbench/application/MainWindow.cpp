// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/MainWindow.h"

#include "host/CORVLog.h"
#include "host/CORVPreference.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVSettings.h"
#include "host/CORVUtilityFns.h"
#include "workbench/application/BatchRun.h"
#include "workbench/application/BatchWindow.h"
#include "workbench/application/LogDock.h"
#include "workbench/application/LogFeed.h"
#include "workbench/application/LogModel.h"
#include "workbench/application/OpenDocuments.h"
#include "workbench/application/PaletteControl.h"
#include "workbench/application/PaletteDock.h"
#include "workbench/application/PluginHost.h"
#include "workbench/application/ProcessWatch.h"
#include "workbench/application/RunLock.h"
#include "workbench/application/StartPage.h"
#include "workbench/application/StatusLine.h"
#include "workbench/application/WorkbenchOptions.h"
#include "workbench/application/datasetKeeper.h"
#include "workbench/application/pluginFile.h"
#include "workbench/application/recentPaths.h"
#include "workbench/application/settingNames.h"
#include "workbench/application/windowPlaces.h"

#include <QAction>
#include <QApplication>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QSessionManager>
#include <QShowEvent>
#include <QStackedWidget>
#include <QStatusTipEvent>
#include <QUndoStack>

namespace {

constexpr QSize usualSize(1280, 860);
constexpr int logHeight = 160;
constexpr int panelWidth = 340;

} // namespace

MainWindow::MainWindow(const WorkbenchOptions& options) : m_session(*CORVPreference::getSettings())
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(CORVUtilityFns::getAppName());
    setAcceptDrops(true);
    setDockOptions(AnimatedDocks | AllowTabbedDocks | AllowNestedDocks);
    CORVChildWindow::setMainWindow(this);
    makeParts();
    arrangeParts();
    connectDocuments();
    connectPlugin();
    connectFileActions();
    connectWindowActions();
    restorePlaces(options.freshPlaces);
    fillRecent();
    const QString setting = CORVPreference::getSettings()->value(settingNames::pluginFolder()).toString();
    m_pPalette->load(pluginFile::folders(options.pluginFolder, setting, QCoreApplication::applicationDirPath()));
    updateActions();
}

MainWindow::~MainWindow()
{
    // What is open closes, and the plug-in hears of it, while this window is whole. The palette goes with the plug-in.
    m_pDocuments->disconnect(this);
    qApp->disconnect(this);
    delete m_pBatchWindow;
    delete m_pBatch;
    delete m_pDocuments;
    delete m_pPalette;
    delete m_pPlugin;
    CORVChildWindow::setMainWindow(nullptr);
}

void MainWindow::makeParts()
{
    m_pActions = std::make_unique<MainActions>(*this);
    m_pProcesses = new ProcessWatch(this);
    m_pFeed = new LogFeed(this);
    m_pLock = new RunLock(this);
    m_pPages = new QStackedWidget(this);
    m_pStart = new StartPage(m_pActions->open, m_pActions->import, m_pActions->simulate, m_pPages);
    m_pArea = new QMdiArea(m_pPages);
    m_pDocuments = new OpenDocuments(m_pArea, this);
    m_pPlugin = new PluginHost(this);
    m_pPaletteDock = new PaletteDock(this);
    m_pLogDock = new LogDock(this);
    m_pStatus = new StatusLine(m_pProcesses, this);
    m_pPalette =
        new PaletteControl({*m_pPlugin, *m_pPaletteDock, *m_pDocuments, *m_pLock, *m_pProcesses, *m_pFeed}, this);
    m_pBatch = new BatchRun({*m_pDocuments, *m_pPlugin, *m_pPalette, *m_pLock, *m_pFeed}, this);
}

void MainWindow::arrangeParts()
{
    m_pPages->setObjectName(QStringLiteral("workPages"));
    m_pArea->setObjectName(QStringLiteral("mdiArea"));
    m_pArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_pArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_pPages->addWidget(m_pStart);
    m_pPages->addWidget(m_pArea);
    setCentralWidget(m_pPages);
    addDockWidget(Qt::RightDockWidgetArea, m_pPaletteDock);
    addDockWidget(Qt::BottomDockWidgetArea, m_pLogDock);
    // The palette is high, the log wide.
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    resizeDocks({m_pLogDock}, {logHeight}, Qt::Vertical);
    m_pLogDock->hide();
    setStatusBar(m_pStatus);
    m_pActions->viewMenu->addAction(m_pPaletteDock->toggleViewAction());
    m_pActions->viewMenu->addAction(m_pLogDock->toggleViewAction());
    m_pLogDock->toggleViewAction()->setShortcut(Qt::CTRL + Qt::Key_L);
    m_pLock->addWidget(m_pPages);
    m_pLock->addWidget(m_pPaletteDock);
    m_pLock->addWidget(menuBar());
}

void MainWindow::connectDocuments()
{
    m_pDocuments->setClosingQuestion([this](CORVChildWindow* pWindow) { return mayClose(pWindow); });
    connect(m_pDocuments, &OpenDocuments::currentChanged, this, &MainWindow::updateActions);
    connect(m_pDocuments, &OpenDocuments::tabChanged, this, &MainWindow::updateActions);
    connect(m_pDocuments, &OpenDocuments::readOut, m_pStatus, &StatusLine::showReadOut);
    // A view that goes, or comes behind another, is not told that the pointer has left it.
    connect(m_pDocuments, &OpenDocuments::currentChanged, m_pStatus, [this] { m_pStatus->showReadOut(QString()); });
    connect(m_pDocuments, &OpenDocuments::tabChanged, m_pStatus, [this] { m_pStatus->showReadOut(QString()); });
    connect(m_pDocuments, &OpenDocuments::currentChanged, this, &MainWindow::keepSession);
    connect(m_pFeed, &LogFeed::arrived, this, &MainWindow::takeRecords);
    connect(m_pLock, &RunLock::changed, this, &MainWindow::updateActions);
    connect(m_pLock, &RunLock::focusMissing, this, &MainWindow::focusWork);
    connect(qApp, &QApplication::focusChanged, this, &MainWindow::updatePrintKeys);
    // The usual way would close floating panels first, and they would be gone at the next start.
    QGuiApplication::setFallbackSessionManagementEnabled(false);
    connect(qApp, &QGuiApplication::commitDataRequest, this, [this](QSessionManager& manager) {
        if (!endSession(manager.allowsInteraction())) {
            manager.cancel();
        }
    });
}

void MainWindow::connectPlugin()
{
    connect(m_pPaletteDock, &PaletteDock::otherFolderWanted, this, &MainWindow::choosePluginFolder);
    connect(m_pPlugin, &PluginHost::loadFileWanted, this, &MainWindow::loadFile);
    connect(m_pPlugin, &PluginHost::sequenceWanted, this, &MainWindow::createSequence);
    connect(m_pPlugin, &PluginHost::unitWanted, this, &MainWindow::setUnit);
    connect(m_pPlugin, &PluginHost::printWanted, this, [this](const QPixmap& picture) { showOnPaper(picture, false); });
    connect(m_pPlugin, &PluginHost::previewWanted, this,
            [this](const QPixmap& picture) { showOnPaper(picture, true); });
    connect(m_pPlugin, &PluginHost::validityTold, this, &MainWindow::updateActions);
}

void MainWindow::connectFileActions()
{
    const MainActions& actions = *m_pActions;
    connect(actions.open, &QAction::triggered, this, &MainWindow::askForSequence);
    connect(actions.import, &QAction::triggered, this, [this] { importImages({}); });
    connect(actions.simulate, &QAction::triggered, this, &MainWindow::simulate);
    connect(actions.batch, &QAction::triggered, this, &MainWindow::unmixMany);
    connect(actions.close, &QAction::triggered, this, [this] { m_pDocuments->closeCurrent(); });
    connect(actions.closeAll, &QAction::triggered, this, &MainWindow::closeAll);
    connect(actions.saveImage, &QAction::triggered, this,
            [this] { datasetKeeper::save(this, *m_pDocuments->currentDataset()); });
    connect(actions.print, &QAction::triggered, this, [this] { printPicture(false); });
    connect(actions.preview, &QAction::triggered, this, [this] { printPicture(true); });
    connect(actions.preferences, &QAction::triggered, this, &MainWindow::showPreferences);
    connect(actions.quit, &QAction::triggered, this, &QWidget::close);
    connect(actions.undo, &QAction::triggered, &m_histories, &QUndoGroup::undo);
    connect(actions.redo, &QAction::triggered, &m_histories, &QUndoGroup::redo);
    connect(&m_histories, &QUndoGroup::indexChanged, this, &MainWindow::showHistory);
    connect(&m_histories, &QUndoGroup::activeStackChanged, this, &MainWindow::showHistory);
    connect(actions.copyPicture, &QAction::triggered, this, &MainWindow::copyPicture);
    connect(actions.guide, &QAction::triggered, this, &MainWindow::showGuide);
    connect(actions.about, &QAction::triggered, this, &MainWindow::showAbout);
    connect(m_pStart, &StartPage::recentChosen, this, &MainWindow::open);
    for (QTimer* pTimer : {&m_opening, &m_closing}) {
        pTimer->setSingleShot(true);
    }
    connect(&m_opening, &QTimer::timeout, this, &MainWindow::openNext);
    connect(&m_closing, &QTimer::timeout, this, &MainWindow::closeAfterRun);
}

void MainWindow::connectWindowActions()
{
    const MainActions& actions = *m_pActions;
    connect(actions.switchPane, &QAction::triggered, this, &MainWindow::switchPane);
    connect(actions.nextTab, &QAction::triggered, this, [this] { stepTab(1); });
    connect(actions.previousTab, &QAction::triggered, this, [this] { stepTab(-1); });
    connect(actions.fullScreen, &QAction::toggled, this, [this](bool bFull) {
        setWindowState(bFull ? windowState() | Qt::WindowFullScreen : windowState() & ~Qt::WindowFullScreen);
    });
    connect(actions.tile, &QAction::triggered, m_pArea, &QMdiArea::tileSubWindows);
    connect(actions.cascade, &QAction::triggered, m_pArea, &QMdiArea::cascadeSubWindows);
    connect(actions.nextWindow, &QAction::triggered, m_pArea, &QMdiArea::activateNextSubWindow);
    connect(actions.previousWindow, &QAction::triggered, m_pArea, &QMdiArea::activatePreviousSubWindow);
    connect(actions.windowMenu, &QMenu::aboutToShow, this, &MainWindow::fillWindowMenu);
}

void MainWindow::restorePlaces(bool bFresh)
{
    const CORVSettings& settings = *CORVPreference::getSettings();
    m_pLogDock->restore(settings);
    if (bFresh || !windowPlaces::restore(settings, *this)) {
        takeUsualPlace();
    }
    // A panel that was closed by mistake is in the menu; a window that was left on the whole screen is none any more.
    m_pActions->fullScreen->setChecked(isFullScreen());
}

// As large as the screen allows where that is small; the panel takes no more than it needs from what is looked at.
void MainWindow::takeUsualPlace()
{
    const QScreen* pScreen = QGuiApplication::primaryScreen();
    const QSize room = pScreen != nullptr ? pScreen->availableSize() : usualSize;
    resize(usualSize.boundedTo(room));
    if (size() != usualSize) {
        setWindowState(windowState() | Qt::WindowMaximized);
    }
    m_bUsualPlace = true;
}

bool MainWindow::event(QEvent* pEvent)
{
    // The views of a tool tell in this way what lies below the pointer, with an empty text when it lies nowhere.
    if (pEvent->type() == QEvent::StatusTip && m_pStatus != nullptr) {
        m_pStatus->showReadOut(static_cast<QStatusTipEvent*>(pEvent)->tip());
        return true;
    }
    return QMainWindow::event(pEvent);
}

void MainWindow::showEvent(QShowEvent* pEvent)
{
    QMainWindow::showEvent(pEvent);
    if (m_bUsualPlace) {
        m_bUsualPlace = false;
        resizeDocks({m_pPaletteDock}, {qMin(width() / 4, panelWidth)}, Qt::Horizontal);
    }
}

void MainWindow::takeRecords(const QVector<orv::LogRecord>& records)
{
    m_pLogDock->append(records);
    for (const orv::LogRecord& record : records) {
        const int nLevel = LogModel::levelOf(record);
        if (nLevel == CORVLOG_WARNING || nLevel == CORVLOG_ERROR) {
            m_pStatus->showAttention(nLevel, record.m_strMessage);
            m_strLastError = nLevel == CORVLOG_ERROR ? record.m_strMessage : m_strLastError;
        }
    }
}
