// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/simulator/DepthBlur.h"
#include "workbench/simulator/MouseShape.h"

#include <cstdint>

// Where the sources lie in the animal: densities over the place in cm, before the tissue blurs them.
namespace SourceShapes {

// Food in the stomach (left, under the ribs), the caecum and the loops of the gut, lumpy.
DepthBlur::Density food(const MouseShape& shape, std::uint64_t seed);

// A tumour-like patch with a small one beside it, at one of eight places that lie apart.
DepthBlur::Density probePatch(const MouseShape& shape, int index, std::uint64_t seed);

// The liver below the ribs, and the kidneys beside the spine.
DepthBlur::Density liver(const MouseShape& shape);
DepthBlur::Density kidneys(const MouseShape& shape);

// The tissue's own light: thicker tissue gives more, up to the depth that light comes from; coat and skin vary it.
std::function<double(double, double, const MouseShape::Point&)> tissueGlow(const MouseShape& shape, std::uint64_t seed);

} // namespace SourceShapes
