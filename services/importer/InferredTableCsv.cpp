// SPDX-License-Identifier: GPL-3.0-or-later
// The text of an inferred table.
#include "services/importer/CsvLine.h"
#include "services/importer/ImagesTable.h"
#include "services/importer/InferredTable.h"

#include <algorithm>
#include <functional>

namespace {

// A column of the table as text.
struct Column
{
    QString name;
    std::function<QString(const InferredTable::Row&)> text;
};

} // namespace

QByteArray InferredTable::toCsv() const
{
    const auto any = [this](const std::function<bool(const Row&)>& has) {
        return std::any_of(m_rows.cbegin(), m_rows.cend(), has);
    };
    const bool bTimes = any([](const Row& row) { return row.time.has_value(); });
    const bool bWavelengths = m_bSpectral || any([](const Row& row) { return row.excitation || row.emission; });
    // A template offers what could be meant.
    const bool bOpen = !m_doubts.isEmpty() && !m_bNumbered && (bTimes == m_bSpectral || (!m_bSpectral && !m_bTemporal));
    QVector<Column> columns;
    const auto add = [&columns](const char* name, const std::function<QString(const Row&)>& text, bool bWanted) {
        if (bWanted) {
            columns.append({QLatin1String(name), text});
        }
    };
    // A column that stands when any row has something to say there.
    const auto addKnown = [&](const char* name, const std::function<QString(const Row&)>& text, bool bWanted = true) {
        add(name, text, bWanted && any([&text](const Row& row) { return !text(row).isEmpty(); }));
    };
    add(
        ImageColumns::kFile, [](const Row& row) { return csvField(row.file); }, true);
    addKnown(ImageColumns::kPage, [](const Row& row) { return PageProjection::fieldText(row.page, row.projection); });
    addKnown(ImageColumns::kProjection, [](const Row& row) { return row.projection.kindText(); });
    addKnown(ImageColumns::kBand, [](const Row& row) { return csvNumber(row.band); });
    add(
        ImageColumns::kChannel, [](const Row& row) { return csvField(row.channel); }, m_bNumbered);
    addKnown(ImageColumns::kWavelength, [](const Row& row) { return csvNumber(row.wavelength); });
    addKnown(ImageColumns::kWavenumber, [](const Row& row) { return csvNumber(row.wavenumber); });
    add(
        ImageColumns::kExcitation, [](const Row& row) { return csvNumber(row.excitation); }, bWavelengths || bOpen);
    add(
        ImageColumns::kEmission, [](const Row& row) { return csvNumber(row.emission); }, bWavelengths || bOpen);
    addKnown(
        ImageColumns::kSpotX, [](const Row& row) { return row.spotX; }, m_bSpectral);
    addKnown(
        ImageColumns::kSpotY, [](const Row& row) { return row.spotY; }, m_bSpectral);
    addKnown(
        ImageColumns::kInterval, [](const Row& row) { return csvNumber(row.interval); }, m_bTemporal || bOpen);
    add(
        ImageColumns::kTime, [](const Row& row) { return csvNumber(row.time); }, m_bTemporal || bOpen);
    addKnown(ImageColumns::kExposure, [](const Row& row) { return csvNumber(row.facts.exposure); });
    addKnown(ImageColumns::kPixelSize, [](const Row& row) { return csvNumber(row.facts.pixelSize); });
    addKnown(ImageColumns::kStart, [](const Row& row) { return row.facts.start; });
    addKnown(ImageColumns::kIsotope, [](const Row& row) { return csvField(row.facts.isotope); });
    addKnown(ImageColumns::kUnit, [](const Row& row) { return row.facts.unit; });
    add(
        ImageColumns::kOrigin, [](const Row& row) { return csvField(row.origin); }, true);

    QStringList names;
    for (const Column& column : columns) {
        names.append(column.name);
    }
    QStringList lines{names.join(QLatin1Char(','))};
    for (const Row& row : m_rows) {
        QStringList fields;
        for (const Column& column : columns) {
            fields.append(column.text(row));
        }
        lines.append(fields.join(QLatin1Char(',')));
    }
    return (lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
}
