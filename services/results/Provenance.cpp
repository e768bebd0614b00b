// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/Provenance.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "host/CORVDataset.h"
#include "host/CORVPreference.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvutils/programCommit.h"
#include "services/basis/ImageExtent.h"
#include "services/basis/ModeNames.h"
#include "services/basis/UnitNames.h"
#include "services/importer/PreparedImage.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QSize>
#include <QSysInfo>
#include <QThread>

#include <vector>

namespace {

// UTC, to the millisecond.
QString momentText(const QDateTime& moment)
{
    return moment.toUTC().toString(Qt::ISODateWithMs);
}

QJsonArray filesJson(const QList<AnalysedFile>& files)
{
    QJsonArray list;
    for (const AnalysedFile& file : files) {
        QJsonObject json{{"file", file.name}, {"sha1", file.sha1}};
        if (!file.image.isEmpty()) {
            json.insert(QStringLiteral("image"), file.image);
        }
        list.append(json);
    }
    return list;
}

// What an import has subtracted from the images of the analysis.
QJsonArray correctionsOf(const CORVSequenceDataset& sequence, const CORVSpumKyvo& engine)
{
    QJsonArray list;
    for (const QString& click : engine.m_imageList) {
        const CORVDataset* pDataset = sequence.getDataset(click);
        const PreparedImage prepared = pDataset != nullptr ? PreparedImage::of(pDataset->clickInfo) : PreparedImage();
        QJsonObject json = prepared.json();
        if (json.isEmpty()) {
            continue;
        }
        json.insert(QStringLiteral("image"), click);
        list.append(json);
    }
    return list;
}

} // namespace

QJsonObject Provenance::json() const
{
    QJsonObject mask{{"sha1", maskSha1}};
    if (!maskFile.isEmpty()) {
        mask.insert(QStringLiteral("file"), maskFile);
        mask.insert(QStringLiteral("fileSha1"), maskFileSha1);
    }
    QJsonObject origin{{"id", sequenceId}, {"path", sequence}, {"files", filesJson(files)}};
    if (!corrections.isEmpty()) {
        origin.insert(QStringLiteral("corrections"), corrections);
    }
    QJsonObject json{{"program", QJsonObject{{"name", QStringLiteral("spum")},
                                             {"version", CORVPreference::getAppVersion()},
                                             {"commit", orv::programCommit()}}},
                     {"sequence", origin},
                     {"mask", mask},
                     {"made", QJsonObject{{"started", momentText(started)},
                                          {"finished", momentText(finished)},
                                          {"seconds", static_cast<double>(started.msecsTo(finished)) * 1e-3},
                                          {"host", QSysInfo::machineHostName()},
                                          {"system", QSysInfo::prettyProductName()},
                                          {"processors", QThread::idealThreadCount()},
                                          {"directory", QDir::currentPath()}}}};
    json.insert(QStringLiteral("options"), options);
    if (!command.isEmpty()) {
        json.insert(QStringLiteral("command"), QJsonArray::fromStringList(command));
        json.insert(QStringLiteral("arguments"), QJsonArray::fromStringList(arguments));
    }
    if (!library.isEmpty()) {
        json.insert(QStringLiteral("library"), QJsonObject{{"file", library}, {"sha1", librarySha1}});
    }
    return json;
}

Provenance provenanceOf(const CORVSequenceDataset& sequence, const CORVSpumKyvo& engine)
{
    Provenance provenance;
    provenance.sequence = QDir::cleanPath(QFileInfo(sequence.getSequenceInfoPath()).absoluteFilePath());
    provenance.sequenceId = sequence.getSequenceID();
    provenance.maskSha1 = maskHash(engine);
    provenance.corrections = correctionsOf(sequence, engine);
    QJsonArray images;
    for (const KeyPair& pair : engine.m_selectedKeyPairs) {
        images.append(QJsonArray{pair.first, pair.second});
    }
    provenance.options = QJsonObject{{"method", ModeNames::option(engine.m_eMode)},
                                     {"unit", UnitNames::options().value(engine.m_eUnit)},
                                     {"binning", engine.m_nBinning},
                                     {"images", images}};
    if (engine.m_eMode == RUNMODE_AUTOMATIC) {
        const AnalysisInput& input = engine.m_analysisInput;
        provenance.options.insert(QStringLiteral("components"), QJsonArray::fromStringList(input.componentNames));
        provenance.options.insert(QStringLiteral("constraints"), input.useConstraints);
        provenance.options.insert(QStringLiteral("decay"), input.decayCorrection);
    }
    return provenance;
}

QString maskHash(const CORVSpumKyvo& engine)
{
    const auto side = static_cast<std::size_t>(engine.m_nWidth);
    const bool masked = engine.m_cube.m_bHasMask;
    std::vector<char> pixels(side * static_cast<std::size_t>(engine.m_nHeight), masked ? '\0' : '\xFF');
    if (masked) {
        for (const int pixel : engine.m_cube.m_maskIndices) {
            pixels[static_cast<std::size_t>(pixel)] = '\xFF';
        }
    }
    // Without the rows and columns that were padded.
    const QSize extent = analysedExtent(engine);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (int y = 0; y < extent.height(); ++y) {
        hash.addData(pixels.data() + static_cast<std::size_t>(y) * side, extent.width());
    }
    return QString::fromLatin1(hash.result().toHex());
}

QJsonObject lastingSummary(QJsonObject summary)
{
    QJsonObject provenance = summary.value(QStringLiteral("provenance")).toObject();
    if (!provenance.isEmpty()) {
        provenance.remove(QStringLiteral("made"));
        provenance.remove(QStringLiteral("command")); // its words name the folder of the results
        summary.insert(QStringLiteral("provenance"), provenance);
    }
    summary.remove(QStringLiteral("seconds")); // of a command's answer
    return summary;
}
