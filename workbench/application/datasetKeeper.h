// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class CORVDataset;
class QWidget;

// Datasets that a tool made, such as maps, lie in the temporary directory until the user keeps them.
namespace datasetKeeper {

// Whether closing the dataset's window loses what nobody has saved.
bool isAtStake(const CORVDataset& dataset);

// Asks for a folder and saves the dataset there; its window loses the mark of a change. False when the user backs out,
// and when it fails, which is told.
bool save(QWidget* pParent, CORVDataset& dataset);

// Offers to save a dataset that is at stake before its window closes. False when the window has to stay. While all
// windows close, "No to All" is offered, and once it was given nobody is asked.
bool mayClose(QWidget* pParent, CORVDataset& dataset);

} // namespace datasetKeeper
