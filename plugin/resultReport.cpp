// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/resultReport.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVLog.h"
#include "host/CORVSequenceDataset.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"
#include "services/results/ResultFiles.h"
#include "services/results/StagedRun.h"
#include "spectra/logLine.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QLocale>

#include <new>

namespace {

// The user waits; nothing is shown meanwhile but the pointer.
class WaitingMonitor : public JobMonitor
{
public:
    void startProgress(const QString& /*strMessage*/) override {}
    void showProgress(const QString& /*strMessage*/, double /*dFraction*/) override {}
    void endProgress() override {}
    void warn(const QString& strText) override { logLine(strText, CORVLOG_WARNING); }
    bool isStopRequested() const override { return false; }
};

} // namespace

QString resultReport::proposedFolder(const CORVSequenceDataset& sequence)
{
    const QString strFirst = sequence.getSequenceInfoPath() + QStringLiteral("/unmixed");
    QString strFolder = strFirst;
    for (int i = 2; QFileInfo::exists(strFolder); ++i) {
        strFolder = QStringLiteral("%1-%2").arg(strFirst).arg(i);
    }
    return strFolder;
}

QString resultReport::write(const CORVSpumKyvo& engine, const QString& strSequenceName, const QString& strNote,
                            const QImage& composite, const QString& strFolder)
{
    if (!hasMapsOfItsImages(engine)) {
        return QCoreApplication::translate("resultReport", "The result has no maps that go with the images.");
    }
    try {
        WaitingMonitor monitor;
        StagedRun staged(strFolder, false, QStringLiteral("summary.json"));
        ReportFrame frame;
        frame.sequenceName = strSequenceName;
        frame.note = strNote;
        frame.made = QLocale::c().toString(QDateTime::currentDateTime(), QStringLiteral("yyyy-MM-dd hh:mm"));
        ResultFiles files(engine, numbersOfResult(engine, QString()), staged.path());
        files.setReport(frame, false);
        if (!composite.isNull()) {
            files.setComposites({{QStringLiteral("composite.png"), composite}});
        }
        files.write([](double /*dFraction*/) {});
        staged.finish(monitor);
    } catch (const Failure& failure) {
        return failure.text();
    } catch (const std::bad_alloc&) {
        return QCoreApplication::translate("resultReport", "There is not enough memory for the report.");
    }
    return QString();
}
