// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"
#include "platform/orvutils/LogSinks.h"
#include "workbench/application/MainActions.h"
#include "workbench/application/Session.h"

#include <QHash>
#include <QMainWindow>
#include <QPixmap>
#include <QPointer>
#include <QTimer>
#include <QUndoGroup>
#include <QVector>

#include <memory>

class BatchRun;
class BatchWindow;
class CORVChildWindow;
class LogDock;
class LogFeed;
class OpenDocuments;
class PaletteControl;
class PaletteDock;
class PluginHost;
class ProcessWatch;
class QMdiArea;
class QStackedWidget;
class RunLock;
class StartPage;
class StatusLine;
struct WorkbenchOptions;

// The window of the program: what is open in a work area, the panels of the plug-in and of the log, and the line at the
// lower edge. It asks before it closes, and keeps everything but progress, log and abort out of reach while the plug-in
// runs something.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(const WorkbenchOptions& options);
    ~MainWindow() override;

    // Opens a sequence, a dataset, or asks how to import anything else; tells the user why not.
    bool open(const QString& strPath);
    // One after the other, once the event loop runs.
    void openLater(const QStringList& paths);
    // Opens the paths, or without any what was open at the end of the last run; then offers what a program that was
    // killed had open.
    void start(const QStringList& paths);
    // The session of the system ends. False when the user wants to go on; where nobody may be asked nothing closes, and
    // the next start offers what was open.
    bool endSession(bool bMayAsk);

    OpenDocuments& documents() { return *m_pDocuments; }
    PluginHost& plugin() { return *m_pPlugin; }
    PaletteControl& palette() { return *m_pPalette; }
    BatchRun& batch() { return *m_pBatch; }
    RunLock& runLock() { return *m_pLock; }
    const MainActions& actions() const { return *m_pActions; }

protected:
    bool event(QEvent* pEvent) override;
    void showEvent(QShowEvent* pEvent) override;
    void closeEvent(QCloseEvent* pEvent) override;
    void dragEnterEvent(QDragEnterEvent* pEvent) override;
    void dropEvent(QDropEvent* pEvent) override;

private:
    void makeParts();
    void arrangeParts();
    void connectDocuments();
    void connectPlugin();
    void connectFileActions();
    void connectWindowActions();
    void restorePlaces(bool bFresh);
    void takeUsualPlace();

    void askForSequence();
    void importImages(const QStringList& paths);
    void simulate();
    void unmixMany();
    // Of those folders. False when one stays open.
    bool closeSequences(const QStringList& folders);
    void runBatch(const QStringList& folders, bool bAdaptiveBackground);
    void abortWhatRuns();
    void openNext();
    void takeUp(const Session::Windows& windows);
    // Nothing waits to be opened any more.
    void endOpening();
    Session::Windows openWindows() const;
    void keepSession();
    bool openSequence(const QString& strPath);
    bool openDataset(const QString& strPath);
    void fillRecent();
    void loadFile(const QString& strPath, bool bShow, ESTATUS* pStatus);
    void createSequence(const QStringList& clickInfos);
    void setUnit(const QString& strSequenceId, EDISPLAYUNIT eUnit);
    void choosePluginFolder();

    void takeRecords(const QVector<orv::LogRecord>& records);
    void updateActions();
    void updatePrintKeys();
    // That of the image in front.
    void takeHistory();
    void showHistory();
    void fillWindowMenu();
    void stepTab(int nStep);
    void switchPane();
    void focusWork();
    void printPicture(bool bPreview);
    void copyPicture();
    void showOnPaper(const QPixmap& picture, bool bPreview);
    QPixmap seenPicture() const;
    void showPreferences();
    void showGuide();
    void showAbout();

    // Asks before a window closes; ends what runs first, and closes then.
    bool mayClose(CORVChildWindow* pWindow);
    bool confirms(const QString& strQuestion);
    // Lets the tool offer to keep its result. False when the user goes back, or does so because it could not be kept.
    bool mayLeaveResult(const QString& strQuestion);
    bool closeAll();
    void closeAfterRun();

    std::unique_ptr<MainActions> m_pActions;
    ProcessWatch* m_pProcesses = nullptr;
    LogFeed* m_pFeed = nullptr;
    RunLock* m_pLock = nullptr;
    QStackedWidget* m_pPages = nullptr;
    StartPage* m_pStart = nullptr;
    QMdiArea* m_pArea = nullptr;
    OpenDocuments* m_pDocuments = nullptr;
    PluginHost* m_pPlugin = nullptr;
    PaletteDock* m_pPaletteDock = nullptr;
    PaletteControl* m_pPalette = nullptr;
    BatchRun* m_pBatch = nullptr;
    QPointer<BatchWindow> m_pBatchWindow; // of the last batch
    LogDock* m_pLogDock = nullptr;
    StatusLine* m_pStatus = nullptr;
    Session m_session;
    Session::Windows m_abandoned;   // of a program that was killed, until the user was asked
    QHash<QString, QRect> m_places; // of windows of the last session that are about to open, by their folders
    QStringList m_gone;             // folders of it that are no sequences any more
    QString m_strLastError;         // of the log
    QUndoGroup m_histories;         // of the windows of images
    QStringList m_toOpen;
    QTimer m_opening; // of the next of these
    QTimer m_closing;
    QList<QPointer<QWidget>> m_toClose; // after the run; this window among them for the program
    bool m_bPictureTaken = false;       // the plug-in has answered with a picture
    bool m_bUsualPlace = false;         // the panels get their usual size when they are first shown
    QPointer<QWidget> m_pPanelFocus;    // where the focus was last in the panel and in the work area
    QPointer<QWidget> m_pWorkFocus;
};
