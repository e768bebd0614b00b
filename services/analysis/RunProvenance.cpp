// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/RunProvenance.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVSequenceDataset.h"
#include "services/analysis/MaskImage.h"
#include "services/analysis/MaskRequest.h"
#include "services/basis/fileHash.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

#include <system_error>

namespace {

QString absolute(const QString& strPath)
{
    return QDir::cleanPath(QFileInfo(strPath).absoluteFilePath());
}

// As on the command line, with the threshold that was found.
void addMask(const MaskRequest& mask, const CORVSpumKyvo& engine, QJsonObject& options)
{
    const QString shape = QStringLiteral("%1:%2,%3,%4,%5");
    QString text = QStringLiteral("none");
    switch (mask.kind) {
    case MaskRequest::Kind::Photograph:
        text = QStringLiteral("auto");
        options.insert(QStringLiteral("threshold"), photographThreshold(mask.threshold, engine));
        break;
    case MaskRequest::Kind::File:
        text = absolute(mask.file);
        break;
    case MaskRequest::Kind::Rectangle:
        text = shape.arg(QStringLiteral("rect")).arg(mask.x).arg(mask.y).arg(mask.width).arg(mask.height);
        break;
    case MaskRequest::Kind::Ellipse:
        text = shape.arg(QStringLiteral("ellipse")).arg(mask.x).arg(mask.y).arg(mask.width).arg(mask.height);
        break;
    case MaskRequest::Kind::Region:
        text = mask.region;
        break;
    case MaskRequest::Kind::None:
        break;
    }
    options.insert(QStringLiteral("mask"), text);
}

} // namespace

RunProvenance::RunProvenance() : m_started(QDateTime::currentDateTimeUtc()) {}

RunProvenance::~RunProvenance()
{
    m_bStop = true;
}

void RunProvenance::beginHashing(const CORVSequenceDataset& sequence, const CORVSpumKyvo& engine)
{
    const QList<AnalysedFile> files = analysedFiles(sequence, engine.m_imageList);
    const auto hash = [this, folder = sequence.getSequenceInfoPath(), files] {
        return hashedFiles(folder, files, [this] { return !m_bStop; });
    };
    try {
        m_hashes = std::async(std::launch::async, hash);
    } catch (const std::system_error&) {
        // The system gives no thread: whoever asks does it.
        m_hashes = std::async(std::launch::deferred, hash);
    }
}

Provenance RunProvenance::gather(const CORVSequenceDataset& sequence, const CORVSpumKyvo& engine,
                                 const MaskRequest& mask, const QString& strLibrary)
{
    Provenance provenance = provenanceOf(sequence, engine);
    provenance.started = m_started;
    if (m_hashes.valid()) {
        provenance.files = m_hashes.get();
    }
    addMask(mask, engine, provenance.options);
    if (mask.kind == MaskRequest::Kind::File) {
        provenance.maskFile = absolute(mask.file);
        provenance.maskFileSha1 = fileHash(provenance.maskFile);
    }
    if (!strLibrary.isEmpty()) {
        provenance.library = absolute(strLibrary);
        provenance.librarySha1 = fileHash(provenance.library);
        provenance.options.insert(QStringLiteral("library"), provenance.library);
    }
    return provenance;
}
