// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "spectra/CompositeChannel.h"
#include "spectra/KeyPair.h"

#include <QList>
#include <QString>

#include <vector>

class CILImage;
class CImageCube;
class SpectrumPlotParams;

// What the decay controls of an analysis say.
struct DecayState
{
    QString isotope;
    double halfLifeSeconds = 0.0;
    bool applied = false;
};

// The colour bar beside the unmixed images.
struct ColorBarState
{
    int unit = 0; // 0 to 3 as tag_edisplayunit
    bool ntf = false;
    int colorTable = 0; // index as in CILPalette::colorTableNames()
    double minimum = 0.0;
    double maximum = 0.0;
    bool reversed = false;
    bool logScale = false;
};

// Where a result is shown and edited, as far as the engine and the storage of results have to do with it: its note, its
// spectra, its decay controls, its pictures. The console and the composite window stand behind it in a program with
// windows; without them the engine's own lists do (OwnResultView). All on the user-interface thread.
class ResultView
{
public:
    ResultView() = default;
    ResultView(const ResultView&) = delete;
    ResultView& operator=(const ResultView&) = delete;
    virtual ~ResultView() = default;

    virtual QString getNote() const = 0;
    virtual void setNote(const QString& strNote) = 0;

    // The cube that the spectra refer to, one pair an image, all of one axis (0 emission, 1 excitation, 2 time);
    // borrowed. In data of a Cherenkov isotope the decay controls take effect on it. False, and nothing changed, when
    // the numbers of pairs and of images differ.
    virtual bool setImageCube(const QList<KeyPair>& xValues, int nSpectrumType, CImageCube& cube) = 0;
    // True is the drawing step before an analysis, false the analysis itself. Clears the spectra.
    virtual void setBackgroundMode(bool bOn) = 0;
    // Takes copies.
    virtual void setSpectra(const QList<SpectrumPlotParams*>& spectra) = 0;
    // Owned by the view, valid until its spectra change.
    virtual QList<SpectrumPlotParams*> getSpectra() const = 0;
    virtual void setSpectraModified(bool bModified) = 0;

    virtual void setDecayState(const QString& strIsotope, double dHalfLifeSeconds, bool bApply) = 0;
    virtual DecayState getDecayState() const = 0;

    // The part of the common range that is shown, both ends 0 to 1.
    virtual void getScaleRange(double* pLower, double* pUpper) const = 0;
    virtual void setColorBar(const ColorBarState& bar) = 0;
    virtual void setHideColorBar(bool bHide) = 0;
    // Whether the view has a use for tiles. Of a scan with many spots they take long to make and much room, so the
    // engine makes none for a view without.
    virtual bool showsUnmixedImages() const { return true; }
    // One tile; the image stays the caller's and must live until the tiles are removed.
    virtual void addUnmixedImage(CILImage* pImage, const QString& strLabel) = 0;
    // The range of the values that the tile added last is shown over.
    virtual void setUnmixedImageRange(double /*dMin*/, double /*dMax*/) {}
    virtual void removeAllUnmixedImages() = 0;

    // See the composite's arithmetic (windows/): one row of data a channel, one column per pixel and spot. The
    // photograph is borrowed.
    virtual void setCompositeData(CILImage* pPhoto, const XTNT::Matrix<double>& data, int nUnit,
                                  const std::vector<int>& pixelIndices, int nWidth, int nHeight,
                                  const QList<CompositeChannel>& channels, int nSpots) = 0;
    // Borrowed; null does nothing.
    virtual void setXRayImage(CILImage* pImage) = 0;

    // All pictures of a result have been handed over, in this colour table: a view with windows comes to the front.
    virtual void presentUnmixedImages(int /*nColorTable*/, bool /*bReversed*/) {}

    // Closes the window of a loaded dataset whose folder is about to be replaced. Without windows there is none to
    // close.
    virtual void closeImageWindow(const QString&) {}
};
