// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/photographOrigin.h"

#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"

bool hasPhotographOfCamera(CORVSequenceDataset& sequence)
{
    return clickText(sequence.sequenceInfo(), SequenceKeys::kSequence, SequenceKeys::kPhotographOrigin).isEmpty();
}
