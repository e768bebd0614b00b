// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class CILImage;
class CORVDataset;

// Multiplies a map in radiance by the calibration value of the source's counts and by the source's counts over its
// radiance, the latter brought to the map's size. What a calibration does to all pixels alike cancels, what it does to
// single ones (a lens, a flat field) is taken off again. Where the source holds no light, so that the ratio has no
// value, the calibration value stands alone. A source that is stored in radiance has no counts; there is nothing to be
// done then. False, and the map is as it was, when an image of the source cannot be read or memory is exhausted.
bool scaleMapBySource(CORVDataset& source, CILImage& map);
