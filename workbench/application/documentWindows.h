// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

class CORVDataset;
class CORVImageWindow;
class CORVSequenceDataset;
class CORVSequenceWindow;
class QString;

// The windows that show what is open. Without a parent; what they show is borrowed.
namespace documentWindows {

// Whom the windows tell.
struct Listener
{
    // The user wants to see an image of a dataset by itself.
    std::function<void(CORVDataset*)> showDataset;
    // What lies below the pointer, for the status bar; empty when it lies nowhere.
    std::function<void(const QString&)> readOut;
};

CORVSequenceWindow* makeSequenceWindow(CORVSequenceDataset* pSequence, const Listener& listener);
CORVImageWindow* makeDatasetWindow(CORVDataset* pDataset, const Listener& listener);

} // namespace documentWindows
