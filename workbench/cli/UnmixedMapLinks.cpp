// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/UnmixedMapLinks.h"

#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "workbench/cli/TextTable.h"

#include <QJsonObject>

UnmixedMapLinks::UnmixedMapLinks(const CORVSequenceDataset& sequence)
{
    for (const CORVDataset* dataset : sequence.getDatasets()) {
        const auto text = [dataset](const char* pKey) {
            return clickText(dataset->clickInfo, ClickKeys::kLuminescentImage, pKey);
        };
        Link link{dataset->getClickNumber(), text(UnmixedMapKeys::kSequence), text(UnmixedMapKeys::kConcentration),
                  text(UnmixedMapKeys::kComponent), text(ClickKeys::kStoredUnit)};
        if (link.sequence.isEmpty() || link.concentration.isEmpty())
            m_bComplete = false;
        else
            m_links.append(link);
    }
}

QStringList UnmixedMapLinks::sources() const
{
    QStringList ids;
    for (const auto& link : m_links)
        if (!ids.contains(link.sequence))
            ids.append(link.sequence);
    return ids;
}

QString UnmixedMapLinks::toText() const
{
    TextTable table({QStringLiteral("map"), QStringLiteral("component"), QStringLiteral("stored in"),
                     QString::fromLatin1(UnmixedMapKeys::kConcentration),
                     QString::fromLatin1(UnmixedMapKeys::kSequence)});
    for (const auto& link : m_links)
        table.addRow({link.click, link.component, link.unit, link.concentration, link.sequence});
    return table.toText();
}

QJsonArray UnmixedMapLinks::toJson() const
{
    QJsonArray maps;
    for (const auto& link : m_links)
        maps.append(QJsonObject{{"image", link.click},
                                {"component", link.component},
                                {"storedUnit", link.unit},
                                {"unmixedConcentration", link.concentration},
                                {"spectralUnmixSeqDataset", link.sequence}});
    return maps;
}
