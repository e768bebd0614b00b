// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVDatabase.h"

#include "host/orv_paths.h"
#include "platform/orvapi/ReferenceTables.h"

#include <algorithm>
#include <memory>
#include <mutex>

namespace {

std::unique_ptr<ReferenceTables>& storage()
{
    static std::unique_ptr<ReferenceTables> s_pTables;
    return s_pTables;
}

const QString& undefinedName()
{
    static const QString s_strName = QStringLiteral("Undefined");
    return s_strName;
}

// "Undefined" stands first, whatever the tables say, and has no half life.
void putUndefinedFirst(QList<IsotopeRecord>& isotopes)
{
    isotopes.erase(std::remove_if(isotopes.begin(), isotopes.end(),
                                  [](const IsotopeRecord& isotope) {
                                      return isotope.name.compare(undefinedName(), Qt::CaseInsensitive) == 0;
                                  }),
                   isotopes.end());
    isotopes.prepend(IsotopeRecord{undefinedName(), 0.0, false});
}

const ReferenceTables& tables()
{
    // The worker of an analysis may be the first to ask.
    static std::mutex s_loading;
    const std::lock_guard<std::mutex> lock(s_loading);
    if (!storage()) {
        auto pTables = std::make_unique<ReferenceTables>();
        const QString program = getORVPath(ORV_PATH_PROGRAM_DATA, false, nullptr);
        if (program.isEmpty()) {
            pTables->problems.append(QStringLiteral("the program's folder of reference tables is missing"));
        }
        pTables->addFolder(program, true);
        pTables->addFolder(getORVPath(ORV_PATH_USER_DATA, false, nullptr), false);
        putUndefinedFirst(pTables->isotopes);
        storage() = std::move(pTables);
    }
    return *storage();
}

template <typename Record>
QStringList sortedNames(const QMap<QString, Record>& records)
{
    QStringList names = records.keys();
    std::sort(names.begin(), names.end(), CORVDatabase::insensitiveLessThan);
    return names;
}

template <typename Record>
bool read(const QMap<QString, Record>& records, const QString& strName, Record* pRecord)
{
    if (pRecord != nullptr) {
        *pRecord = records.value(strName);
    }
    return records.contains(strName);
}

const IsotopeRecord* findIsotope(const QString& strIsotope)
{
    for (const IsotopeRecord& isotope : tables().isotopes) {
        if (isotope.name.compare(strIsotope.trimmed(), Qt::CaseInsensitive) == 0) {
            return &isotope;
        }
    }
    return nullptr;
}

} // namespace

QStringList CORVDatabase::getSourceList()
{
    QStringList names;
    for (const QString& source : tables().luminescentSources.keys()) {
        // A look-up by name appends the suffix, so a source without one cannot be offered.
        if (source.endsWith(QLatin1String("Em")) || source.endsWith(QLatin1String("Ex"))) {
            names.append(source.chopped(2));
        }
    }
    names.removeDuplicates();
    std::sort(names.begin(), names.end(), insensitiveLessThan);
    return names;
}

QStringList CORVDatabase::getLIBSourceList()
{
    return sortedNames(tables().librarySources);
}

QStringList CORVDatabase::getRADSourceList()
{
    QStringList names = sortedNames(tables().radioactiveSources);
    names.removeAll(undefinedName());
    names.prepend(undefinedName());
    return names;
}

bool CORVDatabase::readSource(const QString& strName, sSourceSpecFileParameters* pSource)
{
    return read(tables().luminescentSources, strName, pSource);
}

bool CORVDatabase::readLIBSource(const QString& strName, sSourceSpecFileParameters* pSource)
{
    return read(tables().librarySources, strName, pSource);
}

bool CORVDatabase::readRADSource(const QString& strName, sSourceSpecFileParameters* pSource)
{
    return read(tables().radioactiveSources, strName, pSource);
}

bool CORVDatabase::readOpticalProperty(const QString& strTissue, sTissuePropFileParameters* pTissue)
{
    return read(tables().tissues, strTissue, pTissue);
}

bool CORVDatabase::readColorResponse(const QString& strSensor, sColorSensorRGBspecFileParameters* pResponse)
{
    return read(tables().colorResponses, strSensor, pResponse);
}

double CORVDatabase::getCherenkovRADHalflife(const QString& strIsotope)
{
    const IsotopeRecord* pIsotope = findIsotope(strIsotope);
    return pIsotope == nullptr ? 0.0 : pIsotope->halfLifeSec;
}

QStringList CORVDatabase::isotopeList()
{
    QStringList names;
    for (const IsotopeRecord& isotope : tables().isotopes) {
        names.append(isotope.name);
    }
    return names;
}

bool CORVDatabase::isCherenkovIsotope(const QString& strIsotope, QString* pName)
{
    const IsotopeRecord* pIsotope = findIsotope(strIsotope);
    if (pIsotope == nullptr || !pIsotope->cherenkov) {
        return false;
    }
    if (pName != nullptr) {
        *pName = pIsotope->name;
    }
    return true;
}

QList<sProbeParameters> CORVDatabase::probeList()
{
    return tables().probes;
}

bool CORVDatabase::findProbe(const QString& strName, sProbeParameters* pProbe)
{
    const QString name = strName.trimmed();
    const auto names = [&](const sProbeParameters& probe) {
        return probe.name.compare(name, Qt::CaseInsensitive) == 0 || probe.aliases.contains(name, Qt::CaseInsensitive);
    };
    const QList<sProbeParameters>& probes = tables().probes;
    const auto it = std::find_if(probes.cbegin(), probes.cend(), names);
    if (pProbe != nullptr) {
        *pProbe = it == probes.cend() ? sProbeParameters() : *it;
    }
    return it != probes.cend();
}

bool CORVDatabase::insensitiveLessThan(const QString& strA, const QString& strB)
{
    // Names that differ in case alone keep one order everywhere.
    const int order = strA.compare(strB, Qt::CaseInsensitive);
    return order != 0 ? order < 0 : strA < strB;
}

QStringList CORVDatabase::problems()
{
    return tables().problems;
}

void CORVDatabase::reload()
{
    storage().reset();
}
