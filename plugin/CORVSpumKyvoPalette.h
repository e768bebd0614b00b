// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/ui_CORVSpumKyvoPalette.h"

#include "engine/runEngine.h"
#include "host/orv_types.h"
#include "spectra/KeyPair.h"

#include <QList>
#include <QMap>
#include <QPixmap>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QWidget>

#include <functional>
#include <memory>

class AnswerByNumber;
class ComboResultsList;
class CORVDataset;
class CORVResultsTabControl;
class CORVSequenceDataset;
class CORVSpumKyvo;
class JobThread;
class QHeaderView;
class QMenu;
class SavedResults;
class SavedResultsOwner;
class SpectrumPlotParams;
struct EngineAnswer;
struct ReportRequest;
struct downloaded_save_data;

// The tool palette: the images of the current sequence to choose from, the method and the start of an analysis on one
// tab, the properties of the result and the saved results on the other. Owns one engine for each sequence that it has
// seen and keeps which one is current; the host tells it of sequences, and it runs the loop of a run.
//
// Engines that are left when it goes are not deleted with it: the host closes all sequences before.
class CORVSpumKyvoPalette : public QWidget, public Ui::CORVSpumKyvoPalette
{
    Q_OBJECT

public:
    explicit CORVSpumKyvoPalette(QWidget* pParent = nullptr);
    ~CORVSpumKyvoPalette() override;

    // A line of progress in the log.
    virtual void showStatus(QString strText);
    // Shows the properties of the current engine's result.
    virtual void fillResultsTree();
    // Asks the user to keep a result that is about to be lost; false when they backed out. See SavedResults.
    virtual bool askToSaveResults(bool bCanCancel);
    // Whether two images at least are ticked.
    virtual bool hasEnoughSelected();
    virtual bool renameResult();

    // Lets the user choose the spectra of a batch. Backing out ends the host's batch.
    void setUpBatch();
    void endBatch();
    // The filters of the spectra that were chosen for a batch.
    const QStringList& batchExcitation() const { return m_batchExcitation; }
    const QStringList& batchEmission() const { return m_batchEmission; }

    // Milliseconds for which work beside a run holds the events up before it shows itself and locks what is around it;
    // 50 at the start. For sequences that come from now on.
    void setPatience(int nMilliseconds) { m_nPatience = nMilliseconds; }

    // Null before the first sequence, and after one that cannot be analysed.
    CORVSpumKyvo* engine() const { return m_pEngine; }

public Q_SLOTS:
    // Keeps the regions of interest of a map's dataset, which is about to close, with the result that it belongs to.
    void saveROIsFromClosingResultDataset(CORVDataset* pDataset);
    void setInitialTab();
    // Takes what is ticked as the selection; one that cannot be analysed is refused in a box, and the last used one
    // comes back.
    void onChangeWLSelection();
    virtual void onDatasetChanged(CORVDataset* pDataset);
    virtual void onSequenceChanged(CORVSequenceDataset* pSequenceDataset);
    // The sequence's engine goes, with its windows.
    void onCloseSequenceDataset(CORVSequenceDataset* pSeqDataset);
    void onClickUnmixSpectra();
    virtual void onClickLoadResults();
    virtual void onClickDeleteResults();
    virtual void onClickSaveResults();
    virtual void onTabChange(int nIndex);
    void onClickHHeader(int section);
    void onClickVHeader(int section);
    virtual void onChangeResultsName(QString str);
    // Return renames and Escape restores the name of a result. No other key goes anywhere.
    void keyPressEvent(QKeyEvent* event) override;
    virtual void setBinningChanged(bool bValue);
    void setSequenceValidity(bool bValid);
    // Whether the host shows the palette.
    bool getSequenceValidity();
    // Makes the sequence the current one and reads it anew. During a run nothing changes: the palette is invalid, and
    // comes back to the sequence afterwards.
    void updateProperties(CORVSequenceDataset* pSeqDataset);
    // The toolbars of the windows have their own buttons for it.
    void onClickPrintButtons();
    void onMenuActivated();
    virtual void onMouseClicked(QPoint pos);
    void exportSpUnmixResults();
    void writeSpUnmixResultsToFile(QString strSep, QString strFilePath);
    void CopyToClipboard(QString strTabName);
    QPixmap getPrintPreviewPixmap();
    // There is nothing that only advanced users see.
    virtual void advanced_mode_options(bool opt);
    void askToSaveExistingResults();
    // Makes the table of images, all ticked.
    void initializeUI();
    // Ticks what is selected and offers the methods.
    void updateUI();
    void onRunUnmixing();
    // Whoever backs out finds the palette as it was.
    void onCancelUnmixing();
    void onRunPCA();
    void onAxisTypeChanged(int nIndex);

Q_SIGNALS:
    void updateValidity(QWidget* pWidget, bool bVisible);
    void changeSequenceWindowUnit(const QString& strSeqId, EDISPLAYUNIT eUnit);
    void createSpumKyvoSequence(QStringList paths, bool bShow);
    void loadSpumResult(QString strFilePath, bool bShow, ESTATUS* pStatus, downloaded_save_data* pDownloadData);
    void loadSpumResult(QString strFilePath, bool bShow, ESTATUS* pStatus);
    void askToSaveExistingResult();
    void printPixmap(QPixmap pixmap);
    // False keeps everything but the abort of a run out of reach, true gives it back.
    void restoreWindows(bool bValue);
    void signalLoadBrowseWindow(QList<QString> excitationList, QList<QString> emissionList);

protected:
    virtual void initPalette();
    void changeEvent(QEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

protected Q_SLOTS:
    virtual void languageChange();
    void onSignalLoadFile(QString strFilePath, bool bShow, ESTATUS* pStatus, downloaded_save_data* pDownloadData);
    void onSignalLoadFile(QString strFilePath, bool bShow, ESTATUS* pStatus);
    void onSignalcreateSpumKyvoSequence(QStringList paths, bool bShow);
    void onSignalprintPixmap(QPixmap pixmap);

private:
    class ResultsOwner;

    // Steps of initPalette().
    std::unique_ptr<SavedResultsOwner> makeResultsOwner();
    void connectControls();
    void makeResultsMenu();

    // Steps of updateProperties().
    void showSequence(CORVSequenceDataset& sequence);
    bool makeEngineCurrent(CORVSequenceDataset& sequence);
    CORVSpumKyvo* makeEngine(const QString& strId);
    void setCurrentEngine(CORVSpumKyvo* pEngine);
    void dropSequence(CORVSequenceDataset& sequence);
    void fillAxisTypes();

    // The table of images.
    int rowNames() const;
    void setRowText(int nRow);
    KeyPair pairAt(int nRow, int nColumn) const;
    void addCell(int nRow, int nColumn);
    void orderTabStops();
    // Unticks the boxes of a header's line when any is ticked, and ticks them otherwise; nothing for a line that is not
    // there.
    void toggleLine(QHeaderView& header, int nSection);

    // A run, and what surrounds it whichever way it ends.
    CORVSpumKyvo* engineToRun();
    RunOutcome runLocked(CORVSpumKyvo& engine, RunSteps steps);
    void lock();
    void unlock();
    // Lets the thread end, for which m_pRunning is the engine; after `nPatience` milliseconds nothing but the abort is
    // within reach. Where the palette has gone meanwhile nothing of it is touched any more.
    void doJob(CORVSpumKyvo& engine, JobThread& job, const QString& strMessage, int nPatience);
    // What is to be said against the result of a run, among the result's properties. False when the palette has gone
    // meanwhile.
    bool lookForWarnings(CORVSpumKyvo& engine);
    // The result on screen is one of this session, to be saved.
    void showNewResult();
    // The engine's cube is being filled on this thread, ahead of a run.
    void onFillingBegins(CORVSpumKyvo& engine);
    void onFillingEnds(CORVSpumKyvo& engine, bool bAborted);
    // An analysis has come as far as it goes by itself: to its result, to what a window waits for, or to a refusal.
    void onAnalysisLeft();
    void showOutcome();
    // What waited for the end of a run.
    void finishWaiting();

    void giveBatchSpectra();
    void processBatchSequence(CORVSequenceDataset& sequence);
    bool keepBatchResult(CORVSequenceDataset& sequence);

    void clearResultsTree();
    QStringList resultTitles() const;
    QVector<QStringList> resultRows(bool bSelectedOnly) const;
    QImage pictureOfTab(const QString& strTabName) const;
    // Asks for a folder and writes the files of the result on screen into it, a page for a browser among them.
    void onClickWriteReport();
    // Meanwhile, as in a run, nothing but the abort is within reach.
    void writeReport(CORVSpumKyvo& engine, const ReportRequest& request);

    // Refines the result of a run by number, as in a run with nothing but the abort within reach, or brings its first
    // answer back.
    void onClickRefine();
    void takeRefined(CORVSpumKyvo& engine, AnswerByNumber& answer, const EngineAnswer& refined);
    // False, told in the log, when it throws.
    bool tryToShow(const std::function<void()>& show);
    // Null for an engine without windows.
    AnswerByNumber* answerByNumber() const;
    void updateRefineButton();

    bool m_bBinningChanged = false;
    CORVSpumKyvo* m_pEngine = nullptr;
    QMap<QString, CORVSpumKyvo*> m_engines; // by sequence id; owned
    bool m_bSequenceValid = false;
    bool m_bPropertiesSeen = false;
    QList<KeyPair> m_selection; // what is ticked
    int m_eAxis = 0;
    QList<SpectrumPlotParams*> m_batchSpectra; // owned
    QStringList m_batchExcitation;
    QStringList m_batchEmission;
    // Of the batch under way the last: its host may announce it again, before its window has closed.
    QPointer<CORVSequenceDataset> m_pBatchSequence;
    std::unique_ptr<CORVResultsTabControl> m_pResultsTab;
    std::unique_ptr<ComboResultsList> m_pResultsList;
    std::unique_ptr<SavedResultsOwner> m_pResultsOwner;
    std::unique_ptr<SavedResults> m_pResults;
    QMenu* m_pResultsMenu = nullptr;

    CORVSpumKyvo* m_pRunning = nullptr;       // from the announcement of a run to the end of what follows it
    JobThread* m_pJob = nullptr;              // borrows m_pRunning, instead of a run
    int m_nPatience = 50;                     // most of what is to be done is over by then
    bool m_bLocked = false;                   // the host's windows are out of reach
    bool m_bUpdating = false;                 // updateProperties() is under way
    QPointer<CORVSequenceDataset> m_pWaiting; // announced meanwhile
    bool m_bRunningClosed = false;            // the sequence of the run was closed meanwhile
    bool m_bAborted = false;                  // the last run was
};
