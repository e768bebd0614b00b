// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include <vector>

class MouseShape;
class TissueOptics;

// A place of the bed from which light enters the animal, in cm from the centre of the field of view.
struct ScanSpot
{
    double x;
    double y;

    // The coordinates as the click infos hold them.
    QString xText() const;
    QString yText() const;
};

// Light that enters from below, spot by spot.
namespace ScanSpots {

constexpr int kFewest = 1;
constexpr int kMost = 16;

// Spots below the trunk from the shoulders to the rump, left and right of the spine by turns.
QList<ScanSpot> plan(int count, const MouseShape& shape);

// Relative fluence that a spot gives in the animal, at a lateral distance from it and a height above the bed, both in
// mm: that of a point source in an infinite medium, exp(-mu_eff r) / r, at the wavelength whose spread serves for all
// bands. Heights below 1 mm count as 1 mm.
double fluence(const TissueOptics& tissue, double heightMm, double lateralMm);

// The transmitted reference of each spot, one after the other, `size` x `size` pixels each: the exciting light that
// leaves the animal above, the brightest pixel of the scan 1, over a tenth of that from the bed, which spreads the
// light about.
std::vector<double> transmittedReference(const QList<ScanSpot>& spots, const MouseShape& shape,
                                         const TissueOptics& tissue, int size);

} // namespace ScanSpots
