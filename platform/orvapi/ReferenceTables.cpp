// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/ReferenceTables.h"

#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvapi/CsvTable.h"

#include <QFileInfo>
#include <QHash>
#include <QSet>

#include <algorithm>
#include <functional>

namespace {

constexpr int maxProblems = 50;

// A table whose columns are as expected; false, told, when they are not.
bool readTable(const QString& strFile, bool bExpected, const QStringList& columns, CsvTable* pTable,
               QStringList& problems)
{
    if (!QFileInfo::exists(strFile)) {
        if (bExpected) {
            problems.append(QStringLiteral("%1: is missing").arg(strFile));
        }
        return false;
    }
    if (!readCsvTable(strFile, pTable, problems)) {
        return false;
    }
    if (pTable->header.mid(0, columns.size()) == columns) {
        return true;
    }
    problems.append(QStringLiteral("%1: the columns must begin with %2").arg(strFile, columns.join(QLatin1Char(','))));
    return false;
}

// A wavelength above 0 and, of the entry it belongs to, above the one before.
bool isNextWavelength(const std::optional<double>& wavelength, const QVector<double>& earlier)
{
    return wavelength && *wavelength > 0.0 && (earlier.isEmpty() || *wavelength > earlier.last());
}

using Numbers = QVector<std::optional<double>>;

bool allNumbers(const Numbers& numbers)
{
    return std::all_of(numbers.cbegin(), numbers.cend(), [](const auto& number) { return number.has_value(); });
}

Numbers numbersOf(const CsvTable::Row& row, int nFirst)
{
    Numbers numbers;
    for (int i = nFirst; i < row.cells.size(); ++i) {
        numbers.append(csvNumber(row.cells.at(i)));
    }
    return numbers;
}

// Names of the columns from the second on; a name that is empty or stands twice is told and becomes empty.
QStringList sourceNames(const CsvTable& table, QStringList& problems)
{
    QStringList names;
    QSet<QString> taken;
    for (int i = 1; i < table.header.size(); ++i) {
        const QString& name = table.header.at(i);
        const bool usable = !name.isEmpty() && !taken.contains(name);
        taken.insert(name);
        if (!usable) {
            problems.append(QStringLiteral("%1: column %2 has no name of its own (\"%3\")")
                                .arg(table.file, QString::number(i + 1), name));
        }
        names.append(usable ? name : QString());
    }
    return names;
}

// One column a source. An empty cell means that the source has no figure at that wavelength.
void addSources(const QString& strFile, bool bExpected, QMap<QString, sSourceSpecFileParameters>& sources,
                QStringList& problems)
{
    CsvTable table;
    if (!readTable(strFile, bExpected, {QStringLiteral("wavelength_nm")}, &table, problems)) {
        return;
    }
    const QStringList names = sourceNames(table, problems);
    QVector<sSourceSpecFileParameters> read(names.size());
    QVector<double> wavelengths;
    for (const CsvTable::Row& row : table.rows) {
        const std::optional<double> wavelength = csvNumber(row.cells.first());
        const bool numeric = std::all_of(row.cells.cbegin() + 1, row.cells.cend(), [](const QString& cell) {
            return cell.isEmpty() || csvNumber(cell).has_value();
        });
        if (!numeric || !isNextWavelength(wavelength, wavelengths)) {
            problems.append(table.problem(row.line, QStringLiteral("not numbers with an ascending wavelength")));
            continue;
        }
        wavelengths.append(*wavelength);
        for (int i = 0; i < names.size(); ++i) {
            if (const std::optional<double> intensity = csvNumber(row.cells.at(i + 1))) {
                read[i].wavelength.append(*wavelength);
                read[i].intensity.append(*intensity);
                ++read[i].n;
            }
        }
    }
    for (int i = 0; i < names.size(); ++i) {
        if (names.at(i).isEmpty()) {
            continue;
        }
        if (read.at(i).n > 0) {
            sources.insert(names.at(i), read.at(i));
        } else {
            problems.append(QStringLiteral("%1: %2 has no figures").arg(strFile, names.at(i)));
        }
    }
}

// One row a name and wavelength. `append` adds the row's numbers behind the wavelength to a record.
template <typename Record>
void addSpectra(const QString& strFile, bool bExpected, const QStringList& columns, QMap<QString, Record>& records,
                QStringList& problems, const std::function<void(Record&, const Numbers&)>& append)
{
    CsvTable table;
    if (!readTable(strFile, bExpected, columns, &table, problems)) {
        return;
    }
    QMap<QString, Record> read;
    for (const CsvTable::Row& row : table.rows) {
        const QString name = row.cells.first();
        const Numbers numbers = numbersOf(row, 1);
        if (name.isEmpty() || !allNumbers(numbers) || !isNextWavelength(numbers.first(), read.value(name).wavelength)) {
            problems.append(
                table.problem(row.line, QStringLiteral("not a name and numbers with an ascending wavelength")));
            continue;
        }
        Record& record = read[name];
        record.wavelength.append(*numbers.first());
        append(record, numbers);
        ++record.n;
    }
    for (auto it = read.cbegin(); it != read.cend(); ++it) {
        records.insert(it.key(), it.value());
    }
}

// Puts records into a list, each in the place of an earlier one with its name.
template <typename Record>
class ByName
{
public:
    explicit ByName(QList<Record>& records) : m_records(records)
    {
        for (int i = 0; i < records.size(); ++i) {
            m_places.insert(records.at(i).name.toCaseFolded(), i);
        }
    }

    void put(const Record& record)
    {
        const QString key = record.name.toCaseFolded();
        const auto place = m_places.constFind(key);
        if (place != m_places.constEnd()) {
            m_records[place.value()] = record;
            return;
        }
        m_places.insert(key, m_records.size());
        m_records.append(record);
    }

private:
    QList<Record>& m_records;
    QHash<QString, int> m_places;
};

void addIsotopes(const QString& strFile, bool bExpected, QList<IsotopeRecord>& isotopes, QStringList& problems)
{
    CsvTable table;
    if (!readTable(strFile, bExpected,
                   {QStringLiteral("isotope"), QStringLiteral("half_life_s"), QStringLiteral("cherenkov")}, &table,
                   problems)) {
        return;
    }
    ByName<IsotopeRecord> byName(isotopes);
    for (const CsvTable::Row& row : table.rows) {
        const std::optional<double> halfLife = csvNumber(row.cells.at(1));
        const std::optional<bool> cherenkov = parseFlag(row.cells.at(2));
        if (row.cells.first().isEmpty() || !halfLife || *halfLife < 0.0 || !cherenkov) {
            problems.append(
                table.problem(row.line, QStringLiteral("not a name, a half life in seconds, and yes or no")));
        } else {
            byName.put(IsotopeRecord{row.cells.first(), *halfLife, *cherenkov});
        }
    }
}

void addProbes(const QString& strFile, bool bExpected, QList<sProbeParameters>& probes, QStringList& problems)
{
    CsvTable table;
    if (!readTable(strFile, bExpected,
                   {QStringLiteral("name"), QStringLiteral("kind"), QStringLiteral("has_em"), QStringLiteral("has_ex"),
                    QStringLiteral("aliases")},
                   &table, problems)) {
        return;
    }
    ByName<sProbeParameters> byName(probes);
    for (const CsvTable::Row& row : table.rows) {
        const std::optional<bool> emission = parseFlag(row.cells.at(2));
        const std::optional<bool> excitation = parseFlag(row.cells.at(3));
        if (row.cells.first().isEmpty() || !emission || !excitation) {
            problems.append(table.problem(row.line, QStringLiteral("not a name, a kind, and twice yes or no")));
            continue;
        }
        sProbeParameters probe;
        probe.name = row.cells.first();
        probe.kind = row.cells.at(1);
        probe.hasEmission = *emission;
        probe.hasExcitation = *excitation;
        for (const QString& alias : row.cells.at(4).split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
            probe.aliases.append(alias.trimmed());
        }
        byName.put(probe);
    }
}

} // namespace

void ReferenceTables::addFolder(const QString& strFolder, bool bExpected)
{
    if (strFolder.isEmpty()) {
        return;
    }
    QStringList found;
    // Of one table nobody reads more than these.
    const auto tell = [&](const char* pFile) {
        const int more = found.size() - maxProblems;
        problems += found.mid(0, maxProblems);
        if (more > 0) {
            problems.append(
                QStringLiteral("%1%2: %3 more problems").arg(strFolder, QLatin1String(pFile), QString::number(more)));
        }
        found.clear();
    };
    addSources(strFolder + QLatin1String("luminescent_sources.csv"), bExpected, luminescentSources, found);
    tell("luminescent_sources.csv");
    addSources(strFolder + QLatin1String("library_sources.csv"), bExpected, librarySources, found);
    tell("library_sources.csv");
    addSources(strFolder + QLatin1String("radioactive_sources.csv"), bExpected, radioactiveSources, found);
    tell("radioactive_sources.csv");
    addSpectra<sTissuePropFileParameters>(
        strFolder + QLatin1String("tissues.csv"), bExpected,
        {QStringLiteral("tissue"), QStringLiteral("wavelength_nm"), QStringLiteral("absorption_per_cm"),
         QStringLiteral("reduced_scattering_per_cm")},
        tissues, found, [](sTissuePropFileParameters& tissue, const Numbers& numbers) {
            tissue.absorption.append(*numbers.at(1));
            tissue.scattering.append(*numbers.at(2));
        });
    tell("tissues.csv");
    addSpectra<sColorSensorRGBspecFileParameters>(
        strFolder + QLatin1String("color_responses.csv"), bExpected,
        {QStringLiteral("sensor"), QStringLiteral("wavelength_nm"), QStringLiteral("red"), QStringLiteral("green"),
         QStringLiteral("blue")},
        colorResponses, found, [](sColorSensorRGBspecFileParameters& sensor, const Numbers& numbers) {
            sensor.red.append(*numbers.at(1));
            sensor.green.append(*numbers.at(2));
            sensor.blue.append(*numbers.at(3));
        });
    tell("color_responses.csv");
    addIsotopes(strFolder + QLatin1String("isotopes.csv"), bExpected, isotopes, found);
    tell("isotopes.csv");
    addProbes(strFolder + QLatin1String("probes.csv"), bExpected, probes, found);
    tell("probes.csv");
}
