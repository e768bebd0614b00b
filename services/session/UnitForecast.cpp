// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/UnitForecast.h"

#include "engine/unitLadder.h"
#include "host/CORVSequenceDataset.h"
#include "services/basis/UnitNames.h"

UnitForecast forecastUnit(const CORVSequenceDataset& sequence, const QStringList& clickNumbers)
{
    UnitForecast forecast;
    bool derived = true;
    for (int i = 0; i < clickNumbers.size();) {
        const CORVDataset* dataset = sequence.getDataset(clickNumbers[i]);
        if (dataset == nullptr) {
            return {};
        }
        if (derived) {
            forecast.unit = unitForImage(dataset->nativeUnit, sequence.isFluorescence, sequence.isTransillumination);
        }
        const QString reason = dataset->unitUnavailableReason(static_cast<tag_edisplayunit>(forecast.unit));
        if (reason.isEmpty()) {
            ++i;
            continue;
        }
        if (forecast.unit <= CORVDataset::unitLimit()) {
            forecast.refusals.append(
                QStringLiteral("%1 in %2: %3").arg(UnitNames::text(forecast.unit), clickNumbers[i], reason));
        }
        derived = false;
        const UnitStep step = nextUnit(forecast.unit);
        forecast.unit = step.possible ? step.unit : -1;
        if (!step.possible) {
            return forecast;
        }
        i = 0;
    }
    return forecast;
}
