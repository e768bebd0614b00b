// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/PcaRun.h"

#include "engine/CORVSpumKyvo.h"
#include "platform/orvutils/LogSinks.h"
#include "services/analysis/AnalysisSetUp.h"
#include "services/analysis/ShownRun.h"
#include "services/basis/Failure.h"

#include <mutex>

namespace {

// The last line of the log as long as it lives.
class LastLogLine
{
public:
    LastLogLine()
    {
        m_nSink = orv::addLogSink([this](const orv::LogRecord& record) {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_strLine = record.m_strMessage;
        });
    }
    ~LastLogLine() { orv::removeLogSink(m_nSink); }
    LastLogLine(const LastLogLine&) = delete;
    LastLogLine& operator=(const LastLogLine&) = delete;
    QString text() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_strLine;
    }

private:
    mutable std::mutex m_mutex;
    QString m_strLine;
    int m_nSink = 0;
};

// Each image is divided by its standard deviation.
void refuseConstantImages(const QStringList& constant)
{
    if (!constant.isEmpty()) {
        throw Failure(
            QStringLiteral("in these images all pixels that are analysed have one value, so that they have no "
                           "variance to scale: %1")
                .arg(constant.join(QStringLiteral(", "))));
    }
}

} // namespace

XTNT::Vector<double> runPca(CORVSpumKyvo& engine, JobMonitor& monitor)
{
    engine.m_pcaResult = XTNT::Vector<double>();
    engine.m_imageFindings = ImageFindings();
    engine.m_analysisInput.endPcaOfUnfitImages = true;
    engine.m_bRunPCA = true;
    const LastLogLine log;
    const RunOutcome outcome = runShown(engine, monitor, QStringLiteral("Analysing the images"), -1.0);
    if (outcome == RunOutcome::Aborted) {
        throw Failure(QStringLiteral("PCA aborted by user"), Failure::Kind::Aborted);
    }
    refuseUnusableImages(engine);
    refuseConstantImages(engine.m_imageFindings.constantImages());
    if (engine.hasError()) {
        throw Failure(engine.getErrorText());
    }
    // The last act of a run that ends in silence is to say why in the log.
    if (engine.m_pcaResult.empty()) {
        throw Failure(log.text());
    }
    return engine.m_pcaResult;
}
