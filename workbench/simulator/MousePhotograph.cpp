// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/MousePhotograph.h"

#include "XTNT/xtnt_parallel.h"
#include "workbench/simulator/MouseShape.h"
#include "workbench/simulator/NoiseField.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr std::uint64_t kFurSeed = 0x667572;
constexpr int kMargin = 1; // rows and columns around the picture, for slopes

// Relief of the animal on the picture's grid with a margin.
struct Relief
{
    int side = 0; // with margins
    double step = 0.0;
    std::vector<MouseShape::Point> points;

    const MouseShape::Point& at(int row, int column) const
    {
        return points[static_cast<std::size_t>(row) * static_cast<std::size_t>(side) +
                      static_cast<std::size_t>(column)];
    }
};

// The animal's coverage, softened, where the lamp's ray to a place passes it: the shadow falls to the lower right.
double shadeAt(const Relief& relief, int row, int column)
{
    constexpr double kShiftX = 0.16; // cm
    constexpr double kShiftY = 0.18;
    constexpr double kSoftness = 0.7;
    const int fromRow = std::max(0, row - static_cast<int>(std::lround(kShiftY / relief.step)));
    const int fromColumn = std::max(0, column - static_cast<int>(std::lround(kShiftX / relief.step)));
    return MouseShape::coverage(relief.at(fromRow, fromColumn).distance, kSoftness);
}

double place(int pixel, double step)
{
    return (pixel - kMargin + 0.5) * step - 0.5 * MouseShape::kFieldOfView;
}

Relief buildRelief(const MouseShape& shape, int side)
{
    Relief relief;
    relief.side = side + 2 * kMargin;
    relief.step = MouseShape::kFieldOfView / side;
    const auto width = static_cast<std::size_t>(relief.side);
    relief.points.resize(width * width);
    XTNT::parallelChunks(relief.side, 8, [&](long long begin, long long end) {
        for (long long row = begin; row < end; ++row) {
            for (int column = 0; column < relief.side; ++column) {
                relief.points[static_cast<std::size_t>(row) * width + static_cast<std::size_t>(column)] =
                    shape.at(place(column, relief.step), place(static_cast<int>(row), relief.step));
            }
        }
    });
    return relief;
}

// Paints one place after the other; holds the textures.
class Painter
{
public:
    Painter(const MouseShape& shape, std::uint64_t seed)
        : m_shape(shape), m_strands(seed ^ kFurSeed), m_clumps(seed + kFurSeed), m_bed(seed + 2 * kFurSeed)
    {
    }

    // Grey from 0 to 1. slopeX and slopeY: of the surface's height; shade: the animal's coverage where the lamp's ray
    // to this place passes it.
    double grey(double x, double y, const MouseShape::Point& point, double slopeX, double slopeY, double shade) const
    {
        constexpr double kBeyondHair = 0.12; // cm
        if (point.distance > kBeyondHair) {
            return bedGrey(x, y, shade);
        }
        const double strands = fur(x, y);
        // Hairs stand out over the edge of the coat.
        const double ragged = point.distance - 0.045 * point.fur * strands;
        const double coverage = MouseShape::coverage(ragged, 0.03 + 0.05 * point.fur);
        const double bed = coverage < 1.0 ? bedGrey(x, y, shade) : 0.0;
        if (coverage <= 0.0) {
            return bed;
        }
        const double albedo = skinAlbedo(x, y) * (1.0 - point.fur) + coatAlbedo(x, y, strands) * point.fur;
        const double body = albedo * light(slopeX, slopeY, strands * point.fur) * creaseLight(point);
        return bed + coverage * (features(x, y, body) - bed);
    }

private:
    // About -1 to 1: streaks along the lie of the fur, which runs from the nose to the rump and parts from the spine.
    // The streaks follow the curves x exp(-s y) = constant, on which this coordinate is smooth everywhere.
    double fur(double x, double y) const
    {
        const double warp = 0.10 * m_clumps.value(1.3 * x, 1.3 * y);
        const double across = (x - m_shape.spineShift(y)) * std::exp(-0.11 * y) + warp;
        const double along = y - 0.30 * std::fabs(across);
        const double fine = m_strands.value(26.0 * across, 4.2 * along);
        const double coarse = m_strands.value(11.0 * across + 40.0, 2.6 * along);
        return 0.55 * fine + 0.45 * coarse;
    }

    double coatAlbedo(double x, double y, double strands) const
    {
        const double clumps = m_clumps.fractal(2.2 * x, 1.3 * y, 3);
        const double ridge = std::exp(-std::pow((x - m_shape.spineShift(y)) / 0.5, 2.0)); // darker along the back
        return 0.78 - 0.07 * ridge + 0.09 * clumps + 0.13 * strands;
    }

    double skinAlbedo(double x, double y) const
    {
        const double along = m_shape.alongTail(x, y);
        const double rings = along > 0.0 ? 0.06 * std::sin(6.283185307179586 * along / 0.085) : 0.0;
        return 0.62 + rings + 0.04 * m_clumps.value(6.0 * x, 6.0 * y);
    }

    // Lambert's law under a lamp above and a little to the upper left, and the light that a cabinet throws back from
    // all around: the flank that is turned away stays well above the bed.
    static double light(double slopeX, double slopeY, double strands)
    {
        const double sx = slopeX + 0.10 * strands;
        const double norm = std::sqrt(1.0 + sx * sx + slopeY * slopeY);
        const double lamp =
            (0.28 * sx + 0.31 * slopeY + 0.91) / norm; // lamp at (-0.28, -0.31, 0.91); normal (-sx, -sy, 1)
        return 0.55 + 0.48 * std::max(0.0, lamp);
    }

    // Less light reaches the surface near the bed.
    static double creaseLight(const MouseShape::Point& point)
    {
        return 0.80 + 0.20 * (1.0 - std::exp(-point.height / 0.25));
    }

    double features(double x, double y, double body) const
    {
        const double axis = m_shape.spineShift(-3.9);
        for (const double side : {-1.0, 1.0}) {
            const double ex = (x - axis - side * 0.47) / 0.105;
            const double ey = (y + 3.93) / 0.135;
            const double eye = 1.0 - MouseShape::coverage(1.0 - std::hypot(ex - 0.25 * side * ey, ey), 0.35);
            body += eye * (0.05 - body);
            const double glint = std::exp(-(std::pow((ex + 0.35) / 0.28, 2.0) + std::pow((ey + 0.35) / 0.28, 2.0)));
            body += 0.75 * glint * eye;
            const double ear = std::hypot((x - axis - side * 0.93) / 0.27, (y + 3.34) / 0.29);
            body *= 1.0 - 0.30 * MouseShape::coverage(ear - 0.85, 0.9); // the hollow of the ear
        }
        const double nose = std::hypot((x - m_shape.spineShift(-4.7)) / 0.11, (y + 4.76) / 0.09);
        return body * (1.0 - 0.45 * MouseShape::coverage(nose - 0.8, 0.8));
    }

    double bedGrey(double x, double y, double shade) const
    {
        const double vignette = 1.0 - 0.006 * (x * x + y * y);
        const double grain = 0.006 * m_bed.value(40.0 * x, 40.0 * y) + 0.008 * m_bed.fractal(0.8 * x, 0.8 * y, 3);
        return (0.115 + grain) * vignette * (1.0 - 0.65 * shade);
    }

    const MouseShape& m_shape;
    NoiseField m_strands;
    NoiseField m_clumps;
    NoiseField m_bed;
};

} // namespace

CILImage takeMousePhotograph(const MouseShape& shape, int side, std::uint64_t seed)
{
    CILImage photograph;
    if (photograph.InitWithType(ORVTYPE_BYTE, side, side) != EIL_SUCCESS) {
        return photograph;
    }
    const Relief relief = buildRelief(shape, side);
    const Painter painter(shape, seed);
    unsigned char* pPixels = photograph.bytes();
    XTNT::parallelChunks(side, 8, [&](long long begin, long long end) {
        for (long long line = begin; line < end; ++line) {
            const int row = static_cast<int>(line) + kMargin;
            for (int column = kMargin; column < side + kMargin; ++column) {
                const double slopeX =
                    (relief.at(row, column + 1).height - relief.at(row, column - 1).height) / (2.0 * relief.step);
                const double slopeY =
                    (relief.at(row + 1, column).height - relief.at(row - 1, column).height) / (2.0 * relief.step);
                const double grey = painter.grey(place(column, relief.step), place(row, relief.step),
                                                 relief.at(row, column), slopeX, slopeY, shadeAt(relief, row, column));
                pPixels[line * side + column - kMargin] =
                    static_cast<unsigned char>(std::clamp(std::lround(255.0 * grey), 0L, 255L));
            }
        }
    });
    photograph.RefreshImageStats();
    return photograph;
}
