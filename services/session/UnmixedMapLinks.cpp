// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/UnmixedMapLinks.h"

#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "services/basis/TextTable.h"

#include <QJsonObject>

namespace {

// As the engine names scan spots; empty without one.
QString spotOf(const CORVDataset& dataset)
{
    const QString x = dataset.getFLXspot();
    const QString y = dataset.getFLYspot();
    return x.isEmpty() && y.isEmpty() ? QString() : x + QLatin1Char(',') + y;
}

} // namespace

UnmixedMapLinks::UnmixedMapLinks(const CORVSequenceDataset& sequence)
{
    for (const CORVDataset* dataset : sequence.getDatasets()) {
        const auto text = [dataset](const char* pKey) {
            return clickText(dataset->clickInfo, ClickKeys::kLuminescentImage, pKey);
        };
        Link link{
            dataset->getClickNumber(),        text(UnmixedMapKeys::kSequence), text(UnmixedMapKeys::kConcentration),
            text(UnmixedMapKeys::kComponent), text(ClickKeys::kStoredUnit),    spotOf(*dataset)};
        if (link.sequence.isEmpty() || link.concentration.isEmpty()) {
            m_bComplete = false;
        } else {
            m_links.append(link);
        }
    }
}

QStringList UnmixedMapLinks::sources() const
{
    QStringList ids;
    for (const auto& link : m_links) {
        if (!ids.contains(link.sequence)) {
            ids.append(link.sequence);
        }
    }
    return ids;
}

QString UnmixedMapLinks::toText() const
{
    TextTable table({QStringLiteral("map"), QStringLiteral("component"), QStringLiteral("spot"),
                     QStringLiteral("stored in"), QString::fromLatin1(UnmixedMapKeys::kConcentration),
                     QString::fromLatin1(UnmixedMapKeys::kSequence)});
    for (const auto& link : m_links) {
        table.addRow({link.click, link.component, link.spot, link.unit, link.concentration, link.sequence});
    }
    return table.toText();
}

QJsonArray UnmixedMapLinks::toJson() const
{
    QJsonArray maps;
    for (const auto& link : m_links) {
        maps.append(QJsonObject{{"image", link.click},
                                {"component", link.component},
                                {"spot", link.spot},
                                {"storedUnit", link.unit},
                                {"unmixedConcentration", link.concentration},
                                {"spectralUnmixSeqDataset", link.sequence}});
    }
    return maps;
}
