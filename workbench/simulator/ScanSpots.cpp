// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/ScanSpots.h"

#include "XTNT/xtnt_parallel.h"
#include "workbench/simulator/DepthBlur.h"
#include "workbench/simulator/MouseShape.h"
#include "workbench/simulator/TissueOptics.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kMmPerCm = 10.0;
constexpr double kFirstY = -1.6; // cm: the shoulders
constexpr double kLastY = 1.9;   // and the rump
constexpr double kAside = 0.4;   // cm from the spine
constexpr double kBedShare = 0.1;
constexpr double kThinnestMm = 3.0; // light that crosses less is no longer diffuse

QString coordinate(double cm)
{
    return QString::number(cm, 'f', 2);
}

} // namespace

QString ScanSpot::xText() const
{
    return coordinate(x);
}

QString ScanSpot::yText() const
{
    return coordinate(y);
}

QList<ScanSpot> ScanSpots::plan(int count, const MouseShape& shape)
{
    QList<ScanSpot> spots;
    for (int i = 0; i < count; ++i) {
        const double y = count > 1 ? kFirstY + (kLastY - kFirstY) * i / (count - 1) : 0.5 * (kFirstY + kLastY);
        spots.append({shape.spineShift(y) + (i % 2 == 0 ? -kAside : kAside), y});
    }
    return spots;
}

double ScanSpots::fluence(const TissueOptics& tissue, double heightMm, double lateralMm)
{
    const double r = std::hypot(std::max(heightMm, 1.0), lateralMm);
    return std::exp(-tissue.effectiveAttenuation(DepthBlur::kReferenceNm) * r) / r;
}

std::vector<double> ScanSpots::transmittedReference(const QList<ScanSpot>& spots, const MouseShape& shape,
                                                    const TissueOptics& tissue, int size)
{
    const auto width = static_cast<std::size_t>(size);
    const std::size_t pixels = width * width;
    std::vector<double> reference(static_cast<std::size_t>(spots.size()) * pixels, 0.0);
    const double step = MouseShape::kFieldOfView / size;
    XTNT::parallelChunks(size, 4, [&](long long begin, long long end) {
        for (auto row = static_cast<std::size_t>(begin); row < static_cast<std::size_t>(end); ++row) {
            for (std::size_t column = 0; column < width; ++column) {
                const double x = (static_cast<double>(column) + 0.5) * step - 0.5 * MouseShape::kFieldOfView;
                const double y = (static_cast<double>(row) + 0.5) * step - 0.5 * MouseShape::kFieldOfView;
                const MouseShape::Point point = shape.at(x, y);
                const double coverage = MouseShape::coverage(point);
                if (coverage <= 0.0) {
                    continue;
                }
                const double thickness = std::max(kMmPerCm * point.height, kThinnestMm);
                for (int s = 0; s < spots.size(); ++s) {
                    const double lateral = kMmPerCm * std::hypot(x - spots.at(s).x, y - spots.at(s).y);
                    reference[static_cast<std::size_t>(s) * pixels + row * width + column] =
                        coverage * tissue.surfaceSpread(DepthBlur::kReferenceNm, thickness, lateral);
                }
            }
        }
    });
    const double top = *std::max_element(reference.begin(), reference.end());
    for (double& value : reference) {
        value = kBedShare + (1.0 - kBedShare) * (top > 0.0 ? value / top : 0.0);
    }
    return reference;
}
