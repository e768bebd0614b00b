// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Places and names of the datasets that unmixed maps become. Components and spots count from 0.

// Of the folder: "Unmixed Result 2" or, with several spots, "Unmixed Result 2001" for the first of them.
QString unmixedDatasetName(int nComponent, int nSpot, int nSpots);
// What the names of all those folders, and of none of anybody else, look like: a pattern with "*".
QString unmixedDatasetPattern();
// Of the dataset in its sequence: the source sequence's id without its last three characters, and "UMX2".
QString unmixedDatasetLabel(const QString& strSeqId, int nComponent);
// The folder of all datasets of that sequence, without a separator at its end. A separator inside the id becomes "_".
QString unmixedTargetFolder(const QString& strSeqId);
