// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/TubePath.h"

#include "XTNT/xtnt_assert.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

double catmullRom(double a, double b, double c, double d, double t)
{
    return b + 0.5 * t * (c - a + t * (2.0 * a - 5.0 * b + 4.0 * c - d + t * (3.0 * (b - c) + d - a)));
}

TubePath::Node onCurve(const std::vector<TubePath::Node>& nodes, std::size_t span, double t)
{
    const TubePath::Node& b = nodes[span];
    const TubePath::Node& c = nodes[span + 1];
    const TubePath::Node& a = span > 0 ? nodes[span - 1] : b;
    const TubePath::Node& d = span + 2 < nodes.size() ? nodes[span + 2] : c;
    return {catmullRom(a.x, b.x, c.x, d.x, t), catmullRom(a.y, b.y, c.y, d.y, t),
            std::max(0.0, catmullRom(a.radius, b.radius, c.radius, d.radius, t))};
}

} // namespace

TubePath::TubePath(const std::vector<Node>& nodes, int subdivisions)
{
    XTNT_ASSERT(nodes.size() >= 2 && subdivisions >= 1);
    std::vector<Node> points;
    for (std::size_t span = 0; span + 1 < nodes.size(); ++span) {
        for (int i = 0; i < subdivisions; ++i) {
            points.push_back(onCurve(nodes, span, static_cast<double>(i) / subdivisions));
        }
    }
    points.push_back(nodes.back());

    m_left = m_top = std::numeric_limits<double>::max();
    m_right = m_bottom = std::numeric_limits<double>::lowest();
    for (const Node& point : points) {
        m_left = std::min(m_left, point.x - point.radius);
        m_right = std::max(m_right, point.x + point.radius);
        m_top = std::min(m_top, point.y - point.radius);
        m_bottom = std::max(m_bottom, point.y + point.radius);
    }
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const Node& a = points[i];
        const Node& b = points[i + 1];
        const double dx = b.x - a.x;
        const double dy = b.y - a.y;
        const double square = dx * dx + dy * dy;
        const double length = std::sqrt(square);
        m_pieces.push_back(
            {a.x, a.y, dx, dy, square > 0.0 ? 1.0 / square : 0.0, a.radius, b.radius - a.radius, m_length, length});
        m_length += length;
    }
}

TubePath::Nearest TubePath::nearest(double x, double y) const
{
    Nearest best{0.0, 0.0, 0.0};
    double bestEdge = std::numeric_limits<double>::max();
    for (const Piece& piece : m_pieces) {
        const double px = x - piece.x;
        const double py = y - piece.y;
        const double t = std::clamp((px * piece.dx + py * piece.dy) * piece.inverseSquare, 0.0, 1.0);
        const double ex = px - t * piece.dx;
        const double ey = py - t * piece.dy;
        const double distance = std::sqrt(ex * ex + ey * ey);
        const double radius = piece.radius + t * piece.radiusStep;
        if (distance - radius < bestEdge) {
            bestEdge = distance - radius;
            best = {distance, radius, piece.along + t * piece.length};
        }
    }
    return best;
}

bool TubePath::mayReach(double x, double y, double margin) const
{
    return x > m_left - margin && x < m_right + margin && y > m_top - margin && y < m_bottom + margin;
}
