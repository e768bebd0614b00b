// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/documentWindows.h"

#include "host/CORVImageWindow.h"
#include "host/CORVSequenceWindow.h"
#include "workbench/application/OpenDocuments.h"

namespace documentWindows {

CORVSequenceWindow* makeSequenceWindow(CORVSequenceDataset* pSequence, OpenDocuments&)
{
    return new CORVSequenceWindow(pSequence);
}

CORVImageWindow* makeDatasetWindow(CORVDataset* pDataset, OpenDocuments&)
{
    return new CORVImageWindow(pDataset);
}

} // namespace documentWindows
