// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/documentWindows.h"

#include "host/CORVImageWindow.h"
#include "host/CORVSequenceWindow.h"

namespace documentWindows {

CORVSequenceWindow* makeSequenceWindow(CORVSequenceDataset* pSequence, const Listener&)
{
    return new CORVSequenceWindow(pSequence);
}

CORVImageWindow* makeDatasetWindow(CORVDataset* pDataset, const Listener&)
{
    return new CORVImageWindow(pDataset);
}

} // namespace documentWindows
