// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/MaskFile.h"

#include "platform/orvimage/TiffIo.h"
#include "platform/orvutils/InputFile.h"
#include "services/basis/Failure.h"

#include <QFile>
#include <QImageReader>

#include <algorithm>
#include <functional>
#include <new>

namespace {

// 1 where any of the mask's pixels, `factor` along the side of a pixel of the analysis, is above 0, else 0. Whole
// numbers: a binning that is a fraction would be rounded.
CILImage pixelsOfAnalysis(const CILImage& mask, int nSide, long factor)
{
    CILImage pixels;
    if (pixels.InitWithType(ORVTYPE_FLOAT, nSide, nSide) != EIL_SUCCESS) {
        throw std::bad_alloc();
    }
    pixels.setConstData(0.0);
    for (long y = 0; y < mask.m_lHeight; ++y) {
        for (long x = 0; x < mask.m_lWidth; ++x) {
            if (mask.value(static_cast<std::size_t>(y * mask.m_lWidth + x)) > 0.0) {
                pixels.floats()[(y / factor) * nSide + x / factor] = 1.0F;
            }
        }
    }
    pixels.RefreshImageStats();
    return pixels;
}

// How many pixels along the side of an image of that shape a mask of that size has for each of the image's; 0 where its
// shape is another.
long factorOf(const QSize& mask, const QSize& shape)
{
    const long factor = mask.width() / shape.width();
    return mask.width() == factor * shape.width() && mask.height() == factor * shape.height() ? factor : 0;
}

// The same for an image of the analysis or the square around it; throws Failure for another shape.
long checkedFactor(const QString& strPath, const QSize& mask, int nSide, const QSize& extent)
{
    const QSize shape = extent.isValid() ? extent : QSize(nSide, nSide);
    const long factor = std::max(factorOf(mask, shape), factorOf(mask, QSize(nSide, nSide)));
    if (factor == 0) {
        throw Failure(QStringLiteral("%1: the mask has %2 x %3 pixels; the analysis needs %4 x %5 or a multiple of it")
                          .arg(strPath, QString::number(mask.width()), QString::number(mask.height()),
                               QString::number(shape.width()), QString::number(shape.height())));
    }
    return factor;
}

bool isPng(const QString& strPath)
{
    const QByteArray head("\x89PNG\r\n\x1a\n");
    QFile file(strPath);
    QString reason;
    return orv::openInput(file, &reason) && file.read(head.size()) == head;
}

// The brightness of a PNG image; `check` is told its size ahead of its pixels, which take the memory.
CILImage readPng(const QString& strPath, const std::function<void(const QSize&)>& check)
{
    QFile file(strPath);
    QString reason;
    if (!orv::openInput(file, &reason)) {
        throw Failure(QStringLiteral("%1: %2").arg(strPath, reason));
    }
    QImageReader reader(&file, "png");
    const QSize size = reader.size();
    if (size.isValid()) {
        check(size);
    }
    const QImage read = size.isValid() ? reader.read().convertToFormat(QImage::Format_Grayscale16) : QImage();
    if (read.isNull()) {
        throw Failure(QStringLiteral("%1: the mask is broken or cut short").arg(strPath));
    }
    CILImage mask;
    if (mask.InitWithType(ORVTYPE_FLOAT, read.width(), read.height()) != EIL_SUCCESS) {
        throw std::bad_alloc();
    }
    for (int y = 0; y < read.height(); ++y) {
        const auto* pRow = reinterpret_cast<const quint16*>(read.constScanLine(y));
        std::copy(pRow, pRow + read.width(), mask.floats() + static_cast<std::ptrdiff_t>(y) * read.width());
    }
    return mask;
}

CILImage readImageOfMask(const QString& strPath, const std::function<void(const QSize&)>& check)
{
    if (isPng(strPath)) {
        return readPng(strPath, check);
    }
    CILImage mask;
    QString error;
    if (!readTiff(strPath, 0, mask, &error)) {
        throw Failure(error);
    }
    check(QSize(static_cast<int>(mask.m_lWidth), static_cast<int>(mask.m_lHeight)));
    return mask;
}

} // namespace

CILImage readMaskFile(const QString& strPath, int nSide, int nBinning, const QSize& extent)
{
    long factor = 0;
    const CILImage mask =
        readImageOfMask(strPath, [&](const QSize& size) { factor = checkedFactor(strPath, size, nSide, extent); });
    CILImage pixels = pixelsOfAnalysis(mask, nSide, factor);
    if (pixels.m_dMax <= 0.0) {
        throw Failure(QStringLiteral("%1: the mask has no pixel above 0").arg(strPath));
    }
    pixels.m_fBinning = static_cast<float>(nBinning);
    return pixels;
}
