// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/SourceShapes.h"

#include "workbench/simulator/NoiseField.h"
#include "workbench/simulator/RandomStream.h"
#include "workbench/simulator/TubePath.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::uint64_t kFoodSeed = 0x666f6f64;
constexpr std::uint64_t kPatchSeed = 0x70617463;
constexpr std::uint64_t kGlowSeed = 0x676c6f77;

// Thickness of a tube at a place, with a soft edge.
double tubeContent(const TubePath& tube, double x, double y)
{
    if (!tube.mayReach(x, y, 0.0)) {
        return 0.0;
    }
    const TubePath::Nearest nearest = tube.nearest(x, y);
    const double q = nearest.axisDistance / std::max(nearest.radius, 1e-6);
    return q < 1.0 ? nearest.radius * std::sqrt(1.0 - q * q) : 0.0;
}

struct Place
{
    double x;
    double y;
};

struct Ellipsoid
{
    Place centre;    // cm
    double longSide; // half axes in cm
    double shortSide;
    double angle; // of the long one from x on, radians
};

// Thickness of bodies at a place, each of which has a largest one of 1.
DepthBlur::Density ellipsoids(const std::vector<Ellipsoid>& bodies)
{
    return [bodies](double x, double y) {
        double content = 0.0;
        for (const Ellipsoid& body : bodies) {
            const double dx = x - body.centre.x;
            const double dy = y - body.centre.y;
            const double u = (std::cos(body.angle) * dx + std::sin(body.angle) * dy) / body.longSide;
            const double v = (std::cos(body.angle) * dy - std::sin(body.angle) * dx) / body.shortSide;
            content += std::sqrt(std::max(0.0, 1.0 - u * u - v * v));
        }
        return content;
    };
}

// Shoulder, flank, hind back, neck, thigh, chest, loin, rump.
constexpr Place kPatches[] = {{-0.52, -1.35}, {0.62, 0.05},  {-0.70, 1.75}, {0.18, -2.75},
                              {1.15, 1.75},   {0.55, -1.55}, {-0.75, 0.15}, {0.10, 2.15}};

} // namespace

DepthBlur::Density SourceShapes::food(const MouseShape& shape, std::uint64_t seed)
{
    RandomStream random(seed, kFoodSeed);
    const auto jitter = [&random](double reach) { return reach * (2.0 * random.uniform() - 1.0); };
    const double s = shape.spineShift(1.0);
    const TubePath stomach(
        {{s - 0.30, 0.18, 0.16}, {s - 0.62, 0.30, 0.30}, {s - 0.72, 0.55, 0.26}, {s - 0.52, 0.75, 0.12}});
    const TubePath caecum({{s + 0.35, 1.55, 0.16}, {s + 0.62, 1.72, 0.24}, {s + 0.55, 2.0, 0.15}});
    std::vector<TubePath::Node> loops;
    constexpr int kTurns = 12;
    for (int i = 0; i <= kTurns; ++i) {
        const double side = i % 2 == 0 ? -1.0 : 1.0;
        const double y = 0.82 + 1.18 * i / kTurns;
        const double reach = 0.62 * std::sin(0.35 + 2.5 * i / kTurns);
        loops.push_back({s + 0.08 + side * reach + jitter(0.10), y + jitter(0.07), 0.095 + jitter(0.02)});
    }
    const TubePath gut(loops, 10);
    const NoiseField lumps(seed ^ kFoodSeed);
    return [stomach, caecum, gut, lumps](double x, double y) {
        double content = 1.1 * tubeContent(stomach, x, y) + tubeContent(caecum, x, y);
        const double loop = tubeContent(gut, x, y);
        if (loop > 0.0) {
            const double along = gut.nearest(x, y).along;
            content += 1.9 * loop * std::clamp(0.55 + 0.6 * lumps.value(2.3 * along, 0.5), 0.0, 1.0);
        }
        return content > 0.0 ? content * (0.9 + 0.35 * lumps.fractal(3.0 * x, 3.0 * y, 3)) : 0.0;
    };
}

DepthBlur::Density SourceShapes::probePatch(const MouseShape& shape, int index, std::uint64_t seed)
{
    constexpr int kPlaces = static_cast<int>(sizeof kPatches / sizeof kPatches[0]);
    RandomStream random(seed, kPatchSeed, static_cast<std::uint64_t>(index));
    const auto jitter = [&random](double reach) { return reach * (2.0 * random.uniform() - 1.0); };
    const Place& place = kPatches[index % kPlaces];
    const double x0 = place.x + shape.spineShift(place.y) + jitter(0.08);
    const double y0 = place.y + jitter(0.10);
    const double angle = 3.141592653589793 * random.uniform();
    const double longSide = 0.34 + jitter(0.04);
    const double shortSide = 0.25 + jitter(0.03);
    const double satelliteAngle = 6.283185307179586 * random.uniform();
    const double satelliteX = x0 + 0.62 * std::cos(satelliteAngle);
    const double satelliteY = y0 + 0.62 * std::sin(satelliteAngle);
    const NoiseField texture(RandomStream::mix(seed, kPatchSeed, static_cast<std::uint64_t>(index)));
    return [=](double x, double y) {
        constexpr double kBeyond = 0.9; // cm: outside both
        if (std::hypot(x - x0, y - y0) > kBeyond) {
            return 0.0;
        }
        const double u = (std::cos(angle) * (x - x0) + std::sin(angle) * (y - y0)) / longSide;
        const double v = (std::cos(angle) * (y - y0) - std::sin(angle) * (x - x0)) / shortSide;
        const double ragged = 1.0 + 0.35 * texture.fractal(4.0 * x, 4.0 * y, 2);
        const double patch = std::max(0.0, 1.0 - (u * u + v * v) / ragged);
        const double reach = std::hypot(x - satelliteX, y - satelliteY) / 0.13;
        const double satellite = 0.45 * std::max(0.0, 1.0 - reach * reach);
        return std::sqrt(patch) * (1.0 + 0.3 * texture.value(5.0 * x + 9.0, 5.0 * y)) + satellite;
    };
}

DepthBlur::Density SourceShapes::liver(const MouseShape& shape)
{
    const double s = shape.spineShift(-0.3);
    return ellipsoids({{{s + 0.20, -0.35}, 0.55, 0.34, 0.2}, {{s - 0.30, -0.28}, 0.42, 0.28, -0.3}});
}

DepthBlur::Density SourceShapes::kidneys(const MouseShape& shape)
{
    const double s = shape.spineShift(0.9);
    return ellipsoids({{{s - 0.48, 0.98}, 0.30, 0.18, 1.4}, {{s + 0.46, 0.78}, 0.30, 0.18, 1.75}});
}

std::function<double(double, double, const MouseShape::Point&)> SourceShapes::tissueGlow(const MouseShape& shape,
                                                                                         std::uint64_t seed)
{
    const NoiseField texture(seed ^ kGlowSeed);
    return [&shape, texture](double x, double y, const MouseShape::Point& point) {
        constexpr double kReachCm = 0.55; // light comes from about this depth
        const double thickness = 1.0 - std::exp(-point.height / kReachCm);
        const double broad = texture.fractal(0.55 * x, 0.55 * y, 2);
        const double across = x - shape.spineShift(y);
        const double streaks = texture.value(9.0 * across * std::exp(-0.11 * y) + 30.0, 2.2 * y);
        const double skin = 1.0 + 0.35 * (1.0 - point.fur); // bare skin is not dimmed by a coat
        return thickness * skin * (1.0 + 0.30 * broad + 0.07 * streaks);
    };
}
