// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/SequenceInfo.h"

#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"

#include <QDir>
#include <QSet>

namespace {

using namespace SequenceKeys;

// Ten times what anybody measures.
constexpr int maxDatasets = 20000;

const char* const kSpectral = "spectral";
const char* const kTemporal = "temporal";
const char* const kCTNone = "none";
const char* const kCTIncomplete = "incomplete";
const char* const kCTComplete = "complete";

// Reads the entries of one file and collects what is wrong with them.
class Reader
{
public:
    Reader(const CPLClickInfo& sections, const QString& strFile, QStringList& warnings)
        : m_sections(sections), m_strFile(strFile), m_warnings(warnings)
    {
    }

    QString text(const char* pSection, const char* pKey) const { return clickText(m_sections, pSection, pKey); }

    std::optional<bool> flag(const char* pSection, const char* pKey)
    {
        const QString value = text(pSection, pKey);
        const std::optional<bool> parsed = parseFlag(value);
        if (!parsed && !value.isEmpty()) {
            warn(pSection, pKey, value, "is neither 0 nor 1");
        }
        return parsed;
    }

    std::optional<int> natural(const char* pSection, const char* pKey)
    {
        const QString value = text(pSection, pKey);
        bool ok = false;
        const int number = value.toInt(&ok);
        if (ok && number >= 0) {
            return number;
        }
        if (!value.isEmpty()) {
            warn(pSection, pKey, value, "is no whole number");
        }
        return std::nullopt;
    }

    // Index of the text among the choices; -1 for an absent one and, with a warning, for any other.
    int choice(const char* pSection, const char* pKey, std::initializer_list<const char*> choices)
    {
        const QString value = text(pSection, pKey);
        int index = 0;
        for (const char* pChoice : choices) {
            if (value.compare(QLatin1String(pChoice), Qt::CaseInsensitive) == 0) {
                return index;
            }
            ++index;
        }
        if (!value.isEmpty()) {
            warn(pSection, pKey, value, "is not known");
        }
        return -1;
    }

    void warn(const char* pSection, const char* pKey, const QString& strValue, const char* pWhat)
    {
        m_warnings.append(
            QStringLiteral("%1: section \"%2\": \"%3\" is \"%4\", which %5")
                .arg(m_strFile, QLatin1String(pSection), QLatin1String(pKey), strValue, QLatin1String(pWhat)));
    }

private:
    const CPLClickInfo& m_sections;
    const QString& m_strFile;
    QStringList& m_warnings;
};

void readFolders(const CPLClickInfo& sections, Reader& reader, SequenceInfo* pInfo)
{
    const CPLSection* pSection = sections[QString::fromLatin1(kDatasets)];
    if (pSection == nullptr) {
        return;
    }
    QStringList keys;
    QStringList values;
    pSection->getKeyList(&keys);
    pSection->getValueList(&values);
    QSet<QString> seen;
    for (int i = 0; i < keys.size(); ++i) {
        if (keys.at(i) != QLatin1String(kDataset)) {
            continue;
        }
        const QString folder = values.at(i).trimmed();
        // Without its slash "a /" ends in a blank, which the next reading of what is written of it would take off.
        const QString clean = QDir::cleanPath(folder).trimmed();
        const bool below = staysBelow(folder) && staysBelow(clean);
        if (pInfo->folders.size() >= maxDatasets) {
            reader.warn(kDatasets, kDataset, folder,
                        "is beyond the number of datasets that a sequence can have; the rest is left out");
            return;
        }
        if (below && seen.contains(clean)) {
            ++pInfo->refusedFolders;
            reader.warn(kDatasets, kDataset, folder, "was listed before");
        } else if (below) {
            pInfo->folders.append(clean);
            seen.insert(clean);
        } else {
            pInfo->refusedFolders += folder.isEmpty() ? 0 : 1;
            reader.warn(kDatasets, kDataset, folder, "is no folder below the sequence's");
        }
    }
}

QString flagText(bool bFlag)
{
    return bFlag ? QStringLiteral("1") : QStringLiteral("0");
}

void addEntry(CPLSection& section, const char* pKey, const QString& strValue)
{
    section.addKeyValue(QString::fromLatin1(pKey), strValue);
}

} // namespace

bool staysBelow(const QString& strPath)
{
    if (strPath.isEmpty() || QDir::isAbsolutePath(strPath) || strPath.contains(QChar(0))) {
        return false;
    }
    const QString clean = QDir::cleanPath(strPath);
    return clean != QLatin1String(".") && clean != QLatin1String("..") && !clean.startsWith(QLatin1String("../"));
}

bool readSequenceInfo(const CPLClickInfo& sections, const QString& strFile, SequenceInfo* pInfo, QStringList& warnings)
{
    *pInfo = SequenceInfo();
    if (sections[QString::fromLatin1(kSequence)] == nullptr) {
        return false;
    }
    Reader reader(sections, strFile, warnings);
    pInfo->id = reader.text(kSequence, kId);
    pInfo->name = reader.text(kSequence, kName);
    const int kind = reader.choice(kSequence, kKind, {kSpectral, kTemporal});
    if (kind >= 0) {
        pInfo->temporal = kind == 1;
    }
    pInfo->fluorescence = reader.flag(kSequence, kFluorescence);
    pInfo->transillumination = reader.flag(kSequence, kTransillumination);
    pInfo->secondKind = reader.flag(kSequence, kSecondKind).value_or(false);
    pInfo->sceneOnly3D = reader.flag(kSequence, k3DSceneOnly).value_or(false);
    const int scan = reader.choice(kSequence, kCTScan, {kCTNone, kCTIncomplete, kCTComplete});
    pInfo->ctScan = scan > 0;
    pInfo->ctComplete = scan == 2;
    pInfo->adjust.m_nColorTable = reader.natural(kImageAdjust, kColorTable).value_or(pInfo->adjust.m_nColorTable);
    pInfo->adjust.m_bReversed = reader.flag(kImageAdjust, kReversed).value_or(pInfo->adjust.m_bReversed);
    pInfo->adjust.m_bLogScale = reader.flag(kImageAdjust, kLogScale).value_or(pInfo->adjust.m_bLogScale);
    pInfo->announcedCount = reader.natural(kDatasets, kDatasetCount);
    readFolders(sections, reader, pInfo);
    return true;
}

CPLClickInfo sequenceInfoSections(const SequenceInfo& info)
{
    CPLSection sequence(QString::fromLatin1(kSequence));
    addEntry(sequence, kId, info.id);
    addEntry(sequence, kName, info.name);
    addEntry(sequence, kKind, QString::fromLatin1(info.temporal.value_or(false) ? kTemporal : kSpectral));
    addEntry(sequence, kFluorescence, flagText(info.fluorescence.value_or(false)));
    if (info.secondKind) {
        addEntry(sequence, kSecondKind, flagText(true));
    }
    addEntry(sequence, kTransillumination, flagText(info.transillumination.value_or(false)));
    addEntry(sequence, k3DSceneOnly, flagText(info.sceneOnly3D));
    addEntry(sequence, kCTScan,
             QString::fromLatin1(!info.ctScan      ? kCTNone
                                 : info.ctComplete ? kCTComplete
                                                   : kCTIncomplete));
    CPLSection adjust(QString::fromLatin1(kImageAdjust));
    addEntry(adjust, kColorTable, QString::number(info.adjust.m_nColorTable));
    addEntry(adjust, kReversed, flagText(info.adjust.m_bReversed));
    addEntry(adjust, kLogScale, flagText(info.adjust.m_bLogScale));
    CPLSection datasets(QString::fromLatin1(kDatasets));
    addEntry(datasets, kDatasetCount, QString::number(info.folders.size()));
    for (const QString& folder : info.folders) {
        addEntry(datasets, kDataset, folder);
    }
    CPLClickInfo sections;
    sections.addSection(&sequence);
    sections.addSection(&adjust);
    sections.addSection(&datasets);
    return sections;
}
