// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// One sentence when the folder of a sequence holds saved results, which would be lost if another sequence took its
// place; empty when it holds none, or does not exist. Results are there when an index, of single results or of a batch,
// has more than comments, or cannot be read.
QString savedResultsAtStake(const QString& strFolder);

// The folders of a sequence in which saved results lie, of single results and of batches, by name.
QStringList savedResultsFolders(const QString& strFolder);

// The indexes of the folder, relative to it, that name no result any more: with them nothing is lost.
QStringList emptyResultsIndexes(const QString& strFolder);
