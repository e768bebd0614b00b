// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/ChannelLabels.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ChannelInfo.h"

#include <algorithm>

ChannelLabels::ChannelLabels(const CORVSpumKyvo& engine)
{
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(engine.m_strSeqId);
    if (pSequence == nullptr) {
        return;
    }
    QHash<QString, ChannelInfo> channels;
    for (const CORVDataset* pDataset : pSequence->getDatasets()) {
        const auto channel = pDataset == nullptr ? std::nullopt : ChannelInfo::of(pDataset->clickInfo);
        const auto record =
            channel ? engine.m_imageRecords.constFind(pDataset->getClickNumber()) : engine.m_imageRecords.constEnd();
        if (record != engine.m_imageRecords.constEnd()) {
            channels.insert(record->emission, *channel);
            m_labels.insert(record->emission, channel->label(record->emission.toInt()));
        }
    }
    const auto all = [&channels](std::optional<double> ChannelInfo::*place) {
        return std::all_of(channels.cbegin(), channels.cend(), [place](const ChannelInfo& c) { return c.*place; });
    };
    const auto take = [&](std::optional<double> ChannelInfo::*place, Places ePlaces) {
        m_ePlaces = ePlaces;
        for (auto it = channels.cbegin(); it != channels.cend(); ++it) {
            m_places.insert(it.key(), *(it.value().*place));
        }
    };
    if (all(&ChannelInfo::wavelength)) {
        take(&ChannelInfo::wavelength, Places::Wavelengths);
    } else if (all(&ChannelInfo::wavenumber)) {
        take(&ChannelInfo::wavenumber, Places::Wavenumbers);
    }
}

QStringList ChannelLabels::labels(const QList<KeyPair>& pairs) const
{
    QStringList labels;
    for (const KeyPair& pair : pairs) {
        labels.append(label(pair));
    }
    return isEmpty() ? QStringList() : labels;
}

double ChannelLabels::place(const KeyPair& pair) const
{
    return m_places.value(pair.second, pair.second.toDouble());
}

QString ChannelLabels::axisText() const
{
    switch (m_ePlaces) {
    case Places::Wavelengths:
        return QStringLiteral("Wavelength [nm]");
    case Places::Wavenumbers:
        return QStringLiteral("Wavenumber [1/cm]");
    case Places::Numbers:
        break;
    }
    return QStringLiteral("Channel");
}
