// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/batch/BatchEntry.h"
#include "services/batch/BatchPage.h"

#include <functional>

class BatchPlaces;
class JobMonitor;

// Writes "batch.csv", "batch.json" and "batch.html", each as a whole or not at all; `keep` is called now and then, for
// the locks of whoever writes. Throws Failure, also when the user wants it to stop.
void writeBatchFiles(const BatchPlaces& places, const QList<BatchEntry>& entries, const BatchPageFrame& frame,
                     JobMonitor& monitor, const std::function<void()>& keep);
