// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QDir>
#include <QString>
#include <QStringList>
#include <QTemporaryFile>

#include <functional>
#include <memory>
#include <vector>

// The mean of images of one size, for a sequence without a photograph. Sums are doubles, eight times a byte image; they
// are worked on a band of rows at a time, and those of images of several bands lie in a nameless file.
class MeanImage
{
public:
    // Pixels of a band, of which there is one row at least: 32 MB of sums.
    static constexpr long defaultBandPixels = 1 << 22;

    // `strFolder`: where the file lies.
    explicit MeanImage(const QString& strFolder = QDir::tempPath(), long lBandPixels = defaultBandPixels)
        : m_strFolder(strFolder), m_lBandPixels(lBandPixels)
    {
    }

    // Adds an image. The first one sets the size, which the others must have; their pixels must be finite. False with
    // "file: reason" in *pError when the file cannot be written; the mean is then of no use.
    bool add(const CILImage& image, QString* pError);
    // The mean as bytes: the darkest and the brightest half per cent of the pixels become 0 and 255, what lies between
    // is stretched linearly. A constant mean gives 128. False when there is nothing to show, no memory, or the file
    // cannot be read.
    bool stretched(CILImage& out);

private:
    bool eachBand(bool bWrite, const std::function<void(std::size_t nFirst, std::vector<double>& sums)>& visit);
    bool ends(double* pLow, double* pHigh);

    QString m_strFolder;
    long m_lBandPixels;
    long m_lWidth = 0;
    long m_lHeight = 0;
    int m_nImages = 0;
    std::vector<double> m_band;             // the sums of the band at hand, or all there are
    std::unique_ptr<QTemporaryFile> m_file; // null where one band holds all
};

// Reads a photograph, TIFF or whatever Qt reads, as grey values, and fits it to w x h pixels, of which it is taken to
// show the same extent. A shape that differs by more than 2 % is told in *pWarnings. False with "file: reason" in
// *pError when it cannot be read or holds a pixel that is not finite; `out` is then empty.
bool loadPhotograph(const QString& strPath, long w, long h, CILImage& out, QStringList* pWarnings, QString* pError);

// Bytes of memory that loading that photograph takes, by its header; 0 where the header does not tell, or claims what
// loading refuses.
qint64 photographMemory(const QString& strPath);

// Adds zeros at the right or the bottom, so that the image becomes a square; the type stays. False without memory.
bool padToSquare(CILImage& image);

// The first pixel (row-major) that is not finite, or beyond what single precision holds; -1 without.
long long firstUnusablePixel(const CILImage& image);
