// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/DisplayUnits.h"

#include "host/CORVDataset.h"
#include "host/UnitTexts.h"

QVector<UnitOffer> unitOffers(const QList<CORVDataset*>& datasets)
{
    QVector<UnitOffer> offers;
    for (int unit = DISPLAYUNIT_COUNTS; unit <= DISPLAYUNIT_EFFICIENCY; ++unit) {
        UnitOffer offer;
        offer.unit = static_cast<tag_edisplayunit>(unit);
        offer.text = displayUnitText(unit);
        offer.quantity = displayUnitQuantity(unit);
        offer.reason = QStringLiteral("there is no luminescent image");
        bool first = true;
        for (const CORVDataset* pDataset : datasets) {
            const QString reason = pDataset->unitUnavailableReason(offer.unit);
            if (first || reason.isEmpty()) {
                offer.reason = reason;
            }
            if (reason.isEmpty()) {
                break;
            }
            first = false;
        }
        offers.append(offer);
    }
    return offers;
}

tag_edisplayunit startUnit(const QVector<UnitOffer>& offers, bool bFluorescence)
{
    const auto first = bFluorescence ? DISPLAYUNIT_RADIANT_EFFICIENCY : DISPLAYUNIT_RADIANCE;
    for (const tag_edisplayunit unit :
         {first, DISPLAYUNIT_RADIANCE, DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANT_EFFICIENCY, DISPLAYUNIT_EFFICIENCY}) {
        for (const UnitOffer& offer : offers) {
            if (offer.unit == unit && offer.reason.isEmpty()) {
                return unit;
            }
        }
    }
    return DISPLAYUNIT_COUNTS;
}
