// SPDX-License-Identifier: GPL-3.0-or-later
// The table of an import as the text that the importer reads.
#include "platform/orvutils/NumberText.h"
#include "services/importer/CsvLine.h"
#include "services/importer/ImagesTable.h"
#include "workbench/application/ImportTable.h"

#include <QHash>

#include <algorithm>
#include <array>

namespace {

QString field(const std::optional<int>& value)
{
    return value ? QString::number(*value) : QString();
}

// The names of the columns in the file, by ImportTable::Column; those that are not written have none.
constexpr std::array<const char*, ImportTable::ColumnCount> kCsvNames{"",
                                                                      "",
                                                                      ImageColumns::kChannel,
                                                                      ImageColumns::kExcitation,
                                                                      ImageColumns::kEmission,
                                                                      ImageColumns::kWavelength,
                                                                      ImageColumns::kSpotX,
                                                                      ImageColumns::kSpotY,
                                                                      ImageColumns::kInterval,
                                                                      ImageColumns::kTime,
                                                                      ImageColumns::kExposure,
                                                                      ImageColumns::kOrigin};

} // namespace

QByteArray ImportTable::toCsv() const
{
    const auto any = [this](auto&& has) {
        return std::any_of(m_rows.cbegin(), m_rows.cend(), [&](const Row& row) { return row.used && has(row); });
    };
    const bool pages = any([](const Row& row) { return row.page.has_value(); });
    const bool projections = any([](const Row& row) { return !row.projection.isNone(); });
    const bool bands = any([](const Row& row) { return row.band.has_value(); });
    const bool starts = any([](const Row& row) { return !row.facts.start.isEmpty(); });
    const bool isotopes = any([](const Row& row) { return !row.facts.isotope.isEmpty(); });
    const bool sizes = any([](const Row& row) { return row.facts.pixelSize.has_value(); });
    const bool units = any([](const Row& row) { return !row.facts.unit.isEmpty(); });
    const bool wavenumbers =
        m_eKind == Kind::Channels && any([](const Row& row) { return row.wavenumber.has_value(); });
    const QVector<Column> shown = columns();
    const auto line = [&](auto&& known, auto&& fromColumn) {
        QStringList fields{known(ImageColumns::kFile)};
        const auto add = [&](bool bWanted, const char* pName) {
            if (bWanted) {
                fields.append(known(pName));
            }
        };
        add(pages, ImageColumns::kPage);
        add(projections, ImageColumns::kProjection);
        add(bands, ImageColumns::kBand);
        for (const Column column : shown) {
            if (isNumber(column) || column == Channel) {
                fields.append(fromColumn(column));
            }
        }
        add(wavenumbers, ImageColumns::kWavenumber);
        add(sizes, ImageColumns::kPixelSize);
        add(starts, ImageColumns::kStart);
        add(isotopes, ImageColumns::kIsotope);
        add(units, ImageColumns::kUnit);
        fields.append(fromColumn(Origin));
        return fields.join(QLatin1Char(','));
    };
    QStringList lines{line([](const char* pName) { return QString::fromLatin1(pName); },
                           [](Column eColumn) { return QString::fromLatin1(kCsvNames[eColumn]); })};
    for (const Row& row : m_rows) {
        if (!row.used) {
            continue;
        }
        const QHash<QString, QString> known{
            {QLatin1String(ImageColumns::kFile), csvField(row.file)},
            {QLatin1String(ImageColumns::kPage), PageProjection::fieldText(row.page, row.projection)},
            {QLatin1String(ImageColumns::kProjection), row.projection.kindText()},
            {QLatin1String(ImageColumns::kBand), field(row.band)},
            {QLatin1String(ImageColumns::kWavenumber), row.wavenumber ? orv::shortestText(*row.wavenumber) : QString()},
            {QLatin1String(ImageColumns::kPixelSize),
             row.facts.pixelSize ? orv::shortestText(*row.facts.pixelSize) : QString()},
            {QLatin1String(ImageColumns::kStart), row.facts.start},
            {QLatin1String(ImageColumns::kIsotope), csvField(row.facts.isotope)},
            {QLatin1String(ImageColumns::kUnit), row.facts.unit}};
        lines.append(line([&](const char* pName) { return known.value(QLatin1String(pName)); },
                          [&](Column eColumn) { return csvField(row.cells[eColumn]); }));
    }
    return (lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
}

int ImportTable::rowOfLine(int nLine) const
{
    int line = 1; // the header
    for (int i = 0; i < m_rows.size(); ++i) {
        line += m_rows.at(i).used ? 1 : 0;
        if (m_rows.at(i).used && line == nLine) {
            return i;
        }
    }
    return -1;
}
