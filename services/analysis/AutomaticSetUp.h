// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/analysis/AutomaticRequest.h"

#include <QStringList>

class CORVSequenceDataset;
class CORVSpumKyvo;

// The components that a run without names resolves in the sequence of an engine that has inspected it: tissue
// autofluorescence (not in a temporal sequence) and the sequence's own probes as the database has them.
QStringList proposedComponents(const CORVSpumKyvo& engine);

// Says for each probe of the sequence that the database does not have by that name what is proposed for it, if
// anything.
QStringList notesOfProbes(const CORVSpumKyvo& engine);

// Prepares an automatic run of an engine whose selection is made: names, constraints, decay. Returns warnings. Throws
// Failure when the number of components is not from 2 to 6 and at most that of the images (beyondSix: to that of the
// images), when names get in each other's way, and for a decay that cannot be corrected for.
QStringList setUpAutomatic(const AutomaticRequest& request, const CORVSequenceDataset& sequence, CORVSpumKyvo& engine);
