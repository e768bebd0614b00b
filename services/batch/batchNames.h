// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/batch/BatchJob.h"

// Gives each job without a name that of its sequence's folder; where several have one name, as much of the folders
// above goes in front as tells them apart ("monday_mouse", "tuesday_mouse"), whatever their order. Throws Failure (bad
// request) for a name that cannot be a folder's beside the overall files, for one that is given twice, and for a
// sequence that is named twice without names of its own.
void nameJobs(QList<BatchJob>& jobs);
