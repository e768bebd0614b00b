// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/libraryTemplate.h"

#include "services/importer/CsvLine.h"

QByteArray libraryTemplate(const QList<SpectralBand>& bands, const QStringList& names)
{
    const auto lineOf = [](const QString& strFirst, const QString& strSecond, const QStringList& fields) {
        QStringList texts;
        for (const QString& field : QStringList{strFirst, strSecond} + fields) {
            texts.append(csvField(field));
        }
        return (texts.join(QLatin1Char(',')) + QLatin1Char('\n')).toUtf8();
    };
    QStringList empty;
    for (int k = 0; k < names.size(); ++k) {
        empty.append(QString());
    }
    QByteArray text = lineOf(QStringLiteral("excitation"), QStringLiteral("emission"), names);
    const auto placeOf = [](const FilterBand& filter, const QString& strKey) {
        constexpr int digits = 10; // of a wavelength
        return filter.isKnown() ? QString::number(filter.centre, 'g', digits) : strKey;
    };
    for (const SpectralBand& band : bands) {
        text += lineOf(placeOf(band.excitation, band.pair.first), placeOf(band.emission, band.pair.second), empty);
    }
    return text;
}
