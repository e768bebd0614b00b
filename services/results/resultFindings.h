// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/warnings/RunFindings.h"

class CORVSequenceDataset;
class CORVSpumKyvo;
struct ResultNumbers;

// What the engine's present result gives reason to warn of, and the numbers of its components that belong to that,
// which it adds to `numbers`. `bResolved`: the spectra are those of a curve resolution.
RunFindings findingsOfResult(const CORVSpumKyvo& engine, const CORVSequenceDataset& sequence, bool bResolved,
                             ResultNumbers& numbers);

// Of them, what the dark pixels of images in counts have alike: "darkestLevel", "brightestLevel" and "meanLight", where
// no mask leaves them out.
void findOffset(const CORVSpumKyvo& engine, RunFindings& findings);
