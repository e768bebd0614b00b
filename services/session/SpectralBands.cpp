// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/SpectralBands.h"

#include "engine/EngineEnums.h"
#include "engine/keySelection.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ChannelInfo.h"
#include "services/session/PairSelection.h"

#include <QRegularExpression>

#include <optional>

namespace {

FilterBand bandOfKey(const QString& strKey)
{
    FilterBand band;
    bool good = false;
    const double centre = strKey.toDouble(&good);
    if (good) {
        band.centre = centre;
    }
    return band;
}

// What the file of the image said; the filter's text is a number alone.
FilterBand bandOfChannel(const ChannelInfo& channel)
{
    constexpr double nanometresPerCentimetre = 1e7;
    FilterBand band;
    if (channel.wavelength) {
        band.centre = *channel.wavelength;
    } else if (channel.wavenumber) {
        band.centre = nanometresPerCentimetre / *channel.wavenumber;
    }
    return band;
}

KeyPair keysOf(const CORVDataset& dataset)
{
    KeyPair keys{dataset.getExcitationFilter(), dataset.getEmissionFilter()};
    wavelengthDigits(keys.first);
    wavelengthDigits(keys.second);
    return keys;
}

} // namespace

QString SpectralBand::text(int nAxis) const
{
    const FilterBand& filter = nAxis == SPECTRUMAXIS_EXCITATION ? excitation : emission;
    const QString key = pairText(pair);
    return filter.width > 0.0 ? QStringLiteral("%1 (%2 to %3 nm)")
                                    .arg(key, QString::number(filter.centre - filter.width / 2.0),
                                         QString::number(filter.centre + filter.width / 2.0))
                              : key;
}

double filterWidth(const QString& strFilter)
{
    static const QRegularExpression told(QStringLiteral("\\d{3}(?:\\.\\d+)?\\s*(?:nm)?\\s*/\\s*(\\d{1,3}(?:\\.\\d+)?)"
                                                        "\\s*(?:nm)?\\s*$"),
                                         QRegularExpression::CaseInsensitiveOption);
    const auto match = told.match(strFilter);
    return match.hasMatch() ? match.captured(1).toDouble() : 0.0;
}

QList<SpectralBand> bandsOf(const QList<KeyPair>& pairs)
{
    QList<SpectralBand> bands;
    for (const KeyPair& pair : pairs) {
        bands.append({pair, bandOfKey(pair.first), bandOfKey(pair.second)});
    }
    return bands;
}

QList<SpectralBand> bandsOf(const CORVSequenceDataset& sequence, const QList<KeyPair>& pairs)
{
    QList<SpectralBand> bands = bandsOf(pairs);
    for (const CORVDataset* pDataset : sequence.getDatasets()) {
        if (pDataset == nullptr) {
            continue;
        }
        const KeyPair keys = keysOf(*pDataset);
        const std::optional<ChannelInfo> channel = ChannelInfo::of(pDataset->clickInfo);
        for (SpectralBand& band : bands) {
            if (band.pair == keys && channel) {
                band.emission = bandOfChannel(*channel);
            } else if (band.pair == keys) {
                band.excitation.width = band.excitation.isKnown() ? filterWidth(pDataset->getExcitationFilter()) : 0.0;
                band.emission.width = band.emission.isKnown() ? filterWidth(pDataset->getEmissionFilter()) : 0.0;
            }
        }
    }
    return bands;
}
