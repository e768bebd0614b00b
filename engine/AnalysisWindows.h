// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>

class QObject;
class ResultView;
class SpUnmixCompositeWnd;
class SpUnmixWizardWnd;
class SpumKyvoConsoleWnd;

// The windows of one engine and what they do with it: how each is made and connected, how an analysis is set up in
// them, and what happens when one closes. The engine's slots of the same purpose hand over to it, never during a run;
// an engine without windows does nothing there. All on the user-interface thread.
class AnalysisWindows
{
public:
    AnalysisWindows() = default;
    AnalysisWindows(const AnalysisWindows&) = delete;
    AnalysisWindows& operator=(const AnalysisWindows&) = delete;
    virtual ~AnalysisWindows() = default;

    // The window, made and connected when there is none, and kept in the engine's pointer to it.
    virtual SpUnmixWizardWnd* wizard() = 0;
    virtual SpumKyvoConsoleWnd* console() = 0;
    virtual SpUnmixCompositeWnd* compositeWnd() = 0;
    // Wizard, composite and console, as far as they still live.
    virtual void deleteWindows() = 0;
    // Console and composite as the place where the engine's results are shown.
    virtual ResultView& resultView() = 0;

    // Brings engine and windows to the start of an analysis in the given mode; the engine's readyToRun() or cancelRun()
    // comes from here, or later from a window. bUsePreset: with the engine's preset spectra instead of a question.
    virtual void prepareAnalysis(int nMode, bool bUsePreset) = 0;
    // What the wizard says into the engine's analysis input; nothing without a wizard.
    virtual void takeWizardInput() = 0;
    // The windows' finished(int).
    virtual void wizardFinished(int nResult) = 0;
    virtual void consoleFinished(int nResult) = 0;
    virtual void compositeFinished(int nResult) = 0;

    // The composite's picture becomes the overview of the cube, when both windows are there.
    virtual void showCompositeInCube() = 0;
    // The user's preferences are other ones.
    virtual void updatePreferences() = 0;
    // The picture that a print or copy button stands for, by the toolbar it belongs to; null for any other sender.
    virtual QImage pictureOfButton(const QObject* pButton) = 0;
    // Opens a tile of the unmixed images: a map as a dataset, a composite in its window.
    virtual void openTile(int nImgIndex) = 0;
};
