// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What wavelengths that come without a unit may be: in micrometres from the ultraviolet to the thermal infrared.
namespace BareWavelengths {
constexpr double smallestMicrometres = 0.1;
constexpr double largestMicrometres = 30.0;
} // namespace BareWavelengths
