// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/MapPicture.h"
#include "platform/orvimage/PictureFont.h"
#include "platform/orvimage/PixelTypes.h"
#include "platform/orvimage/TextLines.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>

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

QFont pageFont(int pixels, bool bold)
{
    QFont font = pictureFont(pixels);
    font.setBold(bold);
    return font;
}

QFont titleFont(int em)
{
    return pageFont(em * 6 / 5, true);
}

// From one line of a title to the next.
int titleLine(int em)
{
    return em * 3 / 2;
}

// Whether pixels lie above and below a range.
std::pair<bool, bool> beyond(const CILImage& map, const ValueRange& range)
{
    bool above = false;
    bool below = false;
    visitPixels(map, [&](const auto* pixels, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            above = above || static_cast<double>(pixels[i]) > range.maximum;
            below = below || static_cast<double>(pixels[i]) < range.minimum;
        }
    });
    return {above, below};
}

} // namespace

double scaleBarLength(double most)
{
    if (!(most > 0.0) || !std::isfinite(most)) {
        return 0.0;
    }
    const double power = std::pow(10.0, std::floor(std::log10(most) + 1e-9));
    for (const double factor : {5.0, 2.0}) {
        if (factor * power <= most * (1.0 + 1e-9)) {
            return factor * power;
        }
    }
    return power;
}

QString scaleBarText(double micrometres)
{
    constexpr double perNanometre = 1e-3;
    constexpr double perMillimetre = 1e3;
    constexpr double perCentimetre = 1e4;
    constexpr double almost = 1.0 - 1e-9;
    const auto text = [micrometres](double unit, const char* name) {
        return QStringLiteral("%1 %2").arg(QString::number(micrometres / unit, 'g', 4), QString::fromUtf8(name));
    };
    if (micrometres >= perCentimetre * almost) {
        return text(perCentimetre, "cm");
    }
    if (micrometres >= perMillimetre * almost) {
        return text(perMillimetre, "mm");
    }
    return micrometres >= almost ? text(1.0, "\u00b5m") : text(perNanometre, "nm");
}

MapPicture::MapPicture(const CILImage& map, const CILImage* photograph, const RenderMapOptions& options)
    : m_options(options)
{
    if (map.isEmpty() || std::max(map.m_lWidth, map.m_lHeight) > kMaxSide) {
        return;
    }
    m_range = options.hasRange ? ValueRange{options.minimum, options.maximum} : robustRange(map);
    m_palette.setCLUTinfo(options.colorTable, options.reversed, options.logScale);
    const int scale = screenScale(map, options.scale);
    m_pixels = scale;
    const QSize size(static_cast<int>(map.m_lWidth) * scale, static_cast<int>(map.m_lHeight) * scale);
    m_picture = photographPicture(photograph, size);
    const bool hasPhotograph = photograph != nullptr && !photograph->isEmpty();
    const double opacity = std::isnan(options.opacity) || !hasPhotograph ? 1.0 : std::clamp(options.opacity, 0.0, 1.0);
    QPainter painter(&m_picture);
    painter.drawImage(QRect(QPoint(0, 0), size),
                      mapLayer(map, m_palette, m_range, opacity, options.fade && hasPhotograph));
    painter.end();
    const auto [above, below] = beyond(map, m_range);
    m_barLook.above = above;
    m_barLook.below = below;
    layOut();
}

void MapPicture::layOut()
{
    const QSize picture = m_picture.size();
    m_em = std::max(13, std::max(picture.width(), picture.height()) / 32);
    m_barLook.fontPixels = m_em;
    if (!m_options.unit.isEmpty()) {
        m_barLook.unitLines.append(m_options.unit);
    }
    if (canDrawText()) {
        m_title = textLines(m_options.title, titleFont(m_em), picture.width());
    }
    const bool noted = !m_options.note.isEmpty() && canDrawText();
    m_top = m_title.isEmpty() ? m_em : m_em * 5 / 2 + (m_title.size() - 1) * titleLine(m_em);
    const QSize bar = colorBar().size();
    m_size = QSize(picture.width() + bar.width() + 3 * m_em,
                   std::max(picture.height(), bar.height()) + m_top + (noted ? m_em * 2 : m_em));
}

VerticalColorBar MapPicture::colorBar() const
{
    const int length = std::max(m_picture.height() - 3 * m_em, 4 * m_em);
    return VerticalColorBar(m_palette, m_range.minimum, m_range.maximum, length, m_barLook);
}

void MapPicture::draw(QPainter& painter) const
{
    if (isNull()) {
        return;
    }
    painter.save();
    painter.fillRect(QRect(QPoint(0, 0), m_size), Qt::white);
    painter.drawImage(m_em, m_top, m_picture);
    drawTexts(painter);
    if (m_options.pixelMicrometres > 0.0) {
        drawScaleBar(painter);
    }
    const VerticalColorBar bar = colorBar();
    painter.translate(m_picture.width() + 2 * m_em,
                      m_top + std::max(0, (m_picture.height() - bar.size().height()) / 2));
    bar.draw(painter);
    painter.restore();
}

void MapPicture::drawTexts(QPainter& painter) const
{
    if (!canDrawText()) {
        return;
    }
    painter.setPen(Qt::black);
    painter.setFont(titleFont(m_em));
    QRect line(m_em, m_em / 2, m_picture.width(), titleLine(m_em));
    for (const QString& text : m_title) {
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, text);
        line.translate(0, titleLine(m_em));
    }
    const QFont small = pageFont(m_em * 9 / 10, false);
    const QRect beneath(m_em, m_top + m_picture.height(), m_size.width() - 2 * m_em, m_em * 2);
    painter.setFont(small);
    painter.drawText(beneath, Qt::AlignLeft | Qt::AlignVCenter,
                     QFontMetrics(small).elidedText(m_options.note, Qt::ElideMiddle, beneath.width()));
}

// White in a dark outline, so that it is seen on any map.
void MapPicture::drawScaleBar(QPainter& painter) const
{
    constexpr double mostOfWidth = 0.25;
    const double perPixel = m_options.pixelMicrometres / m_pixels;
    const double length = scaleBarLength(m_picture.width() * mostOfWidth * perPixel);
    const double pixels = length / perPixel;
    if (!(pixels >= 2.0)) {
        return;
    }
    const double thick = std::max(3.0, m_em / 4.0);
    const QPointF end(m_em + m_em, m_top + m_picture.height() - m_em);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::black, 1.0));
    painter.setBrush(Qt::white);
    painter.drawRect(QRectF(end.x(), end.y() - thick, pixels, thick));
    if (canDrawText()) {
        const QFont font = pageFont(m_em, true);
        const QString text = scaleBarText(length);
        QPainterPath letters;
        letters.addText(end + QPointF(0, -thick - m_em * 0.4), font, text);
        painter.strokePath(letters, QPen(Qt::black, m_em / 5.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.fillPath(letters, Qt::white);
    }
    painter.restore();
}

QImage MapPicture::toImage() const
{
    if (isNull()) {
        return {};
    }
    QImage page(m_size, QImage::Format_RGB32);
    QPainter painter(&page);
    draw(painter);
    return page;
}

} // namespace orvimage
