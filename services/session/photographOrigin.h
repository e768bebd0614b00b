// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class CORVSequenceDataset;

// Whether a camera took the sequence's photograph; false for one that the import made of the images.
bool hasPhotographOfCamera(CORVSequenceDataset& sequence);
