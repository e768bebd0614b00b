// SPDX-License-Identifier: GPL-3.0-or-later
// Reference tables: whatever the bytes and whichever table they stand for, entries whose figures mean something; what
// was left out is told with the file.
#include "platform/orvapi/ReferenceTables.h"
#include "require.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace {

const QString& folderOfTables()
{
    static const QString memory = QStringLiteral("/dev/shm");
    static const QTemporaryDir folder((QDir(memory).exists() ? memory : QDir::tempPath()) +
                                      QStringLiteral("/tables-XXXXXX"));
    static const QString path = folder.path() + QLatin1Char('/');
    return path;
}

template <class Numbers>
void requireAscending(const Numbers& wavelengths, int n)
{
    require(n > 0 && wavelengths.size() == n);
    for (int i = 0; i < n; ++i) {
        require(std::isfinite(wavelengths[i]) && wavelengths[i] > (i == 0 ? 0.0 : wavelengths[i - 1]));
    }
}

template <class Records>
void requireSpectra(const Records& records)
{
    for (auto record = records.cbegin(); record != records.cend(); ++record) {
        require(!record.key().isEmpty());
        requireAscending(record.value().wavelength, record.value().n);
    }
}

template <class Records>
void requireOwnNames(const Records& records)
{
    QStringList names;
    for (const auto& record : records) {
        names.append(record.name.toCaseFolded());
        require(!record.name.isEmpty());
    }
    require(names.removeDuplicates() == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QStringList names{"luminescent_sources.csv",
                            "library_sources.csv",
                            "radioactive_sources.csv",
                            "tissues.csv",
                            "color_responses.csv",
                            "isotopes.csv",
                            "probes.csv"};
    // The bytes stand for every table at once: each reader takes those whose columns are its own.
    for (const QString& name : names) {
        QFile file(folderOfTables() + name);
        require(file.open(QIODevice::WriteOnly));
        file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    }
    ReferenceTables tables;
    tables.addFolder(folderOfTables(), true);
    requireSpectra(tables.luminescentSources);
    requireSpectra(tables.librarySources);
    requireSpectra(tables.radioactiveSources);
    requireSpectra(tables.tissues);
    requireSpectra(tables.colorResponses);
    requireOwnNames(tables.isotopes);
    requireOwnNames(tables.probes);
    for (const IsotopeRecord& isotope : tables.isotopes) {
        require(std::isfinite(isotope.halfLifeSec) && isotope.halfLifeSec >= 0.0);
    }
    require(std::all_of(tables.problems.cbegin(), tables.problems.cend(),
                        [](const QString& problem) { return problem.startsWith(folderOfTables()); }));
    return 0;
}
