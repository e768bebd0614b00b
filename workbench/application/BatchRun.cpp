// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/BatchRun.h"

#include "host/CORVLog.h"
#include "host/CORVProcess.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVUtilityFns.h"
#include "host/batchResidual.h"
#include "platform/orvutils/ProcessControl.h"
#include "workbench/application/LogFeed.h"
#include "workbench/application/LogModel.h"
#include "workbench/application/OpenDocuments.h"
#include "workbench/application/PaletteControl.h"
#include "workbench/application/PluginHost.h"
#include "workbench/application/RunLock.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <utility>

namespace {

// Turns of the event loop by whose end a window that the tool wants closed has closed.
constexpr int patientTurns = 5;
constexpr int adaptive = 1; // of the host's modes; 0 is off

// What the tool tells first of a sequence that it takes up.
const QLatin1String takingUp("Spectral Unmixing for sequence :- ");

// Results of batches beside a sequence, with the times of their files.
QMap<QString, qint64> resultsIn(const QString& strFolder)
{
    QMap<QString, qint64> results;
    const QDir sequence(strFolder);
    for (const QString& batch : sequence.entryList({QStringLiteral("SPUM*")}, QDir::Dirs)) {
        const QDir files(sequence.filePath(batch + QStringLiteral("/SpecUnmix")));
        for (const QFileInfo& file : files.entryInfoList({QStringLiteral("*.xml")}, QDir::Files)) {
            results.insert(file.filePath(), file.lastModified().toMSecsSinceEpoch());
        }
    }
    return results;
}

void logLine(const QString& strMessage, long nLevel)
{
    CORVLog::getLogObject()->log(strMessage, QString(), 0, QDateTime::currentDateTime().toString(Qt::ISODate), nLevel,
                                 false);
}

} // namespace

BatchRun::BatchRun(const Parts& parts, QObject* pParent) : QObject(pParent), m_parts(parts)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (m_ePhase == Phase::Between) {
            beginNext();
        } else if (m_ePhase == Phase::Closing) {
            awaitClosing();
        }
    });
    connect(&m_parts.log, &LogFeed::arrived, this, &BatchRun::takeRecords);
    connect(&m_parts.plugin, &PluginHost::windowsWanted, this, &BatchRun::onWindowsWanted);
    // The plug-in hears of a new sequence before it hears that it is in front.
    connect(&m_parts.documents, &OpenDocuments::sequenceAdded, this, [this](CORVSequenceDataset* pSequence) {
        if (m_ePhase == Phase::Running && !m_pSequence) {
            m_pSequence = pSequence;
            m_parts.palette.setBatchSequence(pSequence);
        }
    });
}

void BatchRun::start(const QStringList& folders, bool bAdaptiveBackground)
{
    m_sheet = BatchSheet(folders);
    m_parts.lock.hold();
    m_parts.palette.beginBatch();
    CORVUtilityFns::setSpumBatchProcessingCount(m_sheet.rows().size());
    CORVUtilityFns::setSpumBatchNewFolderStatus(true);
    CORVUtilityFns::setAdaptFLBgModeForSpumBatch(bAdaptiveBackground ? adaptive : 0);
    CORVUtilityFns::setSpumBatchStatus(true);
    m_ePhase = Phase::Between;
    Q_EMIT started();
    m_timer.start(0);
}

void BatchRun::beginNext()
{
    m_parts.log.flush(); // what came before belongs to nobody
    const int nRow = m_sheet.next();
    if (nRow < 0) {
        finish();
        return;
    }
    m_sheet.begin(nRow);
    m_clock.start();
    m_end = BatchSheet::End();
    m_bAbort = m_bRan = false;
    m_nTurns = 0;
    m_pSequence = nullptr;
    m_pFrame = nullptr;
    m_datasetsBefore = m_parts.documents.ownDatasets();
    const QString folder = m_sheet.rows().at(nRow).folder;
    m_before = resultsIn(folder);
    Q_EMIT changed(nRow);
    m_ePhase = Phase::Running;
    process(folder);
    m_ePhase = Phase::Closing;
    m_timer.start(0);
}

// Returns when the tool has come to the end of its work.
void BatchRun::process(const QString& strFolder)
{
    // A work area that is disabled brings no window to the front; the tool's own lock comes with its run.
    m_parts.lock.release();
    const auto outcome = m_parts.documents.openSequence(strFolder);
    m_parts.lock.hold();
    for (const QString& warning : outcome.warnings) {
        logLine(warning, CORVLOG_WARNING);
    }
    m_parts.log.flush();
    if (outcome.document == nullptr) {
        m_end.openingError = outcome.error;
        logLine(outcome.error, CORVLOG_ERROR);
        return;
    }
    if (!m_pSequence) {
        return; // it went while it was worked on
    }
    const QVariant residual = m_pSequence->property(batchResidualProperty);
    if (residual.isValid()) {
        m_end.residual = residual.toDouble();
    }
    if (!m_end.takenUp) {
        m_end.whyNotTakenUp = m_parts.palette.reason();
    }
    const CORVSequenceWindow* pWindow = CORVSequenceWindow::getSequenceWindow(m_pSequence);
    m_pFrame = pWindow != nullptr ? pWindow->parentWidget() : nullptr;
}

// What the tool has not taken up it does not close either.
void BatchRun::awaitClosing()
{
    if (m_pFrame && !m_end.takenUp) {
        m_pFrame->close();
    }
    if (m_pFrame && (m_pFrame->isHidden() || ++m_nTurns < patientTurns)) {
        m_timer.start(0);
        return;
    }
    finishSequence(!m_pFrame.isNull());
}

void BatchRun::finishSequence(bool bStillOpen)
{
    // The maps are hidden and on the disk.
    for (const CORVDataset* pDataset : m_parts.documents.ownDatasets()) {
        if (!m_datasetsBefore.contains(const_cast<CORVDataset*>(pDataset))) {
            m_parts.documents.closeDataset(pDataset);
        }
    }
    m_parts.log.flush();
    const int nRow = m_sheet.running();
    const QString& folder = m_sheet.rows().at(nRow).folder;
    m_end.saved = resultsIn(folder) != m_before;
    // An abort may come ahead of the run, which then does not begin.
    m_end.aborted = (m_bRan && CORVProcess::isProcessAborted()) || (m_bAbort && !m_end.saved);
    m_end.stillOpen = bStillOpen;
    m_end.milliseconds = m_clock.elapsed();
    m_sheet.end(m_end);
    m_parts.palette.setBatchSequence(nullptr);
    m_ePhase = Phase::Between;
    Q_EMIT changed(nRow);
    m_timer.start(0);
}

void BatchRun::finish()
{
    CORVUtilityFns::setSpumBatchStatus(false);
    CORVUtilityFns::setSpumBatchProcessingCount(0);
    CORVUtilityFns::setSpumBatchNewFolderStatus(false);
    CORVUtilityFns::setAdaptFLBgModeForSpumBatch(0);
    m_parts.plugin.endBatch();
    m_ePhase = Phase::Idle;
    m_parts.lock.release();
    m_parts.palette.endBatch();
    Q_EMIT ended();
}

void BatchRun::abortSequence()
{
    if (m_ePhase == Phase::Running) {
        m_bAbort = true;
        orv::requestAbort();
    }
}

void BatchRun::abortAll()
{
    if (isRunning()) {
        m_sheet.abort();
        abortSequence();
        Q_EMIT changed(-1);
    }
}

// The start of a run takes an abort back that came before it.
void BatchRun::onWindowsWanted(bool bRestored)
{
    if (bRestored) {
        return;
    }
    m_bRan = true;
    if (m_bAbort) {
        orv::requestAbort();
    }
}

void BatchRun::takeRecords(const QVector<orv::LogRecord>& records)
{
    const int nRow = m_sheet.running();
    if (nRow < 0) {
        return;
    }
    for (const orv::LogRecord& record : records) {
        m_sheet.note(LogModel::levelOf(record), record.m_strMessage);
        m_end.takenUp = m_end.takenUp || record.m_strMessage.startsWith(takingUp);
    }
    Q_EMIT changed(nRow);
}
