// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/simulator/TubePath.h"

#include <cstdint>
#include <vector>

// The outline and relief of a mouse that lies prone, seen from above, nose up: body, head, ears, limbs with toes, and
// tail, as smoothly united tubes. A continuous function of the place in centimetres, so that every resolution shows the
// same animal. The origin is the centre of the field of view, x to the right, y down.
class MouseShape
{
public:
    // Side of the square field of view in cm; the animal lies well inside.
    static constexpr double kFieldOfView = 12.0;

    struct Point
    {
        double distance; // cm to the outline, below 0 inside
        double height;   // cm of the surface above the bed; 0 outside
        double fur;      // 1 where fur grows, 0 on bare skin (tail, paws, inside of the ears)
    };

    // The seed bends the posture a little.
    explicit MouseShape(std::uint64_t seed);

    Point at(double x, double y) const;
    // Share of the animal at a place, with an edge that is `softness` cm wide: 1 inside, 0 outside.
    static double coverage(double distance, double softness);
    // Coverage with the width of a coat's edge.
    static double coverage(const Point& point) { return coverage(point.distance, kCoatEdge); }
    // Arc length along the tail at the place, in cm; below 0 off the tail.
    double alongTail(double x, double y) const;
    // The axis of the spine: sideways shift in cm at height y.
    double spineShift(double y) const;

    static constexpr double kCoatEdge = 0.10; // cm

private:
    struct Part
    {
        TubePath path;
        double blend;             // cm over which it melts into the rest
        double flatness;          // height of the surface over the radius
        double furRoot;           // fur at the first node
        double furTip;            // and at the last
        bool hasOwnRelief = true; // false: the trunk, whose relief is smoother than a tube of straight pieces
    };
    void addBody();
    void addLimbs(double side);
    void addPaw(double x, double y, double directionX, double directionY, double radius, double toeLength);
    void addEar(double side);
    void addTail();

    void measureTrunk(const std::vector<TubePath::Node>& nodes);
    double trunkHeight(double x, double y) const;

    double m_bend;
    double m_tailSide;
    std::vector<double> m_trunkSquares; // squared half width in cm^2 of the trunk at equal steps along the spine
    std::vector<Part> m_parts;
    std::size_t m_tail = 0;
};
