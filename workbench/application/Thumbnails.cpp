// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/Thumbnails.h"

#include "host/CORVDataset.h"
#include "platform/orvapi/imagePadding.h"
#include "workbench/application/BackgroundWork.h"
#include "workbench/application/imageFile.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace {

constexpr int kSmallestSide = 128;
constexpr int kLargestSide = 1024;
constexpr qint64 kMostBytes = qint64{256} << 20; // of all thumbnails together
constexpr unsigned kThreeColours = 0x1907;

// Reduced by averages so that its longer side has `nSide` pixels; smaller images stay.
void reduce(CILImage& image, int nSide)
{
    const long longest = std::max(image.m_lWidth, image.m_lHeight);
    if (longest <= nSide) {
        return;
    }
    const auto side = [&](long l) { return std::max(1, static_cast<int>((l * nSide + longest / 2) / longest)); };
    image.downSample(side(image.m_lWidth), side(image.m_lHeight), IL_RESAMPLE_AREA);
}

} // namespace

struct Thumbnails::Reduced
{
    int tile = 0;
    CILImage image;
    QSize size; // before
    DisplayRange range;
};

Thumbnails::Thumbnails(const CORVSequenceDataset& sequence, QObject* pParent)
    : QObject(pParent), m_tiles(sequence), m_thumbnails(index(m_tiles.count())),
      m_pReading(std::make_unique<BackgroundWork>())
{
    connect(&m_idle, &QTimer::timeout, this, &Thumbnails::makeNext);
    connect(m_pReading.get(), &BackgroundWork::done, this, &Thumbnails::take);
    readAgain();
}

Thumbnails::~Thumbnails()
{
    BackgroundWork::letGo(std::move(m_pReading));
}

void Thumbnails::readAgain()
{
    for (Thumbnail& thumbnail : m_thumbnails) {
        thumbnail.stale = true;
    }
    m_nWaiting = m_tiles.count();
    m_nNext = 0;
    m_common = DisplayRange();
    if (!m_pReading->isRunning()) {
        m_idle.start(0);
    }
}

void Thumbnails::setUnit(tag_edisplayunit eUnit)
{
    if (eUnit != m_eUnit) {
        m_eUnit = eUnit;
        readAgain();
    }
}

void Thumbnails::setSide(int nPixels)
{
    int side = kSmallestSide;
    const auto bytes = [&](int next) { return static_cast<qint64>(sizeof(float)) * next * next * m_tiles.count(); };
    while (side < nPixels && side < kLargestSide && bytes(2 * side) <= kMostBytes) {
        side *= 2;
    }
    if (side != m_nSide) {
        const bool larger = side > m_nSide;
        m_nSide = side;
        if (larger) {
            readAgain();
        }
    }
}

void Thumbnails::setColors(int nTable, bool bReversed, bool bLogScale)
{
    m_palette.setCLUTinfo(nTable, bReversed, bLogScale);
    for (Thumbnail& thumbnail : m_thumbnails) {
        thumbnail.shown = DisplayRange();
        if (!thumbnail.reduced.isEmpty()) {
            thumbnail.picture = QImage();
        }
    }
    Q_EMIT allChanged();
}

void Thumbnails::setIndividual(bool bIndividual)
{
    m_bIndividual = bIndividual;
    Q_EMIT allChanged();
}

DisplayRange Thumbnails::range(int nTile) const
{
    const Thumbnail& thumbnail = m_thumbnails.at(index(nTile));
    if (thumbnail.reduced.isEmpty()) {
        return {};
    }
    return m_bIndividual ? thumbnail.range : m_common;
}

QImage Thumbnails::picture(int nTile)
{
    Thumbnail& thumbnail = m_thumbnails.at(index(nTile));
    if (thumbnail.stale && thumbnail.picture.isNull() && !m_asked.contains(nTile)) {
        m_asked.append(nTile);
    }
    const DisplayRange wanted = range(nTile);
    // While images come in, their common range grows; pictures follow once it stands.
    const bool follows = m_bIndividual || isFinished() || thumbnail.picture.isNull();
    if (!thumbnail.reduced.isEmpty() && follows && (thumbnail.picture.isNull() || thumbnail.shown != wanted)) {
        CILPalette& palette = *thumbnail.reduced.getPalette();
        palette = m_palette;
        palette.SetImageMinMax(wanted.minimum, wanted.maximum);
        thumbnail.reduced.setGLFormat(kThreeColours);
        thumbnail.picture = thumbnail.reduced.toQImage();
        thumbnail.shown = wanted;
    }
    return thumbnail.picture;
}

bool Thumbnails::valueAt(int nTile, double dX, double dY, double* pValue, int* pAveraged) const
{
    const Thumbnail& thumbnail = m_thumbnails.at(index(nTile));
    const CILImage& image = thumbnail.reduced;
    if (image.isEmpty()) {
        return false;
    }
    const auto place = [](double part, long side) {
        return std::clamp(static_cast<long>(std::floor(part * static_cast<double>(side))), 0L, side - 1);
    };
    const long x = place(dX, image.m_lWidth);
    const long y = place(dY, image.m_lHeight);
    *pValue = image.value(static_cast<std::size_t>(y * image.m_lWidth + x));
    *pAveraged = static_cast<int>(std::lround(1.0 * thumbnail.size.width() / static_cast<double>(image.m_lWidth)));
    return true;
}

int Thumbnails::nextTile()
{
    while (!m_asked.isEmpty()) {
        const int tile = m_asked.takeLast();
        if (m_thumbnails.at(index(tile)).stale) {
            return tile;
        }
    }
    while (m_nNext < m_tiles.count() && !m_thumbnails.at(index(m_nNext)).stale) {
        ++m_nNext;
    }
    return m_nNext < m_tiles.count() ? m_nNext : -1;
}

void Thumbnails::makeNext()
{
    const int tile = nextTile();
    if (tile < 0) {
        finish();
        return;
    }
    m_thumbnails.at(index(tile)).stale = false;
    try {
        if (m_tiles.tile(tile).photograph) {
            makePhotograph(tile);
        } else if (startReading(tile)) {
            m_idle.stop();
            return;
        }
    } catch (const std::bad_alloc&) {
        fail(tile, QStringLiteral("there is not enough memory"));
    }
    made(tile);
}

void Thumbnails::made(int nTile)
{
    m_nWaiting = std::max(0, m_nWaiting - 1);
    Q_EMIT changed(nTile);
    if (m_nWaiting == 0) {
        finish();
    }
}

void Thumbnails::finish()
{
    m_idle.stop();
    m_nWaiting = 0;
    Q_EMIT allChanged();
    Q_EMIT finished();
}

void Thumbnails::fail(int nTile, const QString& strReason)
{
    Thumbnail& thumbnail = m_thumbnails.at(index(nTile));
    thumbnail = Thumbnail();
    thumbnail.stale = false;
    thumbnail.state = State::Failed;
    thumbnail.reason = strReason;
}

bool Thumbnails::startReading(int nTile)
{
    const SequenceTiles::Tile& tile = m_tiles.tile(nTile);
    if (tile.dataset == nullptr) {
        fail(nTile, tile.reason);
        return false;
    }
    const QString unavailable = tile.dataset->unitUnavailableReason(m_eUnit);
    if (!unavailable.isEmpty()) {
        fail(nTile, QStringLiteral("this unit cannot be had: %1").arg(unavailable));
        return false;
    }
    m_pReduced = std::make_shared<Reduced>();
    m_pReduced->tile = nTile;
    m_pReading->start([read = tile.dataset->luminImageReader(m_eUnit, QStringLiteral("Sequence View")),
                       file = imageFile::pathOf(*tile.dataset, IMAGETYPE_MAIN_DATA),
                       extent = extentBeforePadding(*tile.dataset).value_or(QSize()), side = m_nSide,
                       pReduced = m_pReduced](const BackgroundWork::Progress&, QString* pError) {
        CILImage image;
        if (read(&image) != ESTATUS_SUCCESS) {
            *pError = imageFile::reasonAgainst(file);
            return false;
        }
        image = ownPart(extent, std::move(image));
        pReduced->size = QSize(static_cast<int>(image.m_lWidth), static_cast<int>(image.m_lHeight));
        reduce(image, side);
        pReduced->range = DisplayRange::automatic(image);
        pReduced->image = std::move(image);
        return true;
    });
    return true;
}

void Thumbnails::take(bool bSuccess, const QString& strError)
{
    const std::shared_ptr<Reduced> pReduced = std::move(m_pReduced);
    m_idle.start(0);
    Thumbnail& thumbnail = m_thumbnails.at(index(pReduced->tile));
    if (thumbnail.stale) {
        return; // comes anew, in another unit or size
    }
    if (bSuccess) {
        thumbnail.size = pReduced->size;
        thumbnail.range = pReduced->range;
        thumbnail.reduced = std::move(pReduced->image);
        thumbnail.picture = QImage();
        thumbnail.state = State::Ready;
        thumbnail.reason.clear();
        m_common = m_common.isEmpty() ? thumbnail.range : m_common.united(thumbnail.range);
    } else {
        fail(pReduced->tile, strError);
    }
    made(pReduced->tile);
}

void Thumbnails::makePhotograph(int nTile)
{
    CORVDataset& dataset = *m_tiles.tile(nTile).dataset;
    const CILImage* pPhoto = dataset.getCoreImage(IMAGETYPE_PHOTOGRAPH);
    if (pPhoto == nullptr || pPhoto->isEmpty()) {
        fail(nTile, imageFile::reasonAgainst(imageFile::pathOf(dataset, IMAGETYPE_PHOTOGRAPH)));
        return;
    }
    Thumbnail& thumbnail = m_thumbnails.at(index(nTile));
    thumbnail.size = QSize(static_cast<int>(pPhoto->m_lWidth), static_cast<int>(pPhoto->m_lHeight));
    if (pPhoto->isRGB()) {
        thumbnail.picture =
            pPhoto->toQImage().scaled(QSize(m_nSide, m_nSide), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    } else {
        CILImage grey = ownPart(extentBeforePadding(dataset).value_or(QSize()), *pPhoto);
        thumbnail.size = QSize(static_cast<int>(grey.m_lWidth), static_cast<int>(grey.m_lHeight));
        reduce(grey, m_nSide);
        const DisplayRange range = DisplayRange::automatic(grey);
        *grey.getPalette() = CILPalette();
        grey.getPalette()->SetImageMinMax(range.minimum, range.maximum);
        grey.setGLFormat(kThreeColours);
        thumbnail.picture = grey.toQImage();
    }
    thumbnail.state = State::Ready;
    thumbnail.reason.clear();
}
