// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/batch/BatchEntry.h"

#include <QByteArray>
#include <QString>

#include <functional>

class BatchPlaces;

// What the page says besides.
struct BatchPageFrame
{
    QString command; // that made the results
    QString program; // "spum 1.0, 2026-01-31 12:00"
};

// "batch.html": all sequences on one page that needs no other file, those that need a look first; a click on a column's
// head sorts by it, and it prints. Made piece by piece, as hundreds of pictures are in it: `put` is called with UTF-8
// from the begin to the end, and may throw to stop.
void writeBatchPage(const BatchPlaces& places, const QList<BatchEntry>& entries, const BatchPageFrame& frame,
                    const std::function<void(const QByteArray& bytes)>& put);
