// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class CORVDataset;

// What a window of the dataset is called: the click number, and what tells its image from others of the sequence; of a
// map the component, as nobody gave it its click number.
// "[*]" in a name does not stand for the mark of a change.
QString datasetTitle(const CORVDataset& dataset);
