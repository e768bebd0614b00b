// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/MouseShape.h"

#include "workbench/simulator/RandomStream.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::uint64_t kPostureStream = 0x706f7374;
constexpr double kFar = 4.0;        // cm: beyond every part
constexpr double kCulling = 0.45;   // cm: wider than any blend and edge
constexpr double kTrunkTop = -5.2;  // cm: ends of the table of the trunk's width
constexpr double kTrunkStep = 0.01; // cm
constexpr int kTrunkSteps = 900;
constexpr double kTrunkFlatness = 0.95;

// The lower of two distances, melted into one another over `width` (a polynomial smooth minimum).
double meltMinimum(double a, double b, double width)
{
    const double overlap = std::max(width - std::fabs(a - b), 0.0) / width;
    return std::min(a, b) - 0.25 * overlap * overlap * width;
}

} // namespace

MouseShape::MouseShape(std::uint64_t seed)
{
    RandomStream random(seed, kPostureStream);
    m_bend = 0.05 + 0.07 * random.uniform();
    m_tailSide = random.uniform() < 0.5 ? -1.0 : 1.0;
    addBody();
    addLimbs(1.0);
    addLimbs(-1.0);
    addEar(1.0);
    addEar(-1.0);
    addTail();
}

double MouseShape::spineShift(double y) const
{
    return m_bend * std::sin(0.62 * y + 0.4);
}

void MouseShape::addBody()
{
    // Nose, muzzle, head, neck, shoulders, chest, abdomen, rump.
    const double outline[][2] = {{-4.72, 0.10}, {-4.50, 0.22}, {-4.15, 0.40}, {-3.70, 0.63}, {-3.25, 0.77},
                                 {-2.85, 0.80}, {-2.40, 0.86}, {-1.85, 1.05}, {-1.10, 1.18}, {-0.20, 1.34},
                                 {0.65, 1.52},  {1.40, 1.55},  {2.05, 1.33},  {2.50, 0.98},  {2.85, 0.55}};
    std::vector<TubePath::Node> nodes;
    for (const auto& row : outline) {
        nodes.push_back({spineShift(row[0]), row[0], row[1]});
    }
    m_parts.push_back({TubePath(nodes, 5), 0.05, kTrunkFlatness, 1.0, 1.0, false});
    measureTrunk(nodes);
}

void MouseShape::measureTrunk(const std::vector<TubePath::Node>& nodes)
{
    // The tube's own extent at each height, found from its distance on the spine, then smoothed.
    constexpr int kReach = 14; // steps to either side
    const TubePath tube(nodes, 24);
    std::vector<double> squares(kTrunkSteps, 0.0);
    for (int i = 0; i < kTrunkSteps; ++i) {
        const double y = kTrunkTop + i * kTrunkStep;
        double inside = 0.0;
        double outside = 2.5;
        if (tube.nearest(spineShift(y), y).edgeDistance() >= 0.0) {
            continue;
        }
        while (outside - inside > 1e-4) {
            const double middle = 0.5 * (inside + outside);
            (tube.nearest(spineShift(y) + middle, y).edgeDistance() < 0.0 ? inside : outside) = middle;
        }
        squares[static_cast<std::size_t>(i)] = inside * inside;
    }
    m_trunkSquares.assign(kTrunkSteps, 0.0);
    for (int i = kReach; i < kTrunkSteps - kReach; ++i) {
        double sum = 0.0;
        double weights = 0.0;
        for (int j = -kReach; j <= kReach; ++j) {
            const double weight = 1.0 + std::cos(3.14159265358979 * j / (kReach + 1));
            sum += weight * squares[static_cast<std::size_t>(i + j)];
            weights += weight;
        }
        m_trunkSquares[static_cast<std::size_t>(i)] = sum / weights;
    }
}

double MouseShape::trunkHeight(double x, double y) const
{
    const double position = (y - kTrunkTop) / kTrunkStep;
    if (!(position > 0.0) || position >= kTrunkSteps - 1) {
        return 0.0;
    }
    const auto index = static_cast<std::size_t>(position);
    const double t = position - static_cast<double>(index);
    const double square = m_trunkSquares[index] * (1.0 - t) + m_trunkSquares[index + 1] * t;
    const double offset = x - spineShift(y);
    return kTrunkFlatness * std::sqrt(std::max(0.0, square - offset * offset));
}

void MouseShape::addLimbs(double side)
{
    const double lift = side > 0.0 ? 0.0 : 0.12; // no animal lies quite evenly
    const auto x = [this, side](double offset, double y) { return spineShift(y) + side * offset; };
    m_parts.push_back({TubePath({{x(0.62, -1.9), -1.9 + lift, 0.42},
                                 {x(1.14, -2.22), -2.22 + lift, 0.30},
                                 {x(1.47, -2.62), -2.62 + lift, 0.19},
                                 {x(1.60, -3.02), -3.02 + lift, 0.13}},
                                20),
                       0.35, 0.7, 1.0, 0.35});
    addPaw(x(1.63, -3.12), -3.12 + lift, 0.25 * side, -1.0, 0.15, 0.17);

    m_parts.push_back({TubePath({{x(0.85, 1.55), 1.45 - lift, 0.78},
                                 {x(1.42, 1.50), 1.55 - lift, 0.48},
                                 {x(1.72, 2.0), 2.02 - lift, 0.27},
                                 {x(1.82, 2.45), 2.45 - lift, 0.16}},
                                24),
                       0.30, 0.75, 1.0, 0.45});
    m_parts.push_back({TubePath({{x(1.80, 2.4), 2.40 - lift, 0.14},
                                 {x(1.93, 2.75), 2.75 - lift, 0.13},
                                 {x(2.06, 3.15), 3.12 - lift, 0.15}},
                                14),
                       0.12, 0.6, 0.3, 0.0});
    addPaw(x(2.08, 3.18), 3.18 - lift, 0.35 * side, 1.0, 0.15, 0.27);
}

void MouseShape::addPaw(double x, double y, double directionX, double directionY, double radius, double toeLength)
{
    const double length = std::hypot(directionX, directionY);
    const double ux = directionX / length;
    const double uy = directionY / length;
    m_parts.push_back({TubePath({{x - 0.05 * ux, y - 0.05 * uy, radius}, {x + 0.05 * ux, y + 0.05 * uy, radius}}, 1),
                       0.08, 0.55, 0.1, 0.0});
    for (int toe = -2; toe <= 1; ++toe) {
        const double spread = 0.34 * (toe + 0.5);
        const double tx = ux * std::cos(spread) - uy * std::sin(spread);
        const double ty = ux * std::sin(spread) + uy * std::cos(spread);
        const double reach = radius + toeLength * (1.0 - 0.12 * std::fabs(toe + 0.5));
        m_parts.push_back(
            {TubePath({{x + 0.6 * radius * tx, y + 0.6 * radius * ty, 0.05}, {x + reach * tx, y + reach * ty, 0.032}},
                      1),
             0.05, 0.8, 0.0, 0.0});
    }
}

void MouseShape::addEar(double side)
{
    const double shift = spineShift(-3.2);
    m_parts.push_back({TubePath({{shift + side * 0.56, -3.16, 0.22},
                                 {shift + side * 0.78, -3.26, 0.37},
                                 {shift + side * 0.92, -3.33, 0.42}},
                                12),
                       0.07, 0.45, 0.75, 0.3});
}

void MouseShape::addTail()
{
    const double s = m_tailSide;
    m_tail = m_parts.size();
    m_parts.push_back({TubePath({{spineShift(2.8), 2.75, 0.27},
                                 {spineShift(3.1) + 0.02 * s, 3.25, 0.17},
                                 {0.20 * s, 3.90, 0.135},
                                 {0.62 * s, 4.58, 0.125},
                                 {1.40 * s, 5.12, 0.112},
                                 {2.38 * s, 5.27, 0.098},
                                 {3.28 * s, 4.93, 0.082},
                                 {3.92 * s, 4.22, 0.062},
                                 {4.18 * s, 3.40, 0.036}},
                                12),
                       0.16, 0.9, 0.5, 0.0});
}

MouseShape::Point MouseShape::at(double x, double y) const
{
    Point point{kFar, 0.0, 0.0};
    double furWeight = 0.0;
    double fur = 0.0;
    for (const Part& part : m_parts) {
        if (!part.path.mayReach(x, y, kCulling)) {
            continue;
        }
        const TubePath::Nearest nearest = part.path.nearest(x, y);
        const double edge = nearest.edgeDistance();
        point.distance = meltMinimum(point.distance, edge, part.blend);
        if (edge < 0.0 || !part.hasOwnRelief) {
            const double q = nearest.axisDistance / nearest.radius;
            const double height = part.hasOwnRelief
                                      ? part.flatness * nearest.radius * std::sqrt(std::max(0.0, 1.0 - q * q))
                                      : trunkHeight(x, y);
            point.height = -meltMinimum(-point.height, -height, 0.8 * part.blend + 0.02);
        }
        const double share = nearest.along / part.path.length();
        const double weight = std::exp(-std::clamp(edge, -1.0, 1.0) / 0.06);
        furWeight += weight;
        fur += weight * (part.furRoot + share * (part.furTip - part.furRoot));
    }
    point.fur = furWeight > 0.0 ? fur / furWeight : 0.0;
    return point;
}

double MouseShape::coverage(double distance, double softness)
{
    const double t = std::clamp(0.5 - distance / softness, 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

double MouseShape::alongTail(double x, double y) const
{
    const TubePath& tail = m_parts[m_tail].path;
    if (!tail.mayReach(x, y, 0.0)) {
        return -1.0;
    }
    const TubePath::Nearest nearest = tail.nearest(x, y);
    return nearest.edgeDistance() < 0.0 ? nearest.along : -1.0;
}
