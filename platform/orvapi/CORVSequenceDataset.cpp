// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVSequenceDataset.h"

#include "files/StagedFolder.h"
#include "host/CORVDatabase.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvapi/DecayCorrection.h"
#include "platform/orvapi/SequenceInfo.h"
#include "platform/orvutils/NumberText.h"

#include <QDir>
#include <QFileInfo>
#include <QPair>
#include <QSet>

#include <algorithm>

namespace {

// Every sequence that lives, in the order of their making. Never destroyed, as in CORVDataset.
QList<CORVSequenceDataset*>& registry()
{
    static auto* const s_pSequences = new QList<CORVSequenceDataset*>;
    return *s_pSequences;
}

bool isTakenByOther(const QString& strId, const CORVSequenceDataset* pOwn)
{
    return std::any_of(registry().cbegin(), registry().cend(), [&](const CORVSequenceDataset* pSequence) {
        return pSequence != pOwn && pSequence->getSequenceID() == strId;
    });
}

QString freeId(const QString& strId, const CORVSequenceDataset* pOwn)
{
    QString id = strId;
    for (int number = 2; isTakenByOther(id, pOwn); ++number) {
        id = QStringLiteral("%1_%2").arg(strId, QString::number(number));
    }
    return id;
}

bool hasDigit(const QString& strText)
{
    return std::any_of(strText.cbegin(), strText.cend(), [](QChar c) { return c.isDigit(); });
}

// Nobody reads more warnings than these.
void shorten(QStringList& warnings, const QString& strFile)
{
    constexpr int most = 100;
    const int more = warnings.size() - most;
    if (more <= 0) {
        return;
    }
    warnings = warnings.mid(0, most);
    warnings.append(QStringLiteral("%1: %2 more warnings").arg(strFile, QString::number(more)));
}

// A sequence that a killed program has left aside goes back to its place; what there is to tell about it. `strPath` is
// that of the folder or of the file in it.
QString takeBackMissing(const QString& strPath)
{
    const QFileInfo given(strPath);
    return StagedFolder::takeBackMissing(
        given.fileName() == QLatin1String(SequenceFiles::kSequenceInfo) ? given.absolutePath() : strPath);
}

bool hasTimes(const CORVDataset& dataset)
{
    return !clickText(dataset.clickInfo, ClickKeys::kClickNumber, ClickKeys::kKyVoTime).isEmpty() &&
           !clickText(dataset.clickInfo, ClickKeys::kClickNumber, ClickKeys::kKyVoInterval).isEmpty();
}

} // namespace

CORVSequenceDataset::CORVSequenceDataset(QObject* pParent) : QObject(pParent)
{
    registry().append(this);
}

CORVSequenceDataset::~CORVSequenceDataset()
{
    registry().removeOne(this);
}

CORVSequenceDataset* CORVSequenceDataset::getSequenceDataset(const QString& strId)
{
    if (strId.isEmpty()) {
        return nullptr;
    }
    for (CORVSequenceDataset* pSequence : registry()) {
        if (pSequence->getSequenceID() == strId) {
            return pSequence;
        }
    }
    return nullptr;
}

QList<CORVSequenceDataset*> CORVSequenceDataset::openSequences()
{
    return registry();
}

void CORVSequenceDataset::reset()
{
    m_strId.clear();
    m_strName.clear();
    m_strInfoPath.clear();
    m_info.clear();
    m_datasets.clear();
    m_leftOut.clear();
    m_adjust = tag_simageadjust();
    m_bKyvo = m_b3DSceneOnly = m_bCTScan = m_bCTComplete = m_bModified = false;
    isFluorescence = isSecondKind = isTransillumination = isSpectrallyAnalysable = false;
}

ESTATUS CORVSequenceDataset::open(const QString& strPath, QString* pError, QStringList* pWarnings)
{
    reset();
    QStringList warnings;
    const QString left = takeBackMissing(strPath);
    if (!left.isEmpty()) {
        warnings.append(left);
    }
    const QFileInfo given(strPath);
    const QString folder = QDir::cleanPath(given.isDir() ? given.absoluteFilePath() : given.absolutePath());
    const bool exists =
        given.isDir() || (given.isFile() && given.fileName() == QLatin1String(SequenceFiles::kSequenceInfo));
    if (exists) {
        m_strInfoPath = folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
        warnings.append(StagedFolder::takeBackMissingInside(folder));
        SequenceInfo info;
        const bool described = readInfo(&info, &warnings);
        readDatasets(findFolders(described, info, &warnings), &warnings);
        takeOver(described, info, &warnings);
        shorten(warnings, m_strInfoPath + QLatin1String(SequenceFiles::kSequenceInfo));
    }
    const bool usable = !m_datasets.isEmpty();
    if (!usable) {
        if (pError != nullptr) {
            *pError = exists ? QStringLiteral("%1: holds no dataset that can be read").arg(folder)
                             : QStringLiteral("%1: is no sequence folder").arg(strPath);
            const QFileInfo info(folder);
            if (exists && !(info.isReadable() && info.isExecutable())) {
                *pError = QStringLiteral("%1: the folder cannot be read, its permissions forbid it").arg(folder);
            }
            if (!warnings.isEmpty()) {
                *pError += QLatin1String("; ") + warnings.join(QLatin1String("; "));
            }
        }
        reset();
    }
    if (pWarnings != nullptr) {
        pWarnings->append(warnings);
    }
    if (usable) {
        return ESTATUS_SUCCESS;
    }
    return exists ? ESTATUS_FILE_UNREADABLE : ESTATUS_INVALID_ARGUMENT;
}

bool CORVSequenceDataset::readInfo(SequenceInfo* pInfo, QStringList* pWarnings)
{
    const QString file = m_strInfoPath + QLatin1String(SequenceFiles::kSequenceInfo);
    if (!QFileInfo::exists(file)) {
        pWarnings->append(QStringLiteral("%1: is missing; the folders beside it are taken as datasets").arg(file));
        return false;
    }
    QStringList lines;
    const bool readable = m_info.loadClickInfo(file, &lines) == 0;
    if (!readable && lines.isEmpty()) {
        lines.append(QStringLiteral("%1: cannot be read").arg(file));
    }
    pWarnings->append(lines);
    if (readable && readSequenceInfo(m_info, file, pInfo, *pWarnings)) {
        return true;
    }
    pWarnings->append(
        QStringLiteral("%1: describes no sequence; the folders beside it are taken as datasets").arg(file));
    return false;
}

QStringList CORVSequenceDataset::findFolders(bool bDescribed, const SequenceInfo& info, QStringList* pWarnings) const
{
    if (!bDescribed) {
        return foldersOnDisk();
    }
    const int listed = info.folders.size() + info.refusedFolders;
    const bool allListed = info.announcedCount ? listed >= *info.announcedCount : listed > 0;
    // A file that was cut inside the last name still counts right; that folder is not there.
    const bool endsWhole = info.folders.isEmpty() || QFileInfo::exists(m_strInfoPath + info.folders.last());
    if (allListed && endsWhole) {
        return info.folders;
    }
    pWarnings->append(
        QStringLiteral(
            "%1%2: the list of datasets is cut short (%3 of %4, or the last is not there); the other folders "
            "beside it are added")
            .arg(m_strInfoPath, QLatin1String(SequenceFiles::kSequenceInfo), QString::number(listed),
                 info.announcedCount ? QString::number(*info.announcedCount) : QStringLiteral("?")));
    QStringList folders = info.folders;
    for (const QString& folder : foldersOnDisk()) {
        if (!folders.contains(folder)) {
            folders.append(folder);
        }
    }
    return folders;
}

void CORVSequenceDataset::readDatasets(const QStringList& folders, QStringList* pWarnings)
{
    for (const QString& folder : folders) {
        const auto pDataset = QSharedPointer<CORVDataset>::create();
        QString reason;
        if (pDataset->open(m_strInfoPath + folder, &reason, pWarnings) == ESTATUS_SUCCESS) {
            const CORVDataset* pEarlier = getDataset(pDataset->getClickNumber());
            if (pEarlier == nullptr) {
                pDataset->m_pSequence = this;
                m_datasets.append(pDataset);
                continue;
            }
            reason = QStringLiteral("%1: has the click number %2 of %3")
                         .arg(pDataset->folderPath(), pDataset->getClickNumber(), pEarlier->folderPath());
        }
        pWarnings->append(QStringLiteral("%1; the dataset is left out").arg(reason));
        m_leftOut.append({m_strInfoPath + folder + QLatin1Char('/'), reason, m_datasets.size()});
    }
}

void CORVSequenceDataset::takeOver(bool bDescribed, const SequenceInfo& info, QStringList* pWarnings)
{
    if (m_datasets.isEmpty()) {
        return;
    }
    if (bDescribed && !(info.temporal && info.fluorescence && info.transillumination)) {
        pWarnings->append(QStringLiteral("%1%2: does not tell the kind of the sequence in full; the click infos serve")
                              .arg(m_strInfoPath, QLatin1String(SequenceFiles::kSequenceInfo)));
    }
    const auto all = [this](auto&& test) {
        return std::all_of(m_datasets.cbegin(), m_datasets.cend(), [&](const auto& p) { return test(*p); });
    };
    const bool excited = std::any_of(m_datasets.cbegin(), m_datasets.cend(),
                                     [](const auto& p) { return hasDigit(p->getExcitationFilter()); });
    m_bKyvo = info.temporal.value_or(all(hasTimes));
    isFluorescence = info.fluorescence.value_or(excited);
    isTransillumination =
        info.transillumination.value_or(isFluorescence && all([](const CORVDataset& dataset) {
                                            return !dataset.getFLXspot().isEmpty() && !dataset.getFLYspot().isEmpty();
                                        }));
    isSecondKind = info.secondKind;
    m_b3DSceneOnly = info.sceneOnly3D;
    isSpectrallyAnalysable = hasSpectra();
    m_bCTScan = info.ctScan;
    m_bCTComplete = info.ctComplete;
    m_adjust = info.adjust;
    const QString ownName = QDir(m_strInfoPath).dirName();
    setSequenceID(info.id.isEmpty() ? ownName : info.id);
    m_strName = !info.name.isEmpty() ? info.name : !info.id.isEmpty() ? info.id : ownName;
}

QStringList CORVSequenceDataset::foldersOnDisk() const
{
    const QDir dir(m_strInfoPath);
    QStringList folders;
    for (const QString& folder : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (QFileInfo::exists(dir.filePath(folder + QLatin1Char('/') + QLatin1String(SequenceFiles::kClickInfo)))) {
            folders.append(folder);
        }
    }
    std::sort(folders.begin(), folders.end(), orv::numberAwareLess);
    return folders;
}

void CORVSequenceDataset::setSequenceID(const QString& strId)
{
    m_strId = freeId(strId, this);
}

bool CORVSequenceDataset::addDataset(CORVDataset* pDataset)
{
    if (pDataset == nullptr || getDataset(pDataset->getClickNumber()) != nullptr) {
        return false;
    }
    pDataset->m_pSequence = this;
    m_datasets.append(QSharedPointer<CORVDataset>(pDataset));
    isSpectrallyAnalysable = hasSpectra();
    return true;
}

bool CORVSequenceDataset::hasSpectra() const
{
    QSet<QPair<QString, QString>> filters;
    for (const QSharedPointer<CORVDataset>& pDataset : m_datasets) {
        if (pDataset->hasLuminescentImage) {
            filters.insert({pDataset->getExcitationFilter(), pDataset->getEmissionFilter()});
        }
    }
    return filters.size() > 1 && !m_b3DSceneOnly;
}

QList<CORVDataset*> CORVSequenceDataset::getDatasets() const
{
    QList<CORVDataset*> datasets;
    for (const QSharedPointer<CORVDataset>& pDataset : m_datasets) {
        datasets.append(pDataset.data());
    }
    return datasets;
}

CORVDataset* CORVSequenceDataset::getDataset(const QString& strClickNumber) const
{
    for (const QSharedPointer<CORVDataset>& pDataset : m_datasets) {
        if (pDataset->getClickNumber() == strClickNumber) {
            return pDataset.data();
        }
    }
    return nullptr;
}

CILImage* CORVSequenceDataset::getEquivalentImageFromSequence(CORVDataset* pDataset, tag_eimagetype eType) const
{
    for (const QSharedPointer<CORVDataset>& pOther : m_datasets) {
        if (pOther.data() == pDataset) {
            continue;
        }
        if (CILImage* pImage = pOther->getCoreImage(eType)) {
            return pImage;
        }
    }
    return nullptr;
}

bool CORVSequenceDataset::isSLASequence() const
{
    return std::any_of(m_datasets.cbegin(), m_datasets.cend(),
                       [](const auto& pDataset) { return pDataset->isSLADataset(); });
}

bool CORVSequenceDataset::isCTSequence(bool bIncomplete) const
{
    return m_bCTScan && (m_bCTComplete || bIncomplete);
}

void CORVSequenceDataset::setCTScan(bool bScan, bool bComplete)
{
    m_bCTScan = bScan;
    m_bCTComplete = bScan && bComplete;
}

bool CORVSequenceDataset::isCherenkovIsotopeInData(QString& strIsotope) const
{
    strIsotope.clear();
    for (const QSharedPointer<CORVDataset>& pDataset : m_datasets) {
        const QString isotope = clickText(pDataset->clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kIsotope);
        if (!isotope.isEmpty() && CORVDatabase::isCherenkovIsotope(isotope, &strIsotope)) {
            return true;
        }
    }
    return false;
}

bool CORVSequenceDataset::calculateDecayCorrectFactor_CherenkovData(const QVector<QString>& clickNumbers,
                                                                    double dHalfLifeSec, QVector<double>& factors) const
{
    factors.clear();
    QVector<Exposure> exposures;
    for (const QString& clickNumber : clickNumbers) {
        const CORVDataset* pDataset = getDataset(clickNumber);
        Exposure exposure;
        if (pDataset == nullptr || !pDataset->getExposureStart(&exposure.start) ||
            !pDataset->getExposureTime(&exposure.length)) {
            return false;
        }
        exposures.append(exposure);
    }
    return decayCorrectionFactors(exposures, dHalfLifeSec, factors);
}

void CORVSequenceDataset::setModified(bool bModified)
{
    m_bModified = bModified;
}
