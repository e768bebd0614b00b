// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QSize>

#include <cstdint>
#include <memory>
#include <vector>

namespace orvimage {

class Layer;
using LayerPointer = std::shared_ptr<const Layer>;

// A picture that does not change, in QImage::Format_ARGB32: one that is at hand, or a blend that is made of its layers
// each time somebody looks. A blend of a small map and a large photograph that many pictures share so costs no more
// than the map.
class Layer
{
public:
    // Null for a null picture. `clear` has a bit for each pixel, row by row, that lets what lies beneath be seen when
    // the layer lies over another one; empty: none does.
    static LayerPointer of(const QImage& picture, std::vector<std::uint64_t> clear = {});
    // `upper` at `opacity` (0 to 1, a float's value) times its own alpha over `lower`, at the size of the latter;
    // either may be null, not both.
    static LayerPointer blend(const LayerPointer& upper, const LayerPointer& lower, double opacity, bool smooth);
    // With its brightest channel brought to `level`, 1 to 255.
    static LayerPointer brightened(const LayerPointer& layer, int level);

    const QSize& size() const { return m_size; }
    // Null when memory runs out.
    QImage picture() const;

private:
    Layer() = default;
    QImage pictureOver() const;
    QImage blended() const;

    QSize m_size;
    QImage m_picture;
    std::vector<std::uint64_t> m_clear;
    LayerPointer m_upper;
    LayerPointer m_lower;
    double m_opacity = 0.0;
    bool m_smooth = false;
    int m_brightness = 0; // 0: as it is
    int m_depth = 0;      // blends upon each other
};

// Scales the colours so that the brightest channel of what can be seen reaches `level`.
void adjustBrightness(QImage& picture, int level);

} // namespace orvimage
