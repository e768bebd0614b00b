// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/SpectraTableReader.h"

#include "services/importer/CsvLine.h"
#include "services/importer/bareWavelengths.h"
#include "services/session/spectraTableFields.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

constexpr double notThere = std::numeric_limits<double>::quiet_NaN();
using BareWavelengths::largestMicrometres;
using BareWavelengths::smallestMicrometres;
// Wavelengths in nm without a unit.
constexpr double smallestNanometres = 100.0;
constexpr double largestNanometres = 30000.0;
constexpr double nanometresPerMicrometre = 1000.0;
constexpr double percent = 0.01;
constexpr int shownCharacters = 40;

bool areWithin(const QVector<double>& values, double dFirst, double dLast)
{
    return !values.isEmpty() &&
           std::all_of(values.begin(), values.end(), [=](double value) { return value >= dFirst && value <= dLast; });
}

bool areWavelengths(const QVector<double>& values, const QString& strUnit)
{
    return strUnit == wavelengthsInNm || strUnit == wavelengthsInUm
               ? areWithin(values, smallestMicrometres, largestNanometres)
               : areWithin(values, smallestMicrometres, largestMicrometres) ||
                     areWithin(values, smallestNanometres, largestNanometres);
}

} // namespace

bool SpectraTableReader::fail(int nLine, const QString& strReason)
{
    m_nLine = nLine;
    m_strReason = strReason;
    return false;
}

bool SpectraTableReader::parse(const QByteArray& bytes, const QString& strFile, SpectraTable* pTable, QString* pError)
{
    *pTable = SpectraTable();
    SpectraTable made;
    SpectraTableReader reader(made, QFileInfo(strFile).completeBaseName());
    if (!reader.read(bytes)) {
        *pError = reader.m_nLine > 0
                      ? QStringLiteral("%1:%2: %3").arg(strFile, QString::number(reader.m_nLine), reader.m_strReason)
                      : QStringLiteral("%1: %2").arg(strFile, reader.m_strReason);
        return false;
    }
    *pTable = made;
    return true;
}

bool SpectraTableReader::read(const QByteArray& bytes)
{
    if (!collectLines(bytes) || !findSeparator() || !readHeader() || !readRecords()) {
        return false;
    }
    if (m_nPointLine > 0 && m_nCommaLine > 0) {
        return fail(std::max(m_nPointLine, m_nCommaLine),
                    QStringLiteral("decimal points (line %1) and decimal commas (line %2) in one table")
                        .arg(m_nPointLine)
                        .arg(m_nCommaLine));
    }
    return arrange() && order();
}

bool SpectraTableReader::collectLines(const QByteArray& bytes)
{
    const QString text = decodedTable(bytes);
    if (text.contains(QChar(QChar::Null))) {
        return fail(0, QStringLiteral("a zero byte, this is no text"));
    }
    if (text.count(QLatin1Char('\n')) > SpectraTable::maxLines) {
        return fail(0, QStringLiteral("more than %1 lines").arg(SpectraTable::maxLines));
    }
    int number = 0;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        ++number;
        const QString trimmed = line.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith(QLatin1Char('#'))) {
            continue;
        }
        const QChar told = m_lines.isEmpty() ? separatorTold(line) : QChar();
        if (told.isNull()) {
            m_lines.append({number, line});
        } else {
            m_separator = told;
        }
    }
    return m_lines.size() > 1 ||
           fail(0, m_lines.isEmpty() ? QStringLiteral("it is empty") : QStringLiteral("it has one line only"));
}

// The one that splits both of the first two lines: a name may hold another.
bool SpectraTableReader::findSeparator()
{
    if (!m_separator.isNull()) {
        return true;
    }
    for (const char separator : {'\t', ';', ','}) {
        QStringList first;
        QStringList second;
        QString reason;
        const QChar character = QLatin1Char(separator);
        if (splitCsvLine(m_lines[0].text, character, &first, &reason) && first.size() > 1 &&
            splitCsvLine(m_lines[1].text, character, &second, &reason) && second.size() > 1) {
            m_separator = character;
            return true;
        }
    }
    return fail(m_lines[0].number, QStringLiteral("no tab, semicolon or comma splits the line and the next one"));
}

bool SpectraTableReader::split(const Line& line, QStringList* pFields)
{
    QString reason;
    return splitCsvLine(line.text, m_separator, pFields, &reason) || fail(line.number, reason);
}

bool SpectraTableReader::readHeader()
{
    if (!split(m_lines[0], &m_header)) {
        return false;
    }
    m_nHeaderLine = m_lines[0].number;
    // A spreadsheet's empty columns.
    while (!m_header.isEmpty() && m_header.last().isEmpty()) {
        m_header.removeLast();
    }
    if (m_header.size() < 2) {
        return fail(m_nHeaderLine, QStringLiteral("the line names no spectrum and no wavelength"));
    }
    if (m_header.size() > SpectraTable::maxLines) {
        return fail(m_nHeaderLine, QStringLiteral("more than %1 fields").arg(SpectraTable::maxLines));
    }
    m_bHeader = !std::all_of(m_header.begin(), m_header.end(),
                             [](const QString& field) { return isDecimal(withoutWavelengthUnit(field)); });
    m_table.m_bPairs = m_header.size() > 2 && isTableAxis(m_header[0], SpectraTable::Axis::Excitation) &&
                       isTableAxis(m_header[1], SpectraTable::Axis::Emission);
    return true;
}

// A number with a decimal point or comma, in percent where a sign says so; NaN for an empty field.
bool SpectraTableReader::number(const QString& strField, double* pValue, int nLine)
{
    static const QRegularExpression thousands(QStringLiteral("^[+-]?\\d{1,3}(,\\d{3})+$"));
    *pValue = notThere;
    QString text = strField;
    text.replace(QChar(0x2212), QLatin1Char('-'));
    const bool inPercent = text.endsWith(QLatin1Char('%'));
    if (inPercent) {
        text.chop(1);
    }
    text = text.trimmed();
    if (text.isEmpty()) {
        return !inPercent || fail(nLine, QStringLiteral("\"%1\" is not a number").arg(strField));
    }
    const bool comma = text.contains(QLatin1Char(','));
    if (comma && m_separator == QLatin1Char(',') && thousands.match(text).hasMatch()) {
        return fail(nLine, QStringLiteral("\"%1\" may have a decimal comma or one of thousands").arg(text));
    }
    if (comma && m_nCommaLine == 0) {
        m_nCommaLine = nLine;
    }
    if (text.contains(QLatin1Char('.')) && m_nPointLine == 0) {
        m_nPointLine = nLine;
    }
    bool good = false;
    const double value = text.replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&good);
    if (!good || !std::isfinite(value)) {
        return fail(nLine, QStringLiteral("\"%1\" is not a number").arg(strField.left(shownCharacters)));
    }
    *pValue = inPercent ? value * percent : value;
    return true;
}

bool SpectraTableReader::wavelengths(const QStringList& fields, QVector<double>* pValues, int nLine)
{
    pValues->clear();
    for (const QString& field : fields) {
        double value = notThere;
        if (!number(withoutWavelengthUnit(field), &value, nLine)) {
            return false;
        }
        pValues->append(value);
    }
    return true;
}

bool SpectraTableReader::readRecord(const Line& line)
{
    QStringList fields;
    if (!split(line, &fields)) {
        return false;
    }
    if (areEmpty(fields)) {
        return true;
    }
    while (fields.size() > m_header.size() && fields.last().isEmpty()) {
        fields.removeLast();
    }
    if (fields.size() != m_header.size()) {
        return fail(line.number,
                    QStringLiteral("%1 fields where the first line has %2").arg(fields.size()).arg(m_header.size()));
    }
    Record record;
    record.number = line.number;
    record.first = fields.first();
    if (m_table.m_bPairs && !isDecimal(withoutWavelengthUnit(fields.at(1)))) {
        fields[1].clear(); // "Open": there is no filter
    }
    if (!wavelengths(fields.mid(1), &record.values, line.number)) {
        return false;
    }
    m_records.append(record);
    return true;
}

bool SpectraTableReader::readRecords()
{
    for (int i = m_bHeader ? 1 : 0; i < m_lines.size(); ++i) {
        if (!readRecord(m_lines.at(i))) {
            return false;
        }
        if (static_cast<qint64>(m_records.size()) * m_header.size() > SpectraTable::maxValues) {
            return fail(m_lines.at(i).number, QStringLiteral("more than %1 values").arg(SpectraTable::maxValues));
        }
    }
    m_lines.clear();
    return !m_records.isEmpty() || fail(0, QStringLiteral("it has no line of values"));
}

// Which way the table lies. Where numbers stand both at the top and at the left, the first field decides.
bool SpectraTableReader::arrange()
{
    if (m_table.m_bPairs) {
        return takePairs();
    }
    QStringList column;
    for (const Record& record : qAsConst(m_records)) {
        column.append(record.first);
    }
    const auto read = [this](const QStringList& texts, QVector<double>& values) {
        return std::all_of(texts.begin(), texts.end(),
                           [](const QString& text) { return isDecimal(withoutWavelengthUnit(text)); }) &&
               wavelengths(texts, &values, m_nHeaderLine);
    };
    QVector<double> left;
    QVector<double> top;
    const QString unit = m_bHeader ? wavelengthUnitIn(m_header[0]) : QString();
    if (unit == otherUnit) {
        return fail(m_nHeaderLine,
                    QStringLiteral("\"%1\": wavelengths are taken in nm or um").arg(m_header[0].left(shownCharacters)));
    }
    const QString leftUnit = unit.isEmpty() ? wavelengthUnitIn(column.first()) : unit;
    const QString topUnit = unit.isEmpty() ? wavelengthUnitIn(m_header[1]) : unit;
    const bool columns = read(column, left);
    const bool rows = m_bHeader && read(m_header.mid(1), top);
    bool named = false;
    const SpectraTable::Axis axis = tableAxisIn(m_bHeader ? m_header[0] : QString(), &named);
    m_table.m_eAxis = axis;
    const bool fits = columns && areWavelengths(left, leftUnit);
    if (rows && areWavelengths(top, topUnit) && (!fits || !named)) {
        return toNanometres(top, topUnit) && takeRows(top);
    }
    if (columns) {
        return toNanometres(left, leftUnit) && takeColumns(left);
    }
    return fail(m_nHeaderLine, QStringLiteral("neither the first column nor the first line holds wavelengths"));
}

bool SpectraTableReader::toNanometres(QVector<double>& wavelengths, const QString& strUnit)
{
    const auto [smallest, largest] = std::minmax_element(wavelengths.begin(), wavelengths.end());
    QString unit = strUnit;
    if (unit.isEmpty()) {
        unit = areWithin(wavelengths, smallestNanometres, largestNanometres)     ? wavelengthsInNm
               : areWithin(wavelengths, smallestMicrometres, largestMicrometres) ? wavelengthsInUm
                                                                                 : QString();
    }
    if (unit.isEmpty()) {
        return fail(m_nHeaderLine,
                    QStringLiteral("wavelengths from %1 to %2 are neither nm nor um; the first field may "
                                   "name their unit, as in \"wavelength (nm)\"")
                        .arg(*smallest)
                        .arg(*largest));
    }
    if (unit == wavelengthsInUm) {
        constexpr double digits = 1e6; // of a nanometre: 0.64 um are 640 nm
        for (double& wavelength : wavelengths) {
            wavelength = std::round(wavelength * nanometresPerMicrometre * digits) / digits;
        }
    }
    return areWithin(wavelengths, smallestNanometres, largestNanometres) ||
           fail(m_nHeaderLine,
                QStringLiteral("wavelengths from %1 to %2 nm are out of range").arg(*smallest).arg(*largest));
}

bool SpectraTableReader::takeColumns(const QVector<double>& wavelengths)
{
    QVector<QVector<double>> values(m_header.size() - 1);
    for (int i = 0; i < m_records.size(); ++i) {
        m_table.m_rows.append({notThere, wavelengths.at(i)});
        m_rowLines.append(m_records.at(i).number);
        for (int k = 0; k < values.size(); ++k) {
            values[k].append(m_records.at(i).values.at(k));
        }
    }
    QStringList names = m_header.mid(1);
    for (int k = 0; k < names.size() && !m_bHeader; ++k) {
        names[k] =
            names.size() == 1 ? m_strBaseName : QStringLiteral("%1 %2").arg(m_strBaseName, QString::number(k + 1));
    }
    return takeSpectra(names, values);
}

bool SpectraTableReader::takeRows(const QVector<double>& wavelengths)
{
    for (const double wavelength : wavelengths) {
        m_table.m_rows.append({notThere, wavelength});
        m_rowLines.append(m_nHeaderLine);
    }
    QStringList names;
    QVector<QVector<double>> values;
    for (const Record& record : qAsConst(m_records)) {
        names.append(record.first);
        values.append(record.values);
    }
    return takeSpectra(names, values);
}

// The wavelengths among values of which some are missing.
bool SpectraTableReader::someToNanometres(QVector<double>& values, const QString& strUnit)
{
    QVector<double> told;
    std::copy_if(values.begin(), values.end(), std::back_inserter(told), [](double v) { return std::isfinite(v); });
    if (!told.isEmpty() && !toNanometres(told, strUnit)) {
        return false;
    }
    int next = 0;
    for (double& value : values) {
        value = std::isfinite(value) ? told.at(next++) : notThere;
    }
    return true;
}

// Where an image has no such filter the field may be empty, or say so in a word.
bool SpectraTableReader::takePairs()
{
    QVector<double> excitations;
    QVector<double> emissions;
    QVector<QVector<double>> values(m_header.size() - 2);
    for (const Record& record : qAsConst(m_records)) {
        double excitation = notThere;
        const QString text = withoutWavelengthUnit(record.first);
        if (isDecimal(text) && !number(text, &excitation, record.number)) {
            return false;
        }
        if (std::isnan(excitation) && std::isnan(record.values.first())) {
            return fail(record.number, QStringLiteral("neither an excitation nor an emission is told"));
        }
        excitations.append(excitation);
        emissions.append(record.values.first());
        for (int k = 0; k < values.size(); ++k) {
            values[k].append(record.values.at(k + 1));
        }
    }
    if (!someToNanometres(emissions, wavelengthUnitIn(m_header[1])) ||
        !someToNanometres(excitations, wavelengthUnitIn(m_header[0]))) {
        return false;
    }
    for (int i = 0; i < m_records.size(); ++i) {
        m_table.m_rows.append({excitations.at(i), emissions.at(i)});
        m_rowLines.append(m_records.at(i).number);
    }
    return takeSpectra(m_header.mid(2), values);
}

bool SpectraTableReader::takeSpectra(const QStringList& names, QVector<QVector<double>>& values)
{
    if (names.size() > SpectraTable::maxSpectra) {
        return fail(m_nHeaderLine, QStringLiteral("more than %1 spectra").arg(SpectraTable::maxSpectra));
    }
    QSet<QString> seen;
    for (int k = 0; k < names.size(); ++k) {
        bool inPercent = false;
        const QString name = spectrumNameIn(names.at(k), &inPercent);
        const bool none = std::none_of(values[k].begin(), values[k].end(), [](double v) { return std::isfinite(v); });
        if (name.isEmpty() && none) {
            continue; // a spreadsheet's empty column or line
        }
        if (name.isEmpty()) {
            return fail(m_nHeaderLine, QStringLiteral("spectrum %1 has no name").arg(k + 1));
        }
        if (none) {
            return fail(0, QStringLiteral("the spectrum \"%1\" has no value").arg(name));
        }
        if (seen.contains(name)) {
            return fail(m_nHeaderLine, QStringLiteral("two spectra have the name \"%1\"").arg(name));
        }
        seen.insert(name);
        for (double& value : values[k]) {
            value = inPercent ? value * percent : value;
        }
        m_table.m_names.append(name);
        m_table.m_values.append(values.at(k));
    }
    return !m_table.m_names.isEmpty() || fail(0, QStringLiteral("it has no spectrum"));
}

// By ascending wavelength, whatever the order of the file.
bool SpectraTableReader::order()
{
    const QVector<SpectraTable::Row> rows = m_table.m_rows;
    const auto key = [&rows](int i) {
        const auto orZero = [](double wavelength) { return std::isfinite(wavelength) ? wavelength : 0.0; };
        return std::make_pair(orZero(rows.at(i).excitation), orZero(rows.at(i).wavelength));
    };
    QVector<int> places(rows.size());
    std::iota(places.begin(), places.end(), 0);
    std::stable_sort(places.begin(), places.end(), [&key](int a, int b) { return key(a) < key(b); });
    for (int i = 1; i < places.size(); ++i) {
        if (key(places.at(i)) == key(places.at(i - 1))) {
            return fail(m_rowLines.at(places.at(i)),
                        QStringLiteral("the wavelength %1 nm comes twice").arg(key(places.at(i)).second));
        }
    }
    const QVector<QVector<double>> values = m_table.m_values;
    for (int i = 0; i < places.size(); ++i) {
        m_table.m_rows[i] = rows.at(places.at(i));
        for (int k = 0; k < values.size(); ++k) {
            m_table.m_values[k][i] = values.at(k).at(places.at(i));
        }
    }
    return true;
}
