// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/libraryTemplate.h"

#include "services/importer/CsvLine.h"

#include <algorithm>

namespace {

// The middle of the filter in nm, or its key where that tells none.
QString placeOf(const FilterBand& filter, const QString& strKey)
{
    constexpr int digits = 10; // of a wavelength
    return filter.isKnown() ? QString::number(filter.centre, 'g', digits) : strKey;
}

} // namespace

QByteArray libraryTemplate(const QList<SpectralBand>& bands, const QStringList& names, const QStringList& channels)
{
    const bool numbered = std::any_of(bands.begin(), bands.end(), [](const SpectralBand& band) {
        return !band.excitation.isKnown() && !band.emission.isKnown();
    });
    QByteArray text;
    const auto addLine = [&text](const QStringList& fields) {
        QStringList texts;
        for (const QString& field : fields) {
            texts.append(csvField(field));
        }
        text += (texts.join(QLatin1Char(',')) + QLatin1Char('\n')).toUtf8();
    };
    QStringList header{QStringLiteral("excitation"), QStringLiteral("emission")};
    header += numbered ? QStringList{QStringLiteral("channel")} : QStringList();
    addLine(header + names);
    QStringList empty;
    for (int k = 0; k < names.size(); ++k) {
        empty.append(QString());
    }
    for (int i = 0; i < bands.size(); ++i) {
        const SpectralBand& band = bands.at(i);
        addLine((numbered ? QStringList{band.pair.first, band.pair.second, channels.value(i)}
                          : QStringList{placeOf(band.excitation, band.pair.first),
                                        placeOf(band.emission, band.pair.second)}) +
                empty);
    }
    return text;
}
