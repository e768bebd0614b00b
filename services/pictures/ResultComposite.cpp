// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/pictures/ResultComposite.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CILImage.h"
#include "host/CORVLog.h"
#include "platform/orvimage/PictureFont.h"
#include "services/basis/ImageExtent.h"
#include "spectra/logLine.h"
#include "windows/compositePicture.h"

#include <QFontMetrics>
#include <QPainter>
#include <QVector>

#include <algorithm>

namespace {

constexpr int smallestText = 13;
constexpr int textsPerSide = 38; // a text's height is this part of the picture's longer side
// Text in a colour darker than this (luma, 0 to 255) cannot be read on the strip.
constexpr int darkestText = 110;
const QColor stripColor(24, 24, 24);

// A composite as the window starts with it.
struct StartedComposite
{
    QList<CompositeLayer> layers;
    QImage picture;
};

StartedComposite startedComposite(const CORVSpumKyvo& engine, int nSpot, const QList<QColor>& colors)
{
    StartedComposite started;
    const CompositeInput& input = engine.ownResultView().composite();
    const CompositeMaps maps{input.data, input.pixelIndices, input.width, input.height, input.spots};
    if (input.channels.isEmpty() || nSpot < 0 || nSpot >= input.spots) {
        return started;
    }
    if (!compositeSizesMatch(maps, input.channels.size())) {
        logLine(compositeSizeMismatchText(), CORVLOG_ERROR);
        return started;
    }
    const CILImage none;
    const CILImage& photo = input.photo != nullptr ? *input.photo : none;
    started.layers = compositeStartLayers(maps, input.channels, photo);
    for (int i = 0; i < std::min(colors.size(), input.channels.size()); ++i) {
        started.layers[i].channel.color = colors[i];
    }
    takeCompositeSpot(maps, nSpot, started.layers);
    started.picture = compositePicture(maps, nSpot, started.layers, photo);
    const QSize extent = extentOfPicture(engine, started.picture.width(), started.picture.height());
    if (!started.picture.isNull() && extent != started.picture.size()) {
        started.picture = started.picture.copy(0, 0, extent.width(), extent.height());
    }
    return started;
}

QColor readable(QColor color)
{
    while (qGray(color.rgb()) < darkestText) {
        color = QColor((color.red() * 7 + 255) / 8, (color.green() * 7 + 255) / 8, (color.blue() * 7 + 255) / 8);
    }
    return color;
}

// Labels in rows no wider than the picture.
class LegendLayout
{
public:
    LegendLayout(const QList<QPair<QString, QColor>>& labels, const QFontMetrics& metrics, int nWidth)
        : m_nRow(metrics.height() * 3 / 2), m_nPatch(metrics.ascent()), m_nMargin(metrics.height() / 2)
    {
        const int room = std::max(nWidth - 2 * m_nMargin - m_nPatch * 3 / 2, m_nPatch);
        int x = m_nMargin;
        int y = m_nMargin / 2;
        for (const auto& label : labels) {
            const QString text = metrics.elidedText(label.first, Qt::ElideRight, room);
            const int width = m_nPatch * 3 / 2 + metrics.horizontalAdvance(text);
            if (x > m_nMargin && x + width > nWidth - m_nMargin) {
                x = m_nMargin;
                y += m_nRow;
            }
            m_entries.append({text, label.second, QPoint(x, y)});
            x += width + 2 * m_nMargin + m_nPatch;
        }
        m_nHeight = y + m_nRow + m_nMargin / 2;
    }

    int height() const { return m_nHeight; }

    void draw(QPainter& painter, int nTop) const
    {
        for (const Entry& entry : m_entries) {
            const QRect line(entry.place + QPoint(0, nTop), QSize(m_nPatch, m_nRow));
            const QRect patch(line.x(), line.center().y() - m_nPatch / 2, m_nPatch, m_nPatch);
            painter.fillRect(patch, entry.color);
            painter.setPen(readable(entry.color));
            painter.drawRect(patch.adjusted(0, 0, -1, -1));
            painter.drawText(QRect(line.x() + m_nPatch * 3 / 2, line.y(), painter.device()->width(), m_nRow),
                             Qt::AlignLeft | Qt::AlignVCenter, entry.text);
        }
    }

private:
    struct Entry
    {
        QString text;
        QColor color;
        QPoint place;
    };
    const int m_nRow, m_nPatch, m_nMargin;
    int m_nHeight = 0;
    QVector<Entry> m_entries;
};

} // namespace

QImage withLegend(const QImage& picture, const QList<QPair<QString, QColor>>& labels)
{
    if (picture.isNull() || labels.isEmpty() || !orvimage::canDrawText()) {
        return picture;
    }
    const QFont font =
        orvimage::pictureFont(std::max(smallestText, std::max(picture.width(), picture.height()) / textsPerSide));
    const LegendLayout legend(labels, QFontMetrics(font), picture.width());

    QImage page(picture.width(), picture.height() + legend.height(), QImage::Format_RGB32);
    page.fill(stripColor);
    QPainter painter(&page);
    painter.drawImage(0, 0, picture);
    painter.setFont(font);
    legend.draw(painter, picture.height());
    return page;
}

QImage compositePictureOf(const CORVSpumKyvo& engine, int nSpot, const QList<QColor>& colors)
{
    return startedComposite(engine, nSpot, colors).picture;
}

QImage compositeWithLegendOf(const CORVSpumKyvo& engine, int nSpot, const QList<QColor>& colors)
{
    const StartedComposite composite = startedComposite(engine, nSpot, colors);
    QList<QPair<QString, QColor>> labels = compositeLabels(composite.layers);
    std::reverse(labels.begin(), labels.end()); // read from the first component on
    return withLegend(composite.picture, labels);
}

QList<CompositeFile> compositeFilesOf(const CORVSpumKyvo& engine, const QList<QColor>& colors)
{
    QList<CompositeFile> files;
    const int spots = engine.ownResultView().composite().spots;
    for (int s = 0; s < spots; ++s) {
        const QImage picture = compositeWithLegendOf(engine, s, colors);
        if (picture.isNull()) {
            continue;
        }
        const QString spot = spots > 1 ? QStringLiteral("_spot%1").arg(s + 1) : QString();
        files.append({QStringLiteral("composite%1.png").arg(spot), picture});
    }
    return files;
}
