// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/BodyPictures.h"

#include "XTNT/xtnt_parallel.h"
#include "workbench/simulator/MouseShape.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

constexpr double kTurn = 6.283185307179586;
constexpr double kStripeCm = 0.4;     // from stripe to stripe on the bed
constexpr double kStripeShift = 0.6;  // cm that a height of 1 cm moves a stripe
constexpr double kTissueLoss = 0.55;  // of X-rays, 1/cm
constexpr double kBoneLoss = 0.9;     // of a bone at its thickest
constexpr double kOpenBeam = 52000.0; // counts beside the animal

// value(x, y, point) at each pixel's centre.
template <typename Pixel, typename Value>
CILImage picture(const MouseShape& shape, ORVDataTypes eType, int side, const Value& value)
{
    CILImage image;
    if (side < 1 || image.InitWithType(eType, side, side) != EIL_SUCCESS) {
        return image;
    }
    auto* pPixels = static_cast<Pixel*>(image.m_pData);
    const double step = MouseShape::kFieldOfView / side;
    XTNT::parallelChunks(side, 4, [&](long long begin, long long end) {
        for (long long row = begin; row < end; ++row) {
            for (int column = 0; column < side; ++column) {
                const double x = (column + 0.5) * step - 0.5 * MouseShape::kFieldOfView;
                const double y = (static_cast<double>(row) + 0.5) * step - 0.5 * MouseShape::kFieldOfView;
                pPixels[row * side + column] = static_cast<Pixel>(std::lround(value(x, y, shape.at(x, y))));
            }
        }
    });
    image.RefreshImageStats();
    return image;
}

double bump(double distance, double width)
{
    return std::exp(-0.5 * distance * distance / (width * width));
}

// Thickness of bone at a place, about 1 at its most.
double bone(const MouseShape& shape, double x, double y)
{
    const double across = x - shape.spineShift(y);
    double content = 0.0;
    if (y > -2.7 && y < 2.4) {
        content += bump(across, 0.07) * (0.75 + 0.25 * std::cos(kTurn * y / 0.16)); // vertebrae
    }
    if (y > -1.7 && y < 0.1 && std::fabs(across) < 0.85) {
        content += 0.22 * bump(std::remainder(y + 0.35 * std::fabs(across), 0.15), 0.02); // ribs
    }
    content += 0.5 * bump(std::hypot(across / 0.42, (y + 3.3) / 0.6) - 1.0, 0.12); // skull
    return content;
}

} // namespace

CILImage takeStructuredLight(const MouseShape& shape, int side, bool bStripes)
{
    return picture<std::uint8_t>(
        shape, ORVTYPE_BYTE, side, [bStripes](double, double y, const MouseShape::Point& point) {
            const double coverage = MouseShape::coverage(point);
            const double lit = 20.0 + 150.0 * coverage * (0.7 + 0.3 * std::min(point.height, 1.0));
            const double along = (y + kStripeShift * point.height) / kStripeCm;
            return bStripes ? lit * (0.5 + 0.5 * std::cos(kTurn * along)) : lit;
        });
}

CILImage takeXRay(const MouseShape& shape, int side)
{
    return picture<std::uint16_t>(shape, ORVTYPE_USHORT, side,
                                  [&shape](double x, double y, const MouseShape::Point& point) {
                                      const double coverage = MouseShape::coverage(point);
                                      const double loss = kTissueLoss * point.height + kBoneLoss * bone(shape, x, y);
                                      return kOpenBeam * std::exp(-coverage * loss);
                                  });
}
