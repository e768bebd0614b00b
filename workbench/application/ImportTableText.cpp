// SPDX-License-Identifier: GPL-3.0-or-later
// The table of an import as the text that the importer reads.
#include "platform/orvutils/NumberText.h"
#include "services/importer/CsvLine.h"
#include "workbench/application/ImportTable.h"

#include <QHash>

#include <algorithm>

namespace {

QString field(const std::optional<int>& value)
{
    return value ? QString::number(*value) : QString();
}

// The names of the columns in the file.
const char* csvName(ImportTable::Column eColumn)
{
    switch (eColumn) {
    case ImportTable::Excitation:
        return "excitation";
    case ImportTable::Emission:
        return "emission";
    case ImportTable::SpotX:
        return "spot_x";
    case ImportTable::SpotY:
        return "spot_y";
    case ImportTable::Interval:
        return "interval";
    case ImportTable::Time:
        return "time";
    case ImportTable::Exposure:
        return "exposure";
    case ImportTable::Origin:
        return "origin";
    default:
        return "";
    }
}

} // namespace

QByteArray ImportTable::toCsv() const
{
    const auto any = [this](auto&& has) {
        return std::any_of(m_rows.cbegin(), m_rows.cend(), [&](const Row& row) { return row.used && has(row); });
    };
    const bool pages = any([](const Row& row) { return row.page.has_value(); });
    const bool bands = any([](const Row& row) { return row.band.has_value(); });
    const bool starts = any([](const Row& row) { return !row.facts.start.isEmpty(); });
    const bool isotopes = any([](const Row& row) { return !row.facts.isotope.isEmpty(); });
    const bool sizes = any([](const Row& row) { return row.facts.pixelSize.has_value(); });
    const bool units = any([](const Row& row) { return !row.facts.unit.isEmpty(); });
    const QVector<Column> shown = columns();
    const auto line = [&](auto&& known, auto&& fromColumn) {
        QStringList fields{known("file")};
        const auto add = [&](bool bWanted, const char* pName) {
            if (bWanted) {
                fields.append(known(pName));
            }
        };
        add(pages, "page");
        add(bands, "band");
        for (const Column column : shown) {
            if (isNumber(column)) {
                fields.append(fromColumn(column));
            }
        }
        add(sizes, "pixel_size");
        add(starts, "start");
        add(isotopes, "isotope");
        add(units, "unit");
        fields.append(fromColumn(Origin));
        return fields.join(QLatin1Char(','));
    };
    QStringList lines{line([](const char* pName) { return QString::fromLatin1(pName); },
                           [](Column eColumn) { return QString::fromLatin1(csvName(eColumn)); })};
    for (const Row& row : m_rows) {
        if (!row.used) {
            continue;
        }
        const QHash<QString, QString> known{
            {QStringLiteral("file"), csvField(row.file)},
            {QStringLiteral("page"), field(row.page)},
            {QStringLiteral("band"), field(row.band)},
            {QStringLiteral("pixel_size"), row.facts.pixelSize ? orv::shortestText(*row.facts.pixelSize) : QString()},
            {QStringLiteral("start"), row.facts.start},
            {QStringLiteral("isotope"), csvField(row.facts.isotope)},
            {QStringLiteral("unit"), row.facts.unit}};
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
