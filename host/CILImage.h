// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImageBase.h"
#include "host/CILPalette.h"

#include <QImage>

#include <memory>

class CILHistogram;

namespace orvimage {
class Layer;
}

// An image with its arithmetic and its way of being shown. Value semantics: copies share nothing.
class CILImage : public CILImageBase
{
public:
    CILImage() = default;
    CILImage(const CILImage&) = default;
    CILImage& operator=(const CILImage&) = default;
    CILImage(CILImage&&) noexcept = default;
    CILImage& operator=(CILImage&&) noexcept = default;
    ~CILImage() override;

    // Converts the pixels in place; to an integer type by rounding to nearest (halves away from zero) and limiting to
    // its range (NaN gives 0). An empty image gives EIL_FAILURE, an unknown type EIL_INVALID_ARGUMENT.
    EILSTATUS ChangeType(ORVDataTypes type);

    // Writes to `out` a version at the given binning: to a coarser binning by summing the pixels that fall into a new
    // one (partial pixels by area), to a finer one by sharing a pixel's content evenly, so that the sum over the image
    // stays. Both sides become floor(side x own binning / binning); what lies beyond the last whole new pixel is left
    // out. At the own binning `out` is a copy; else bytes and 16 bit pixels become floats and 32 bit integers doubles,
    // which hold the sums and the shares. Fails on an empty image, a binning below 1 and one so coarse that no pixel is
    // left; `out` is then as it was. `out` may be this image.
    EILSTATUS changeBinning(int binning, CILImage& out) const;

    // Resample in place to exactly w x h; values stay densities, within the range of the image, and keep their type.
    // The binning follows the width. Both take every mode and any size: IL_RESAMPLE_LINEAR interpolates between the
    // centres of pixels, IL_RESAMPLE_SMOOTH does so along a side that grows and takes means over areas along one that
    // shrinks. NaNs stay where they are and reach only the new pixels that they touch. Fails on an empty image or a
    // size below 1.
    EILSTATUS upSample(int w, int h, IL_RESAMPLEMODES mode);
    EILSTATUS downSample(int w, int h, IL_RESAMPLEMODES mode);

    // Pixelwise; the result has this image's type, rounded and limited as by ChangeType. An operand of another size
    // leaves the image as it is and gives false from lastOperationOk().
    CILImage& operator*=(const CILImage& other);
    CILImage& operator/=(const CILImage& other);
    CILImage& operator/=(double divisor);
    bool lastOperationOk() const { return m_bLastOk; }

    void setConstData(double value);

    // `out` becomes a byte image of this size and binning: 1 where the pixel is above `level`, else 0 (NaN too). Fails
    // on an empty image. `out` may be this image.
    EILSTATUS Threshold(float level, CILImage& out) const;
    // Morphology with a square kernel of side `kernel` (odd; an even one counts as the next), `count` times. Beyond the
    // border nothing is added or taken away; a NaN counts as absent. Fails on an empty image, a kernel below 1 or a
    // negative count.
    EILSTATUS Dilate(int kernel, int count);
    EILSTATUS Erode(int kernel, int count);

    // Recomputes m_dMin and m_dMax from the finite pixels; an image without any gets 0 and 0.
    void RefreshImageStats();
    double Min() const { return pixels() != nullptr ? m_dMin : 0.0; }
    double Max() const { return pixels() != nullptr ? m_dMax : 0.0; }
    double getMin() const { return Min(); }
    double getMax() const { return Max(); }
    // Empties the histogram and counts the pixels into its bins between its image minimum and maximum.
    void Histogram(CILHistogram& histogram) const;

    // How the image is shown: 0x1907 three colours (opaque, NaN black), 0x1908 four (with the palette's alpha), 0x1909
    // grey (opaque, the palette's colours reduced to their luminance).
    void setGLFormat(unsigned format) { m_nGLFormat = format; }
    unsigned getGLFormat() const { return m_nGLFormat; }
    CILPalette* getPalette() { return &m_palette; }
    const CILPalette* getPalette() const { return &m_palette; }
    void setColorTable(int index);
    // A table of `steps` (at least 2) colours from black to (red, green, blue), each 0 to 1. Such a layer is shown over
    // its own range: limits set by SetImageMinMax belonged to the table before and are dropped.
    void setCustomColorTable(int steps, double red, double green, double blue);
    // Scales the shown colours so that the brightest channel reaches `level` (0: as they are); the pixels stay.
    void AdjustRGBBrightness(unsigned char level) { m_nBrightness = level; }
    // The picture: pixels through the palette, in QImage::Format_ARGB32, over the palette's range or, without one, that
    // of the finite pixels. An image that holds a colour picture (a blend, a colour photograph) gives that. An empty
    // image gives a null picture.
    QImage toQImage() const;
    // Makes the image show a colour picture; the pixels become its grey values (bytes; luma of ITU-R BT.601). A null
    // picture empties the image. Changing the pixels' values or size by any operation but ChangeType drops the picture.
    void setRGBImage(const QImage& picture);
    // The picture goes, its grey values stay.
    void dropRGBImage();
    bool isRGB() const { return !isEmpty() && (!m_rgb.isNull() || m_layer != nullptr); }
    // The picture as a layer of others; later changes of the image do not reach it. Null where toQImage() is. A map in
    // four colours whose palette has limits is clear below the lower one where it lies over another layer.
    std::shared_ptr<const orvimage::Layer> layer() const;

    // Writes the pixels as TIFF in their own type (32 bit integers, floats and doubles included), by way of a temporary
    // file beside the target. Non-zero on failure, the target is then as it was.
    EILSTATUS saveAsTIFF(const char* path) const;

protected:
    void pixelsReplaced() override;
    void makePixels() const override;
    // Makes the image show a picture that is made when somebody looks; the pixels become its grey values, made
    // likewise.
    void showLayer(std::shared_ptr<const orvimage::Layer> layer);

    CILPalette m_palette;
    unsigned m_nGLFormat = 0x1909;
    unsigned char m_nBrightness = 0;                // 0: as it is
    QImage m_rgb;                                   // the colour picture that the image shows,
    std::shared_ptr<const orvimage::Layer> m_layer; // or what it is made of
    bool m_bLastOk = true;
};
