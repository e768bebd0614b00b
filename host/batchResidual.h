// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The property of a sequence (QObject::setProperty) in which a tool leaves how well its last result of a batch fits:
// the norm of what is not explained as a part of that of the data, a double. Unset where it is not known.
inline constexpr char batchResidualProperty[] = "batchResidual";
