// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/CompositeChannel.h"

#include <Qt>

// A layer of a composite with what its list entry adds to the channel.
struct CompositeLayer
{
    CompositeChannel channel;
    double minimum = 0.0; // data range to which the channel's fractions refer
    double maximum = 0.0;
    Qt::CheckState checked = Qt::Checked;
};
