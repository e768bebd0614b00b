// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/warnings/RunWarning.h"

#include <QList>

class CORVSequenceDataset;
class CORVSpumKyvo;

// What is to be said against the engine's present result, that of a run that has just ended: the list that the command
// line tells. Empty for one without maps of its images. The number of components is estimated from few pixels. Only
// reads, so that any thread can do it while engine and sequence do not change; passes cancellation points. Throws what
// comes of std::exception.
QList<RunWarning> warningsOfRun(const CORVSpumKyvo& engine, const CORVSequenceDataset& sequence);

// After a PCA: the tip of the wizard's button for it tells how many components stand above the noise, as the command
// line does, where that can be told.
void tellNumberOfComponents(const CORVSpumKyvo& engine);
