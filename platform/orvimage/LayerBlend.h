// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>

#include <array>

namespace orvimage {

// One picture over another at an opacity (T. Porter, T. Duff, Compositing digital images, 1984), for pictures in
// QImage::Format_ARGB32. Every path gives the bytes of over().
class LayerBlend
{
public:
    // `opacity` is a float's value, 0 to 1.
    explicit LayerBlend(double opacity);

    // `upper` at the opacity times its own alpha over `lower`, in double precision, rounded to nearest. The one
    // formula.
    static QRgb over(QRgb upper, QRgb lower, double opacity);

    // The same for a line; null stands for a line of transparent pixels.
    void line(const QRgb* upper, const QRgb* lower, QRgb* out, int count) const;

private:
    void alone(const QRgb* upper, QRgb* out, int count) const;
    void block(const QRgb* upper, const QRgb* lower, QRgb* out, int count) const;
    void opaqueBlock(const QRgb* upper, const QRgb* lower, QRgb* out, int count) const;
    void fullBlock(const QRgb* upper, const QRgb* lower, QRgb* out, int count) const;
    bool integersServe() const;

    double m_opacity;
    int m_weight;    // of an opaque pixel, a fraction of 2^22
    bool m_integers; // whether integer arithmetic with that weight gives the bytes of over()
    // By the alpha of the upper pixel: the share of the upper and of an opaque lower one, their sum and its level.
    std::array<double, 256> m_upperShare;
    std::array<double, 256> m_lowerShare;
    std::array<double, 256> m_total;
    std::array<QRgb, 256> m_level;      // shifted to its place
    std::array<QRgb, 256> m_aloneLevel; // over nothing
};

// `upper`, already of its size, over `lower`; either may be null, not both. A null picture when memory runs out. Works
// on all threads of the process (XTNT::parallelChunks).
QImage blendPictures(const QImage& upper, const QImage& lower, double opacity);

} // namespace orvimage
