// SPDX-License-Identifier: GPL-3.0-or-later
// What the sequence holds: kind, images, keys, probes, subject. Reads info sections and filter texts, and of all images
// one photograph.
#include "engine/CORVSpumKyvo.h"

#include "engine/keySelection.h"
#include "engine/probeNames.h"
#include "spectra/logLine.h"

#include "host/CORVDataset.h"
#include "host/CORVLog.h"
#include "host/CORVSequenceDataset.h"
#include "host/CPLClickInfo.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

template <class T>
void appendIfAbsent(QList<T>& list, const T& entry)
{
    if (!list.contains(entry)) {
        list.append(entry);
    }
}

// A time in seconds as the text of its whole part.
QString wholeSeconds(float fSeconds)
{
    constexpr float limit = 1e9F;
    if (std::isnan(fSeconds)) {
        return QStringLiteral("0");
    }
    return QString::number(static_cast<int>(std::clamp(fSeconds, -limit, limit)));
}

// Interval and time of a dataset whose click info states both; false otherwise.
bool readTimePoint(CORVDataset* pDataset, ImageRecord& record)
{
    const CPLSection* pSection = pDataset->clickInfo[QStringLiteral("ClickNumber")];
    if (pSection == nullptr || !pSection->isKeyPresent("KyVo Time(s)") || !pSection->isKeyPresent("KyVo Interval")) {
        return false;
    }
    QString strInterval;
    pSection->getValue("KyVo Interval", &strInterval);
    float fSeconds = 0.0F;
    pSection->getValue("KyVo Time(s)", &fSeconds);
    record.interval = "Int" + strInterval;
    record.time = wholeSeconds(fSeconds);
    return true;
}

// Whether a photograph can be had at all; one of any dataset serves all others.
bool hasPhotograph(const QList<CORVDataset*>& datasets)
{
    return std::any_of(datasets.begin(), datasets.end(), [](const CORVDataset* pDataset) {
        return pDataset != nullptr && pDataset->hasImage(IMAGETYPE_PHOTOGRAPH);
    });
}

int fluorescenceKind(const CORVSequenceDataset& sequence)
{
    if (!sequence.isFluorescence) {
        return SEQKIND_LUMINESCENT;
    }
    return sequence.isTransillumination ? SEQKIND_TRANSILLUMINATION : SEQKIND_EPI_FLUORESCENT;
}

} // namespace

bool CORVSpumKyvo::buildDatasetInfo()
{
    CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(m_strSeqId);
    if (pSequence == nullptr) {
        logLine("SpumKyvo: Invalid sequence data in buildDatasetInfo()!", CORVLOG_ERROR);
        return false;
    }
    readKind(*pSequence);
    m_imageRecords.clear();
    m_emissionKeys.clear();
    m_excitationKeys.clear();
    m_spots.clear();
    m_allKeyPairs.clear();
    if (m_eSeqKind == SEQKIND_3D_SCENE) {
        return false;
    }
    if (!readImages(*pSequence) || !selectAllImages()) {
        return false;
    }
    if (m_eSeqKind == SEQKIND_TEMPORAL) {
        std::stable_sort(m_emissionKeys.begin(), m_emissionKeys.end(),
                         [](const QString& strA, const QString& strB) { return strA.toInt() < strB.toInt(); });
    } else {
        m_emissionKeys.sort();
    }
    m_excitationKeys.sort();
    updateKeys();
    return true;
}

void CORVSpumKyvo::readKind(const CORVSequenceDataset& sequence)
{
    if (sequence.is3DSceneOnlySequence()) {
        m_eSeqKind = SEQKIND_3D_SCENE;
    }
    // What follows always assigns: the host shows the tool for a scene-only sequence, inspected like any other.
    if (sequence.isKyvoSequence()) {
        m_eSeqKind = SEQKIND_TEMPORAL;
        m_eTemporalKind = fluorescenceKind(sequence);
    } else {
        m_eSeqKind = fluorescenceKind(sequence);
    }
    m_eUnit = sequence.isFluorescence ? DISPLAYUNIT_RADIANT_EFFICIENCY : DISPLAYUNIT_RADIANCE;
}

bool CORVSpumKyvo::readImages(const CORVSequenceDataset& sequence)
{
    int nCount = 0; // images that had to be numbered for want of a time
    CORVDataset* pOfPhotograph = nullptr;
    const QList<CORVDataset*> datasets = sequence.getDatasets();
    for (CORVDataset* pDataset : datasets) {
        if (pDataset == nullptr) {
            continue;
        }
        // In a spectral sequence the count stays 0, so the values of its last dataset stand.
        if (nCount == 0) {
            readSubject(pDataset);
            pOfPhotograph = pDataset;
            if (!hasPhotograph(datasets)) {
                return readPhotograph(sequence, pDataset);
            }
        }
        ImageRecord record;
        record.excitation = pDataset->getExcitationFilter();
        record.emission = pDataset->getEmissionFilter();
        const bool bExcitation = ::wavelengthDigits(record.excitation);
        const bool bEmission = ::wavelengthDigits(record.emission);
        if (m_eSeqKind != SEQKIND_TEMPORAL && pDataset->hasLuminescentImage && (bExcitation || bEmission)) {
            addSpectralImage(pDataset, record);
        } else {
            addTemporalImage(pDataset, record, &nCount);
        }
    }
    // Its pixels are read and kept, so it is the only one that is asked for.
    return pOfPhotograph == nullptr || readPhotograph(sequence, pOfPhotograph);
}

void CORVSpumKyvo::readSubject(CORVDataset* pDataset)
{
    const CPLSection* pSection = pDataset->clickInfo[QStringLiteral("luminescent image")];
    if (pSection == nullptr) {
        return;
    }
    QString strProbes;
    QString strSubjectType;
    if (pSection->getValue("Probe", &strProbes) != 0) {
        logLine("Could not find probe name in dataset.", CORVLOG_NOTE);
    } else if (pSection->getValue("Subject Type", &strSubjectType) == 0) {
        m_probes = normalisedProbeNames(strProbes);
    }
    // Empty when it was not read.
    m_strSubjectType = strSubjectType;
}

bool CORVSpumKyvo::readPhotograph(const CORVSequenceDataset& sequence, CORVDataset* pDataset)
{
    m_pPhoto = pDataset->getCoreImage(IMAGETYPE_PHOTOGRAPH);
    if (m_pPhoto == nullptr) {
        m_pPhoto = sequence.getEquivalentImageFromSequence(pDataset, IMAGETYPE_PHOTOGRAPH);
    }
    if (m_pPhoto == nullptr) {
        logLine("SpumKyvo: unable to find a valid photo and spumkyvo disabled!", CORVLOG_WARNING);
        return false;
    }
    return true;
}

void CORVSpumKyvo::addSpectralImage(CORVDataset* pDataset, ImageRecord record)
{
    appendIfAbsent<QString>(m_excitationKeys, record.excitation);
    appendIfAbsent<QString>(m_emissionKeys, record.emission);
    if (m_eSeqKind == SEQKIND_TRANSILLUMINATION) {
        record.spot = QStringLiteral("%1,%2").arg(pDataset->getFLXspot(), pDataset->getFLYspot());
        appendIfAbsent<QString>(m_spots, record.spot);
    }
    appendIfAbsent(m_allKeyPairs, KeyPair{record.excitation, record.emission});
    m_imageRecords.insert(pDataset->getClickNumber(), record);
}

void CORVSpumKyvo::addTemporalImage(CORVDataset* pDataset, ImageRecord record, int* pCount)
{
    if (!readTimePoint(pDataset, record)) {
        record.interval = "Int1";
        record.time = QString::number((*pCount)++);
    }
    if (m_emissionKeys.contains(record.time)) {
        return; // one image a time point: the first
    }
    m_emissionKeys.append(record.time);
    appendIfAbsent<QString>(m_excitationKeys, record.interval);
    appendIfAbsent(m_allKeyPairs, KeyPair{record.interval, record.time});
    m_imageRecords.insert(pDataset->getClickNumber(), record);
}

bool CORVSpumKyvo::selectAllImages()
{
    m_selectedKeyPairs = m_allKeyPairs;
    const bool bUsable = validateSelection(m_selectedKeyPairs, &m_eAxis, false) != SelectionCheck::Unusable;
    // In a scan every spot must have every pair.
    const bool bComplete = m_spots.size() < 2 || m_imageRecords.size() == m_selectedKeyPairs.size() * m_spots.size();
    if (!bUsable || !bComplete) {
        m_imageRecords.clear();
        return false;
    }
    return true;
}
