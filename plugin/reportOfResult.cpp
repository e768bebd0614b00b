// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/reportOfResult.h"

#include "engine/CORVSpumKyvo.h"
#include "services/basis/JobMonitor.h"
#include "services/results/ResultFiles.h"
#include "services/results/ResultNumbers.h"
#include "services/results/StagedRun.h"

#include <QDateTime>
#include <QLocale>

void writeReportOfResult(const CORVSpumKyvo& engine, const ReportRequest& request, JobMonitor& monitor)
{
    StagedRun staged(request.folder, false, QStringLiteral("summary.json"));
    ReportFrame frame;
    frame.sequenceName = request.sequenceName;
    frame.note = request.note;
    frame.made = QLocale::c().toString(QDateTime::currentDateTime(), QStringLiteral("yyyy-MM-dd hh:mm"));
    ResultFiles files(engine, numbersOfResult(engine, QString()), staged.path());
    files.setRun(staged.name());
    Provenance provenance = request.provenance;
    provenance.files = hashedFiles(provenance.sequence, analysedFiles(request.analysed),
                                   [&monitor] { return !monitor.isStopRequested(); });
    files.setProvenance(provenance);
    files.setReport(frame, false);
    if (!request.composite.isNull()) {
        files.setComposites({{QStringLiteral("composite.png"), request.composite}});
    }
    files.write([&monitor](double dFraction) {
        monitor.stopIfRequested();
        monitor.showProgress(QString(), dFraction);
    });
    staged.finish(monitor);
}
