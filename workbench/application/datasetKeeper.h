// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class CORVDataset;
class CORVSequenceDataset;
class QWidget;

// Datasets that a tool made, such as maps, lie in the temporary directory until the user keeps them. Those of a
// sequence have their place, and what changes of them are the regions of interest.
namespace datasetKeeper {

// Whether closing the dataset's window loses what nobody has saved.
bool isAtStake(const CORVDataset& dataset);

// Asks for a folder and saves the dataset there; its window loses the mark of a change. False when the user backs out,
// and when it fails, which is told.
bool save(QWidget* pParent, CORVDataset& dataset);

// Offers to save a dataset that is at stake before its window closes. False when the window has to stay. While all
// windows close, "No to All" is offered, and once it was given nobody is asked.
bool mayClose(QWidget* pParent, CORVDataset& dataset);

// Saves a dataset where it lies; its window loses the mark of a change. False when it fails, which is told.
bool saveInPlace(QWidget* pParent, CORVDataset& dataset);

// The same as mayClose() of a dataset, for those of a sequence that have changed, before its window closes.
bool mayClose(QWidget* pParent, CORVSequenceDataset& sequence);

} // namespace datasetKeeper
