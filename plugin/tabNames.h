// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Titles of the tabs that an analysis adds to the window of its sequence.
namespace tabNames {

inline constexpr char wizard[] = "Auto Unmix";
inline constexpr char console[] = "Unmixing";
inline constexpr char composite[] = "Composite";

} // namespace tabNames
