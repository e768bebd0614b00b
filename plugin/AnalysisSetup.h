// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AnalysisWindows.h"
#include "plugin/AnswerByNumber.h"
#include "plugin/fillCube.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

class ConsoleResultView;
class CORVDataset;
class CORVSpumKyvo;
class SpectrumPlotParams;

// The windows of one engine in the window of its sequence, and the steps that lead from the choice of images to a run.
// Windows are made on first use; one that died is made anew, connected as before. A window that is gone in the middle
// of a step ends what has to do with it, and an engine that is gone ends the step.
class AnalysisSetup : public QObject, public AnalysisWindows
{
    Q_OBJECT

public:
    // The engine is borrowed; it owns this object from then on. For `nPatience` milliseconds the filling of a cube lets
    // no events through.
    AnalysisSetup(CORVSpumKyvo& engine, int nPatience);
    ~AnalysisSetup() override;

    SpUnmixWizardWnd* wizard() override;
    SpumKyvoConsoleWnd* console() override;
    SpUnmixCompositeWnd* compositeWnd() override;
    void deleteWindows() override;
    ResultView& resultView() override;

    void prepareAnalysis(int nMode, bool bUsePreset) override;
    void takeWizardInput() override;
    void wizardFinished(int nResult) override;
    void consoleFinished(int nResult) override;
    void compositeFinished(int nResult) override;
    void showCompositeInCube() override;
    void updatePreferences() override;
    QImage pictureOfButton(const QObject* pButton) override;
    void openTile(int nImgIndex) override;

    // The picture of the window that stands in the tab of that title, without regard to case; null for other tabs.
    QImage pictureOfTab(const QString& strTitle);
    // The sequence closes while its cube is being filled, which ends that.
    void stopFilling() { m_bStopFilling = true; }
    // Of the engine's last run, where it has one.
    AnswerByNumber& answerByNumber() { return m_answer; }
    // The console becomes the tab of the sequence's window, or the current one of its tabs.
    void showConsole();

Q_SIGNALS:
    // The console's.
    void askToSaveExistingResult();
    // The filling of the cube lets events through: nothing but its abort may be within reach until it ends.
    void fillingBegins();
    void fillingEnds(bool bAborted);
    // What the end of the wizard brings about is over, with a run or without.
    void wizardDone();

private:
    void connectConsole(SpumKyvoConsoleWnd& console);
    void connectComposite(SpUnmixCompositeWnd& composite);

    // The modes of prepareAnalysis().
    void prepareAutomatic();
    void prepareLibrary(bool bUsePreset);
    bool askForSpectra(QList<SpectrumPlotParams*>& spectra);
    void prepareDrawing(bool bBackground, bool bWithProbes);
    // The overview of the cube in the console, ready for spectra. An abort is told.
    Filling showCube(bool bBackground);
    void backOut();

    // Steps of wizardFinished(). Whether the overview is to be shown.
    bool startAutomaticRun();
    bool setUpImages();
    bool takeMaskAndComponents();
    void showOverview();

    void showComposite(int nSpot);
    CORVDataset* openByHost(const QString& strClickInfo);

    CORVSpumKyvo& m_engine;
    std::unique_ptr<ConsoleResultView> m_pView;
    AnswerByNumber m_answer;
    const int m_nPatience;
    bool m_bStopFilling = false;
    QString m_strOfferedSubject; // what the wizard showed when it was opened
};
