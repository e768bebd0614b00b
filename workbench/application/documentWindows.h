// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class CORVDataset;
class CORVImageWindow;
class CORVSequenceDataset;
class CORVSequenceWindow;
class OpenDocuments;

// The windows that show what is open, with what they tell connected to `documents`. Without a parent; what they show is
// borrowed.
namespace documentWindows {

CORVSequenceWindow* makeSequenceWindow(CORVSequenceDataset* pSequence, OpenDocuments& documents);
CORVImageWindow* makeDatasetWindow(CORVDataset* pDataset, OpenDocuments& documents);

} // namespace documentWindows
