// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/PaintMasks.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace orvwidgets {

namespace {

constexpr std::pair<const char*, int> kPens[] = {{"Thin", 1}, {"Medium", 3}, {"Thick", 7}};

std::size_t area(const QSize& size)
{
    return size.isEmpty() ? 0 : static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height());
}

} // namespace

int PaintMasks::penDiameter(const QString& strPen)
{
    for (const auto& [name, diameter] : kPens) {
        if (strPen.compare(QLatin1String(name), Qt::CaseInsensitive) == 0) {
            return diameter;
        }
    }
    return 0;
}

QString PaintMasks::penBeside(int nDiameter, bool bThinner)
{
    const char* pBeside = nullptr;
    for (const auto& [name, diameter] : kPens) {
        if (bThinner && diameter < nDiameter) {
            pBeside = name; // the thickest of these
        } else if (!bThinner && diameter > nDiameter && pBeside == nullptr) {
            pBeside = name;
        }
    }
    return QString::fromLatin1(pBeside);
}

void PaintMasks::setSize(const QSize& size)
{
    if (size == m_size) {
        return;
    }
    m_size = size;
    m_regions.clear();
    m_stroke.reset();
}

bool PaintMasks::setColor(unsigned char channel, const QColor& color)
{
    if (channel == 0) {
        return false;
    }
    m_colors[channel] = color;
    return true;
}

QRect PaintMasks::removeColor(unsigned char channel)
{
    if (m_stroke && m_nStrokeChannel == channel) {
        endStroke();
    }
    return m_colors.erase(channel) != 0 && !isEmpty(channel) ? all() : QRect();
}

void PaintMasks::setPen(unsigned char channel, int nDiameter)
{
    if (nDiameter > 0) {
        m_pens[channel] = nDiameter;
    }
}

int PaintMasks::pen(unsigned char channel) const
{
    const auto found = m_pens.find(channel);
    return found == m_pens.end() ? 1 : found->second;
}

QRect PaintMasks::reset(unsigned char channel)
{
    if (m_stroke && m_nStrokeChannel == channel) {
        m_stroke.reset();
    }
    return m_regions.erase(channel) != 0 ? all() : QRect();
}

QList<int> PaintMasks::pixels(unsigned char channel) const
{
    QList<int> indices;
    const auto found = m_regions.find(channel);
    if (found == m_regions.end()) {
        return indices;
    }
    indices.reserve(static_cast<int>(found->second.count));
    const Bits& bits = found->second.bits;
    for (std::size_t i = 0; i < bits.size(); ++i) {
        if (bits[i]) {
            indices.append(static_cast<int>(i));
        }
    }
    return indices;
}

bool PaintMasks::isPainted(unsigned char channel, int nIndex) const
{
    const auto found = m_regions.find(channel);
    return found != m_regions.end() && nIndex >= 0 && static_cast<std::size_t>(nIndex) < found->second.bits.size() &&
           found->second.bits[static_cast<std::size_t>(nIndex)];
}

int PaintMasks::count(unsigned char channel) const
{
    const auto found = m_regions.find(channel);
    return found == m_regions.end() ? 0 : static_cast<int>(found->second.count);
}

void PaintMasks::set(Region& region, int nIndex, bool bOn)
{
    region.bits[static_cast<std::size_t>(nIndex)] = bOn;
    if (bOn) {
        ++region.count;
    } else {
        --region.count;
    }
}

bool PaintMasks::beginStroke(unsigned char channel, bool bErase)
{
    if (!contains(channel) || m_size.isEmpty()) {
        return false;
    }
    endStroke();
    m_stroke = Stroke{bErase, {}};
    m_nStrokeChannel = channel;
    m_last.reset();
    Region& region = m_regions[channel];
    region.bits.resize(area(m_size));
    return true;
}

// The pixels whose centres lie in the circle of the pen.
void PaintMasks::stamp(const QPoint& centre, QRect& changed)
{
    const int diameter = pen(m_nStrokeChannel);
    const int reach = diameter / 2;
    const QRect square = QRect(centre.x() - reach, centre.y() - reach, 2 * reach + 1, 2 * reach + 1).intersected(all());
    for (int y = square.top(); y <= square.bottom(); ++y) {
        for (int x = square.left(); x <= square.right(); ++x) {
            const int dx = x - centre.x();
            const int dy = y - centre.y();
            if (4 * (dx * dx + dy * dy) <= diameter * diameter) {
                change(x, y, changed);
            }
        }
    }
}

// Of the stroke, once each.
void PaintMasks::change(int x, int y, QRect& changed)
{
    const int index = y * m_size.width() + x;
    if (isPainted(m_nStrokeChannel, index) == m_stroke->bErase) {
        set(m_regions[m_nStrokeChannel], index, !m_stroke->bErase);
        m_stroke->changed.push_back(index);
        changed |= QRect(x, y, 1, 1);
    }
}

QRect PaintMasks::fill(const QRect& box, bool bEllipse)
{
    QRect changed;
    if (!m_stroke) {
        return changed;
    }
    const QRect part = box.intersected(all());
    const double width = box.width();
    const double height = box.height();
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            // Of the centre from that of the box, in half sides of it.
            const double dx = (2 * (x - box.left()) + 1 - width) / width;
            const double dy = (2 * (y - box.top()) + 1 - height) / height;
            if (!bEllipse || dx * dx + dy * dy <= 1.0) {
                change(x, y, changed);
            }
        }
    }
    return changed;
}

QRect PaintMasks::strokeTo(const QPoint& pixel)
{
    QRect changed;
    if (!m_stroke) {
        return changed;
    }
    const QPoint from = m_last.value_or(pixel);
    const QPoint way = pixel - from;
    const int steps = std::max({1, std::abs(way.x()), std::abs(way.y())});
    for (int i = 0; i <= steps; ++i) {
        stamp(QPoint(from.x() + way.x() * i / steps, from.y() + way.y() * i / steps), changed);
    }
    m_last = pixel;
    return changed;
}

bool PaintMasks::endStroke()
{
    if (!m_stroke) {
        return false;
    }
    if (!m_stroke->changed.empty()) {
        auto& history = m_regions[m_nStrokeChannel].history;
        history.push_back(std::move(*m_stroke));
        if (history.size() > kHistory) {
            history.erase(history.begin());
        }
    }
    m_stroke.reset();
    return true;
}

std::optional<QRect> PaintMasks::takeBack(unsigned char channel)
{
    if (m_stroke) {
        channel = m_nStrokeChannel;
        endStroke();
    }
    const auto found = m_regions.find(channel);
    if (found == m_regions.end() || found->second.history.empty()) {
        return std::nullopt;
    }
    Region& region = found->second;
    const Stroke last = std::move(region.history.back());
    region.history.pop_back();
    for (const int index : last.changed) {
        set(region, index, last.bErase);
    }
    return boundsOf(last.changed);
}

bool PaintMasks::canTakeBack(unsigned char channel) const
{
    const auto found = m_regions.find(channel);
    return m_stroke.has_value() || (found != m_regions.end() && !found->second.history.empty());
}

QRect PaintMasks::boundsOf(const std::vector<int>& indices) const
{
    QRect bounds;
    for (const int index : indices) {
        bounds |= QRect(index % m_size.width(), index / m_size.width(), 1, 1);
    }
    return bounds;
}

std::optional<QRgb> PaintMasks::colorAt(int nIndex) const
{
    int red = 0;
    int green = 0;
    int blue = 0;
    int layers = 0;
    for (const auto& [channel, color] : m_colors) {
        if (isPainted(channel, nIndex)) {
            red += color.red();
            green += color.green();
            blue += color.blue();
            ++layers;
        }
    }
    if (layers == 0) {
        return std::nullopt;
    }
    return qRgb(red / layers, green / layers, blue / layers);
}

} // namespace orvwidgets
