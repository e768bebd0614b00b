// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ResultView.h"

#include <functional>
#include <utility>

class AnalysisWindows;
class CORVSpumKyvo;

// Console and composite window as the place where results are shown. A window is made when it has something to show;
// asking what a window that there is not says gives what a new one would say.
class ConsoleResultView : public ResultView
{
public:
    // Engine and windows are borrowed; showConsole makes the console a tab of the sequence's window.
    ConsoleResultView(CORVSpumKyvo& engine, AnalysisWindows& windows, std::function<void()> showConsole)
        : m_engine(engine), m_windows(windows), m_showConsole(std::move(showConsole))
    {
    }

    QString getNote() const override;
    void setNote(const QString& strNote) override;
    bool setImageCube(const QList<KeyPair>& xValues, int nSpectrumType, CImageCube& cube) override;
    void setBackgroundMode(bool bOn) override;
    void setSpectra(const QList<SpectrumPlotParams*>& spectra) override;
    QList<SpectrumPlotParams*> getSpectra() const override;
    void setSpectraModified(bool bModified) override;
    void setDecayState(const QString& strIsotope, double dHalfLifeSeconds, bool bApply) override;
    DecayState getDecayState() const override;
    void getScaleRange(double* pLower, double* pUpper) const override;
    void setColorBar(const ColorBarState& bar) override;
    void setHideColorBar(bool bHide) override;
    void addUnmixedImage(CILImage* pImage, const QString& strLabel) override;
    void setUnmixedImageRange(double dMin, double dMax) override;
    void removeAllUnmixedImages() override;
    void setCompositeData(CILImage* pPhoto, const XTNT::Matrix<double>& data, int nUnit,
                          const std::vector<int>& pixelIndices, int nWidth, int nHeight,
                          const QList<CompositeChannel>& channels, int nSpots) override;
    void setXRayImage(CILImage* pImage) override;
    void presentUnmixedImages(int nColorTable, bool bReversed) override;
    void closeImageWindow(const QString& strClickNumber) override;

private:
    CORVSpumKyvo& m_engine;
    AnalysisWindows& m_windows;
    std::function<void()> m_showConsole;
};
