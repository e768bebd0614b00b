// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/batch/BatchEntry.h"

#include <QByteArray>
#include <QJsonObject>

// "batch.csv": a row a sequence and component, with what belongs to the sequence in each of its rows, so that it can be
// joined by "run", and the component's map by "run" and "map"; a sequence without a result has one row without a
// component. The columns behind "warningTexts" are those of a result's "summary.csv".
QByteArray batchCsv(const QList<BatchEntry>& entries);

// "batch.json": the same as an object, with each sequence's summary. Neither tells a time: of the same input they are
// the same.
QJsonObject batchJson(const QList<BatchEntry>& entries);
