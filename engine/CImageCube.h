// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"

#include <QImage>
#include <QVector>

#include <cstddef>
#include <vector>

// The selected images as one matrix: a row per pixel inside the data mask (per pixel of the image without a mask), a
// column per image. In a scan the rows come in blocks, one a spot: row s * P + j is pixel j of the mask at spot s,
// where P is the number of mask indices or width x height. Elements are not negative (NaNs stay).
//
// Copies share the elements of the matrices.
class CImageCube
{
public:
    CImageCube() = default;
    CImageCube(const CImageCube&) = default;
    CImageCube& operator=(const CImageCube&) = default;
    virtual ~CImageCube() = default;

    // Takes the sizes and a matrix of zeros. An empty mask counts as none. A mask index outside the image leaves an
    // empty cube without a mask and gives false. Throws std::bad_alloc; the cube is then not valid.
    bool init(int nWidth, int nHeight, int nSpots, int nImages, std::vector<int> mask);

    // Lets go of the data and the mask; the overview and the raw data stay.
    void clear();

    // Stores one image of width x height pixels as column nImage of spot nSpot, anything below 0 as 0. False, and
    // nothing changed, when there is no such spot or image or the length is another. Passes cancellation points.
    bool setImage(int nSpot, int nImage, const float* pPixels, std::size_t nLength);
    bool setImage(int nSpot, int nImage, const std::vector<float>& pixels);
    // Stores consecutive images of one length from column nFirst on in one pass over the rows, which touches each line
    // of memory once where images stored one by one touch it once each. Otherwise as setImage().
    bool setImages(int nSpot, int nFirst, const std::vector<const float*>& images, std::size_t nLength);

    // Makes m_rgbImage, the false-colour overview, from m_nImages x 3 weights (red, green, blue); in a scan the mean
    // over the spots is shown. Without a mask the background, below a threshold between the two modes of the
    // brightness, goes black. False when weights has another number of rows; throws XTNT::M_Exception when the rest
    // does not fit.
    bool buildRGBImage(const XTNT::Matrix<double>& weights);

    // One column as a grey picture (QImage::Format_RGB32), black outside the mask, the mean over the spots in a scan,
    // scaled from the smallest element of the whole cube to m_dMaxScale times the largest; sets m_dShowMin and
    // m_dShowMax. A null picture when there is no such image.
    QImage image(int nImage);

    // The mean of the given pixels (row-major indices of the image) per column, of the first spot's block in a scan.
    // With a mask, pixels outside it are skipped and a pixel counts once; no pixel left gives zeros. Without one, an
    // index outside the image fails: zeros, and *pOk (may be null) is false.
    XTNT::Vector<double> spectrum(std::vector<int> pixels, bool* pOk = nullptr) const;

    // Writes raw times factors[column] into m_data (all spots share the factors of the first), or with bApply false raw
    // as it is. Does nothing when raw has another shape than m_data or factors are missing.
    void applyDecayFactors(const XTNT::Matrix<double>& raw, const QVector<double>& factors, bool bApply);

    // Pixels a spot: the mask's, or all of the image.
    long long pixelsPerSpot() const;

    bool m_bValid = false;
    bool m_bHasMask = false;
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nImages = 0;
    int m_nSpots = 0;
    double m_dShowMax = 0.0;
    double m_dShowMin = 0.0;
    double m_dMaxScale = 1.0;
    std::vector<int> m_maskIndices; // ascending, row-major
    XTNT::Matrix<double> m_data;
    QImage m_rgbImage;
    XTNT::Matrix<double> m_rawData; // the data before the decay correction

private:
    // Position in the image, row-major, of row j of a spot's block.
    long long pixelOfRow(long long j) const;
    // A pixel may be listed twice in a mask: its picture shows the last one.
    bool isLastAtItsPlace(long long j) const;
    // Of the image's size, black where no row of the cube stands, not filled elsewhere. Throws std::bad_alloc.
    QImage blackPicture() const;
};
