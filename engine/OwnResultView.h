// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ResultView.h"
#include <functional>
#include <utility>

struct AnalysisInput;

// One picture of a result with its name; the image is borrowed.
struct UnmixedTile
{
    CILImage* image = nullptr;
    QString label;
};

// What was last handed over for the composite. The photograph and the X-ray image are borrowed.
struct CompositeInput
{
    CILImage* photo = nullptr;
    CILImage* xray = nullptr;
    XTNT::Matrix<double> data;
    int unit = 0;
    std::vector<int> pixelIndices;
    int width = 0;
    int height = 0;
    QList<CompositeChannel> channels;
    int spots = 1;
};

// The view of an engine without windows: its spectra are those of the engine (m_spectrumPlots), its decay controls
// those of the engine's analysis input, and the pictures are kept in lists for whoever writes them to files.
class OwnResultView : public ResultView
{
public:
    // Corrects a cube's data for decay as the engine's analysis asks for.
    using DecayCorrection = std::function<void(CImageCube& cube)>;

    // Borrows the engine's spectra, which it owns, and its analysis input.
    OwnResultView(QList<SpectrumPlotParams*>& spectra, AnalysisInput& input, DecayCorrection correctDecay)
        : m_spectra(spectra), m_input(input), m_correctDecay(std::move(correctDecay))
    {
    }

    QString getNote() const override { return m_strNote; }
    void setNote(const QString& strNote) override { m_strNote = strNote; }
    bool setImageCube(const QList<KeyPair>& xValues, int nSpectrumType, CImageCube& cube) override;
    // The engine's spectra stay: there is no list besides them to clear.
    void setBackgroundMode(bool bOn) override { m_bBackgroundMode = bOn; }
    void setSpectra(const QList<SpectrumPlotParams*>& spectra) override;
    QList<SpectrumPlotParams*> getSpectra() const override;
    void setSpectraModified(bool bModified) override { m_bSpectraModified = bModified; }
    void setDecayState(const QString& strIsotope, double dHalfLifeSeconds, bool bApply) override;
    DecayState getDecayState() const override;
    void getScaleRange(double* pLower, double* pUpper) const override;
    void setColorBar(const ColorBarState& bar) override { m_colorBar = bar; }
    void setHideColorBar(bool bHide) override { m_bHideColorBar = bHide; }
    bool showsUnmixedImages() const override { return m_bShowsTiles; }
    void addUnmixedImage(CILImage* pImage, const QString& strLabel) override;
    void removeAllUnmixedImages() override;
    void setCompositeData(CILImage* pPhoto, const XTNT::Matrix<double>& data, int nUnit,
                          const std::vector<int>& pixelIndices, int nWidth, int nHeight,
                          const QList<CompositeChannel>& channels, int nSpots) override;
    void setXRayImage(CILImage* pImage) override;

    // Off for whoever takes the composite alone.
    void setShowsUnmixedImages(bool bShows) { m_bShowsTiles = bShows; }
    void setScaleRange(double dLower, double dUpper);
    const QList<UnmixedTile>& tiles() const { return m_tiles; }
    const ColorBarState& colorBar() const { return m_colorBar; }
    bool isColorBarHidden() const { return m_bHideColorBar; }
    bool isSpectraModified() const { return m_bSpectraModified; }
    bool isBackgroundMode() const { return m_bBackgroundMode; }
    const CompositeInput& composite() const { return m_composite; }

private:
    QList<SpectrumPlotParams*>& m_spectra;
    AnalysisInput& m_input;
    DecayCorrection m_correctDecay;
    QString m_strNote;
    bool m_bBackgroundMode = false;
    bool m_bSpectraModified = false;
    double m_dLower = 0.05; // the span that the console's controls start with
    double m_dUpper = 0.95;
    ColorBarState m_colorBar;
    bool m_bHideColorBar = false;
    bool m_bShowsTiles = true;
    QList<UnmixedTile> m_tiles;
    CompositeInput m_composite;
};
