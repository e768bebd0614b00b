// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/RenderMap.h"
#include "platform/orvimage/ColorBar.h"
#include "platform/orvimage/PixelTypes.h"
#include "platform/orvimage/Quantiles.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace orvimage {

namespace {

constexpr int kWantedSide = 512;
constexpr int kMaxSide = 16384;
// The part of the range over which the map appears out of the photograph.
constexpr double kFadeEnd = 0.2;

int screenScale(const CILImage& map, int wanted)
{
    const long side = std::max(map.m_lWidth, map.m_lHeight);
    const long automatic = (kWantedSide + side - 1) / side;
    const long scale = wanted > 0 ? wanted : automatic;
    return static_cast<int>(std::clamp(scale, 1L, std::max(1L, kMaxSide / side)));
}

// Smooth step from 0 to 1 over the fade's part of the range.
double fadeAt(double fraction)
{
    const double t = std::clamp(fraction / kFadeEnd, 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

QImage photographPicture(const CILImage* photograph, const QSize& size)
{
    QImage picture;
    if (photograph != nullptr && !photograph->isEmpty()) {
        CILImage shown(*photograph);
        if (!shown.isRGB()) {
            shown.setColorTable(0);
            shown.setGLFormat(0x1907);
            const ValueRange range = quantileRange(shown, 0.001, 0.999);
            shown.getPalette()->SetImageMinMax(range.minimum, range.maximum);
        }
        picture = shown.toQImage();
    }
    if (picture.isNull()) {
        picture = QImage(size, QImage::Format_ARGB32);
        picture.fill(Qt::black);
        return picture;
    }
    return picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).convertToFormat(QImage::Format_ARGB32);
}

// The map's colours at its own size, with the alpha that lets the photograph through.
QImage mapLayer(const CILImage& map, const CILPalette& palette, const ValueRange& range, double opacity, bool fade)
{
    QImage layer(static_cast<int>(map.m_lWidth), static_cast<int>(map.m_lHeight), QImage::Format_ARGB32);
    const double span = range.maximum - range.minimum;
    visitPixels(map, [&](const auto* pixels, std::size_t) {
        for (int y = 0; y < layer.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(layer.scanLine(y));
            for (int x = 0; x < layer.width(); ++x) {
                const auto v = static_cast<double>(*pixels++);
                const double fraction = span > 0.0 ? std::clamp((v - range.minimum) / span, 0.0, 1.0) : 0.0;
                const double shown = palette.isLogScale() ? std::log10(1.0 + 9.0 * fraction) : fraction;
                const double alpha = std::isnan(v) ? 0.0 : opacity * (fade ? fadeAt(shown) : 1.0);
                const auto level = static_cast<QRgb>(std::lround(255.0 * alpha));
                line[x] = (palette.map(v, range.minimum, range.maximum) & 0x00ffffffU) | (level << 24);
            }
        }
    });
    return layer;
}

// The picture on a white page, with room and a title.
QImage framed(const QImage& picture, const QString& title, int em)
{
    const bool titled = !title.isEmpty() && qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
    const int margin = em;
    const int top = titled ? em * 5 / 2 : margin;
    QImage page(picture.width() + 2 * margin, picture.height() + top + margin, QImage::Format_RGB32);
    page.fill(Qt::white);
    QPainter painter(&page);
    painter.drawImage(margin, top, picture);
    if (titled) {
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setStyleHint(QFont::SansSerif);
        font.setPixelSize(em * 6 / 5);
        font.setBold(true);
        painter.setFont(font);
        painter.setPen(Qt::black);
        const QString shown = QFontMetrics(font).elidedText(title, Qt::ElideMiddle, picture.width());
        painter.drawText(QRect(margin, 0, picture.width(), top), Qt::AlignLeft | Qt::AlignVCenter, shown);
    }
    return page;
}

} // namespace

ValueRange robustRange(const CILImage& map)
{
    const ValueRange found = quantileRange(map, 0.001, 1.0 - 0.0002);
    ValueRange range{std::min(0.0, found.minimum), found.maximum};
    if (!(range.maximum > range.minimum)) {
        range.maximum = finiteRange(map).maximum;
    }
    return range;
}

ValueRange quantileRange(const CILImage& image, double low, double high)
{
    const std::array<double, 2> found = quantiles(image, low, high);
    return {found[0], found[1]};
}

QImage renderMapOverPhotograph(const CILImage& map, const CILImage* photograph, const RenderMapOptions& options)
{
    if (map.isEmpty() || std::max(map.m_lWidth, map.m_lHeight) > kMaxSide) {
        return {};
    }
    ValueRange range{options.minimum, options.maximum};
    if (!options.hasRange) {
        range = robustRange(map);
    }
    CILPalette palette;
    palette.setCLUTinfo(options.colorTable, options.reversed, options.logScale);

    const int scale = screenScale(map, options.scale);
    const QSize size(static_cast<int>(map.m_lWidth) * scale, static_cast<int>(map.m_lHeight) * scale);
    QImage picture = photographPicture(photograph, size);
    const bool hasPhotograph = photograph != nullptr && !photograph->isEmpty();
    const double opacity = std::isnan(options.opacity) || !hasPhotograph ? 1.0 : std::clamp(options.opacity, 0.0, 1.0);
    {
        QPainter painter(&picture);
        painter.drawImage(QRect(QPoint(0, 0), size),
                          mapLayer(map, palette, range, opacity, options.fade && hasPhotograph));
    }
    const int em = std::max(13, std::max(size.width(), size.height()) / 38);
    ColorBarOptions bar;
    bar.fontPixels = em;
    if (!options.unit.isEmpty()) {
        bar.unitLines.append(options.unit);
    }
    return framed(withColorBar(picture, palette, range.minimum, range.maximum, bar), options.title, em);
}

} // namespace orvimage
