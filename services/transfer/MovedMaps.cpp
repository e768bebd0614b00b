// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/transfer/MovedMaps.h"

#include "services/basis/Failure.h"
#include "services/session/UnmixedMapLinks.h"

#include "engine/CORVSpumKyvo.h"
#include "files/StagedFolder.h"
#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvapi/ImageNames.h"
#include "platform/orvapi/SequenceInfo.h"
#include "spectra/SpectrumPlotParams.h"
#include "storage/exportRegions.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace {

const char* const analyzedClickInfo = "AnalyzedClickInfo.txt";

// Place of the component that a map's label names; the label ends in "UMX" and its number.
int componentOf(const QString& strLabel)
{
    const QString mark = QStringLiteral("UMX");
    return strLabel.mid(strLabel.lastIndexOf(mark) + mark.size()).toInt() - 1;
}

// The scan spot of a map, from 0: the datasets of a scan come spot after spot.
int spotOf(int nOrder, int nSpots)
{
    return nSpots > 1 ? nOrder : 0;
}

CPLSection& sectionIn(CPLClickInfo& info, const QString& strKey)
{
    if (info[strKey] == nullptr) {
        const CPLSection section(strKey);
        info.addSection(&section);
    }
    return *info[strKey];
}

QString photographName()
{
    return imageFileNames(IMAGETYPE_PHOTOGRAPH).first();
}

} // namespace

MovedMaps::MovedMaps(CORVSpumKyvo& engine, CORVSequenceDataset& sequence, const StagedFolder& staged)
    : m_engine(engine), m_sequence(sequence), m_staged(staged), m_strId(engine.getSequenceId() + QLatin1String("_UMX"))
{
    const QByteArray place = (engine.getSequenceId() + QLatin1Char('\n') + staged.target()).toUtf8();
    const QByteArray hash = QCryptographicHash::hash(place, QCryptographicHash::Sha1).toHex().toUpper();
    m_strMark = QString::fromLatin1(hash.left(6));
}

void MovedMaps::copyFiles(const QString& strFrom, const QString& strName) const
{
    const QString to = m_staged.path() + strName;
    if (!QDir().mkdir(to)) {
        throw Failure(QStringLiteral("%1/%2: cannot be made").arg(m_staged.target(), strName));
    }
    for (const QString& file : QDir(strFrom).entryList(QDir::Files)) {
        if (!QFile::copy(strFrom + QLatin1Char('/') + file, to + QLatin1Char('/') + file)) {
            throw Failure(QStringLiteral("%1/%2/%3: cannot be written").arg(m_staged.target(), strName, file));
        }
    }
}

void MovedMaps::change(const QString& strName, const std::function<void(CPLClickInfo&)>& edit) const
{
    for (const char* file : {SequenceFiles::kClickInfo, analyzedClickInfo}) {
        const QString inside = strName + QLatin1Char('/') + QLatin1String(file);
        CPLClickInfo info;
        if (info.loadClickInfo(m_staged.path() + inside) != 0) {
            throw Failure(QStringLiteral("%1/%2: cannot be read").arg(m_staged.target(), inside));
        }
        edit(info);
        if (info.saveClickInfo(m_staged.path() + inside) != 0) {
            throw Failure(QStringLiteral("%1/%2: cannot be written").arg(m_staged.target(), inside));
        }
    }
}

void MovedMaps::complete(const QString& strName, int nComponent, CPLClickInfo& info) const
{
    CPLSection& click = sectionIn(info, QString::fromLatin1(ClickKeys::kClickNumber));
    click.setValue(QString::fromLatin1(ClickKeys::kClickNumber),
                   QStringLiteral("UMX%1-%2").arg(m_names.size() + 1, 4, 10, QLatin1Char('0')).arg(m_strMark));
    click.setValue(QString::fromLatin1(ClickKeys::kFolderOnDisk), strName);
    CPLSection& luminescent = sectionIn(info, QString::fromLatin1(ClickKeys::kLuminescentImage));
    double binning = 0.0;
    luminescent.getValue(QString::fromLatin1(ClickKeys::kBinning), &binning);
    if (std::lround(binning) != m_engine.m_nBinning) {
        luminescent.setValue(QString::fromLatin1(ClickKeys::kBinning), m_engine.m_nBinning);
    }
    if (const auto* plot = m_engine.m_spectrumPlots.value(nComponent)) {
        luminescent.setValue(QString::fromLatin1(UnmixedMapKeys::kComponent), plot->settings.name);
    }
}

void MovedMaps::takeRegions(const QString& strName, CORVDataset& source) const
{
    if (!source.hasROIData()) {
        return;
    }
    CORVDataset map;
    QString error;
    if (map.open(m_staged.path() + strName, &error) != ESTATUS_SUCCESS) {
        throw Failure(error);
    }
    if (takeOverRegions(source, map, static_cast<tag_edisplayunit>(m_engine.m_eUnit)) != ESTATUS_SUCCESS) {
        throw Failure(QStringLiteral("%1/%2: the regions of interest cannot be measured over the map")
                          .arg(m_staged.target(), strName));
    }
    change(strName, [&map](CPLClickInfo& info) { map.roiManager()->saveROIData(&info); });
}

void MovedMaps::add(const QString& strClickInfo)
{
    const QString from = QFileInfo(strClickInfo).absolutePath();
    const QString name = QFileInfo(from).fileName();
    copyFiles(from, name);
    CPLClickInfo made;
    if (made.loadClickInfo(strClickInfo) != 0) {
        throw Failure(QStringLiteral("%1: cannot be read").arg(strClickInfo));
    }
    const int component = componentOf(clickText(made, ClickKeys::kLuminescentImage, UnmixedMapKeys::kConcentration));
    change(name, [&](CPLClickInfo& info) { complete(name, component, info); });
    if (CORVDataset* pSource = m_engine.unmixedSource(component, spotOf(m_names.size(), m_engine.m_spots.size()))) {
        takeRegions(name, *pSource);
    }
    m_names.append(name);
}

void MovedMaps::lendPhotograph() const
{
    const auto hasPhotograph = [this](const QString& name) {
        return QFileInfo::exists(m_staged.path() + name + QLatin1Char('/') + photographName());
    };
    if (std::any_of(m_names.begin(), m_names.end(), hasPhotograph)) {
        return;
    }
    const QString target = m_staged.path() + m_names.first() + QLatin1Char('/') + photographName();
    const QString binningKey = QString::fromLatin1(ClickKeys::kBinning);
    for (CORVDataset* dataset : m_sequence.getDatasets()) {
        const CORVImageDetails* details = dataset->imageList().getImage(IMAGETYPE_PHOTOGRAPH);
        const CILImage* image = details == nullptr ? dataset->getCoreImage(IMAGETYPE_PHOTOGRAPH) : nullptr;
        if (details == nullptr && image == nullptr) {
            continue;
        }
        // A photograph in colour keeps its colours as a file.
        const bool written = details != nullptr
                                 ? QFile::copy(details->path(), target)
                                 : image->saveAsTIFF(QFile::encodeName(target).constData()) == EIL_SUCCESS;
        if (!written) {
            throw Failure(QStringLiteral("%1/%2/%3: cannot be written")
                              .arg(m_staged.target(), m_names.first(), photographName()));
        }
        const float binning = dataset->getBinningForImage(IMAGETYPE_PHOTOGRAPH);
        change(m_names.first(), [&](CPLClickInfo& info) {
            CPLSection& section = sectionIn(info, imageSection(IMAGETYPE_PHOTOGRAPH));
            if (!section.isKeyPresent(binningKey)) {
                section.setValue(binningKey, QString::number(static_cast<double>(binning)));
            }
        });
        return;
    }
}

void MovedMaps::writeInfo() const
{
    SequenceInfo info;
    info.id = m_strId;
    info.name = QStringLiteral("Unmixed maps of %1").arg(m_sequence.getSequenceName());
    info.temporal = m_sequence.isKyvoSequence();
    info.fluorescence = m_sequence.isFluorescence;
    info.transillumination = m_sequence.isTransillumination;
    info.adjust = *m_sequence.getImageAdjust();
    info.folders = m_names;
    CPLClickInfo sections = sequenceInfoSections(info);
    const QString origin =
        clickText(m_sequence.sequenceInfo(), SequenceKeys::kSequence, SequenceKeys::kPhotographOrigin);
    if (!origin.isEmpty()) {
        sectionIn(sections, QString::fromLatin1(SequenceKeys::kSequence))
            .setValue(QString::fromLatin1(SequenceKeys::kPhotographOrigin), origin);
    }
    if (sections.saveClickInfo(m_staged.path() + QLatin1String(SequenceFiles::kSequenceInfo)) != 0) {
        throw Failure(QStringLiteral("%1/%2: cannot be written")
                          .arg(m_staged.target(), QLatin1String(SequenceFiles::kSequenceInfo)));
    }
}

void MovedMaps::finish()
{
    lendPhotograph();
    writeInfo();
}
