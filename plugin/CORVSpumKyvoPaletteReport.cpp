// SPDX-License-Identifier: GPL-3.0-or-later
// The report of the result on screen.
#include "plugin/CORVSpumKyvoPalette.h"

#include "plugin/HeldOpen.h"
#include "plugin/JobThread.h"
#include "plugin/reportOfResult.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVFileDialog.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVUtilityFns.h"
#include "services/results/ResultFacts.h"
#include "services/results/ResultNumbers.h"
#include "services/results/resultPlace.h"
#include "spectra/logLine.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace {

// A folder beside the images of a sequence that is not there yet: "unmixed", "unmixed-2" and so on; where nothing can
// be written there, one in the user's home, called after the sequence as far as its name can be that of a folder.
QString proposedFolder(const CORVSequenceDataset& sequence)
{
    const QString strBeside = sequence.getSequenceInfoPath();
    const QString strFirst =
        canBeWritten(strBeside)
            ? QDir(strBeside).filePath(QStringLiteral("unmixed"))
            : QDir::home().filePath(resultFileName(sequence.getSequenceName()) + QStringLiteral("-unmixed"));
    QString strFolder = strFirst;
    for (int i = 2; QFileInfo::exists(strFolder); ++i) {
        strFolder = QStringLiteral("%1-%2").arg(strFirst, QString::number(i));
    }
    return strFolder;
}

} // namespace

void CORVSpumKyvoPalette::onClickWriteReport()
{
    const CORVSequenceDataset* pSequence =
        m_pEngine != nullptr ? CORVSequenceDataset::getSequenceDataset(m_pEngine->m_strSeqId) : nullptr;
    if (pSequence == nullptr || m_pRunning != nullptr) {
        return;
    }
    const QPointer<CORVSpumKyvo> pEngine(m_pEngine);
    ReportRequest request;
    {
        const HeldOpen held;
        request.folder = CORVFileDialog::getSaveFileName(this, tr("Write Report into a New Folder"),
                                                         proposedFolder(*pSequence), QString());
        // The dialog takes its time to go, and so does what follows.
        QCoreApplication::processEvents();
    }
    // Whatever was opened, closed or started while the dialog stood there. The engine goes with its sequence.
    if (request.folder.isEmpty() || pEngine.isNull() || pEngine != m_pEngine || m_pRunning != nullptr) {
        return;
    }
    if (!hasMapsOfItsImages(*pEngine)) {
        CORVMessageBox::error(this, CORVUtilityFns::getAppName(),
                              tr("The result has no maps that go with the images."));
        return;
    }
    request.sequenceName = pSequence->getSequenceName();
    request.provenance = provenanceOf(*pSequence, *pEngine);
    request.analysed = analysedFolders(*pSequence, pEngine->m_imageList);
    request.provenance.started = QDateTime::currentDateTimeUtc();
    request.note = pEngine->resultView().getNote();
    request.composite = pictureOfTab(QStringLiteral("Composite"));
    writeReport(*pEngine, request);
}

void CORVSpumKyvoPalette::writeReport(CORVSpumKyvo& engine, const ReportRequest& request)
{
    const QPointer<CORVSpumKyvoPalette> self(this);
    JobThread job([&engine, &request](JobMonitor& monitor) { writeReportOfResult(engine, request, monitor); });
    doJob(engine, job, tr("Writing the report of sequence [%1]").arg(engine.m_strSeqId), 0);
    if (!self) {
        return;
    }
    m_pRunning = nullptr;
    if (job.isStopped()) {
        logLine(tr("The report was aborted, and nothing of it is left."), CORVLOG_PROGRESS);
    } else if (!job.reason().isEmpty()) {
        CORVMessageBox::error(this, CORVUtilityFns::getAppName(), job.reason());
    } else {
        logLine(tr("The report is in %1").arg(request.folder + QStringLiteral("/report.html")), CORVLOG_NOTE);
    }
    if (self) {
        finishWaiting();
    }
}
