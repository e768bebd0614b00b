// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

// A smooth tube in the plane: a curve through nodes (Catmull-Rom) with a radius that follows it, rounded at both ends.
class TubePath
{
public:
    struct Node
    {
        double x; // cm
        double y;
        double radius;
    };
    // The part of the tube that a point belongs to.
    struct Nearest
    {
        double axisDistance;                                          // cm, to the tube's axis
        double radius;                                                // cm, of the tube there
        double along;                                                 // cm, from the first node along the axis
        double edgeDistance() const { return axisDistance - radius; } // below 0 inside
    };

    // At least two nodes; each span is drawn as `subdivisions` straight pieces.
    explicit TubePath(const std::vector<Node>& nodes, int subdivisions = 8);

    // The piece whose edge is nearest (inside: deepest).
    Nearest nearest(double x, double y) const;
    // Whether the tube's edge may be nearer than `margin`; never false when it is.
    bool mayReach(double x, double y, double margin) const;
    double length() const { return m_length; }

private:
    struct Piece
    {
        double x;
        double y;
        double dx;
        double dy;
        double inverseSquare; // 1 / (dx^2 + dy^2), 0 for a piece without length
        double radius;
        double radiusStep;
        double along;
        double length;
    };
    std::vector<Piece> m_pieces;
    double m_length = 0.0;
    double m_left = 0.0;
    double m_right = 0.0;
    double m_top = 0.0;
    double m_bottom = 0.0;
};
