// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/ImageExtent.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/imagePadding.h"
#include "platform/orvapi/validPixels.h"
#include "services/basis/Failure.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <optional>

namespace {

// What the images of the engine's selection agree on: their extent and the square that is stored.
struct StoredExtent
{
    QSize extent;
    QSize square;
};

std::optional<StoredExtent> storedExtentOf(const CORVSpumKyvo& engine)
{
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(engine.m_strSeqId);
    std::optional<StoredExtent> common;
    for (const QString& click : engine.m_imageList) {
        CORVDataset* pDataset = pSequence != nullptr ? pSequence->getDataset(click) : nullptr;
        const std::optional<QSize> extent = pDataset != nullptr ? extentBeforePadding(*pDataset) : std::nullopt;
        if (!extent || (common && common->extent != *extent)) {
            return std::nullopt;
        }
        if (!common) {
            long width = 0;
            long height = 0;
            if (!pDataset->getImageSize(IMAGETYPE_MAIN_DATA, &width, &height)) {
                return std::nullopt;
            }
            common = StoredExtent{*extent, QSize(static_cast<int>(width), static_cast<int>(height))};
        }
    }
    return common;
}

// Pixels of an analysis along a side of the image, the last one included.
struct Places
{
    long first = 0;
    long last = -1;
};

// Those that the stored pixel `at` of `stored` has a part in. Counts are gathered `ratio` by `ratio` pixels, and what
// is left over at the end is dropped; in other units all of the image is brought to the `analysed` pixels. Which it
// will be is not known before the images are read.
Places placesOf(long at, long stored, long analysed, double ratio)
{
    const auto gatheredFirst = static_cast<long>(std::floor(static_cast<double>(at) / ratio));
    const auto gatheredLast = static_cast<long>(std::ceil(static_cast<double>(at + 1) / ratio)) - 1;
    const long first = std::min(gatheredFirst, at * analysed / stored);
    const long last = std::max(gatheredLast, ((at + 1) * analysed + stored - 1) / stored - 1);
    return {first, std::min(last, analysed - 1)};
}

// The binning of the analysis over that of the stored images.
double ratioOfBinnings(const CORVSequenceDataset& sequence, const CORVSpumKyvo& engine)
{
    CORVDataset* pDataset = engine.m_imageList.isEmpty() ? nullptr : sequence.getDataset(engine.m_imageList.first());
    const double stored =
        pDataset != nullptr ? static_cast<double>(pDataset->getBinningForImage(IMAGETYPE_MAIN_DATA)) : 1.0;
    return stored > 0.0 ? engine.m_nBinning / stored : 1.0;
}

// 1 for each pixel of the analysis all of whose stored pixels have a value in every image; empty where all have.
CILImage validPixelsOf(const CORVSpumKyvo& engine)
{
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(engine.m_strSeqId);
    CILImage stored;
    if (pSequence == nullptr || engine.m_nWidth < 1 || engine.m_nHeight < 1) {
        return stored;
    }
    QString error;
    if (!readValidPixels(*pSequence, &stored, &error)) {
        throw Failure(error);
    }
    if (stored.isEmpty()) {
        return stored;
    }
    CILImage valid;
    if (valid.InitWithType(ORVTYPE_BYTE, engine.m_nWidth, engine.m_nHeight) != EIL_SUCCESS) {
        throw std::bad_alloc();
    }
    std::memset(valid.bytes(), 1, valid.pixelCount());
    const double ratio = ratioOfBinnings(*pSequence, engine);
    for (long y = 0; y < stored.m_lHeight; ++y) {
        const Places rows = placesOf(y, stored.m_lHeight, engine.m_nHeight, ratio);
        for (long x = 0; x < stored.m_lWidth; ++x) {
            if (stored.value(static_cast<std::size_t>(y * stored.m_lWidth + x)) != 0.0) {
                continue;
            }
            const Places columns = placesOf(x, stored.m_lWidth, engine.m_nWidth, ratio);
            for (long row = rows.first; row <= rows.last && columns.first <= columns.last; ++row) {
                std::memset(valid.bytes() + row * engine.m_nWidth + columns.first, 0,
                            static_cast<std::size_t>(columns.last - columns.first + 1));
            }
        }
    }
    return valid;
}

} // namespace

QSize analysedExtent(const CORVSpumKyvo& engine)
{
    return extentOfPicture(engine, engine.m_nWidth, engine.m_nHeight);
}

QSize extentOfPicture(const CORVSpumKyvo& engine, long lWidth, long lHeight)
{
    const std::optional<StoredExtent> stored = storedExtentOf(engine);
    if (!stored) {
        return {static_cast<int>(lWidth), static_cast<int>(lHeight)};
    }
    return shareOf(stored->extent, stored->square, lWidth, lHeight);
}

CILImage withoutPadding(const CILImage& mask, const CORVSpumKyvo& engine)
{
    const QSize extent = analysedExtent(engine);
    const CILImage valid = validPixelsOf(engine);
    if (extent == QSize(engine.m_nWidth, engine.m_nHeight) && valid.isEmpty()) {
        return mask;
    }
    CILImage inside(mask);
    if (inside.isEmpty()) {
        if (inside.InitWithType(ORVTYPE_BYTE, engine.m_nWidth, engine.m_nHeight) != EIL_SUCCESS) {
            throw std::bad_alloc();
        }
        inside.m_fBinning = static_cast<float>(engine.m_nBinning);
        std::memset(inside.bytes(), 1, inside.pixelCount());
    }
    // Whole pixels of the analysis, however fine the mask is: of one that hangs over the edge a part was added.
    for (long y = 0; y < inside.m_lHeight; ++y) {
        const long row = y * engine.m_nHeight / inside.m_lHeight;
        for (long x = 0; x < inside.m_lWidth; ++x) {
            const long column = x * engine.m_nWidth / inside.m_lWidth;
            const bool bOutside = row >= extent.height() || column >= extent.width();
            if (bOutside ||
                (!valid.isEmpty() && valid.value(static_cast<std::size_t>(row * engine.m_nWidth + column)) == 0.0)) {
                inside.setValue(static_cast<std::size_t>(y * inside.m_lWidth + x), 0.0);
            }
        }
    }
    return inside;
}
