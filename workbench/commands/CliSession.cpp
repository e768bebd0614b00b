// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/CliSession.h"

#include "XTNT/xtnt_parallel.h"
#include "platform/orvutils/LogSinks.h"
#include "platform/orvutils/ProcessControl.h"
#include "platform/orvutils/TextResponder.h"
#include "platform/orvutils/printable.h"
#include "services/basis/Failure.h"
#include "services/basis/jsonSchema.h"
#include "services/results/StagedRun.h"
#include "workbench/commands/CliProgress.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Output.h"

#include <QFile>
#include <QJsonDocument>

#include <csignal>
#include <iostream>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t interrupted = 0;

// The first signal lets the work end cleanly; a second one, of whichever kind, ends the process at once, for work that
// does not listen.
extern "C" void onInterrupt(int signalNumber)
{
    if (interrupted != 0) {
        std::signal(signalNumber, SIG_DFL);
        std::raise(signalNumber);
        return;
    }
    interrupted = 1;
    orv::requestAbortForGood();
}

QString fileNameOption(const QCommandLineParser& parser, const char* pName)
{
    const QString name = parser.value(QLatin1String(pName));
    if (parser.isSet(QLatin1String(pName)) && name.isEmpty()) {
        throw Failure(QStringLiteral("--%1 needs a file name").arg(QLatin1String(pName)), Failure::Kind::BadRequest);
    }
    return name;
}

// 0: as many as there are processors.
int threadsOf(const QCommandLineParser& parser)
{
    constexpr int most = 1024;
    const QString text = parser.value(QStringLiteral("threads"));
    if (!parser.isSet(QStringLiteral("threads"))) {
        return 0;
    }
    bool good = false;
    const int threads = text.toInt(&good);
    if (!good || threads < 1 || threads > most) {
        throw Failure(QStringLiteral("--threads takes a whole number from 1 to %1, not \"%2\".").arg(most).arg(text),
                      Failure::Kind::BadRequest);
    }
    return threads;
}

} // namespace

CliSession::CliSession(const QCommandLineParser& parser)
    : m_input(&m_typed), m_bJson(parser.isSet(QStringLiteral("json"))), m_bQuiet(parser.isSet(QStringLiteral("quiet"))),
      m_bVerbose(parser.isSet(QStringLiteral("verbose")))
{
    XTNT::setThreadCount(threadsOf(parser));
    const QString log = fileNameOption(parser, "log");
    QString error;
    if (!log.isEmpty() && !orv::setLogFile(log, &error)) {
        throw Failure(error);
    }
    // Errors are told at the end, but for those that the command tells itself.
    orv::setConsoleLogLevel(m_bVerbose ? orv::ConsoleLog::Everything : orv::ConsoleLog::Nothing);

    const QString trace = fileNameOption(parser, "trace");
    if (!trace.isEmpty()) {
        m_trace.open(QFile::encodeName(trace).constData());
        if (!m_trace) {
            throw Failure(QStringLiteral("%1: the trace file cannot be written").arg(trace));
        }
    }
    // A stream without a buffer drops what it is given.
    std::streambuf* pTrace = trace.isEmpty() ? nullptr : m_trace.rdbuf();
    if (!m_bQuiet && !m_bJson && CliProgress::terminalPresent()) {
        m_pWatch = std::make_unique<TraceWatch>(pTrace);
        pTrace = m_pWatch.get();
    }
    m_pOldBuffer = std::cout.rdbuf(pTrace);
    m_pProgress = std::make_unique<CliProgress>(!m_bQuiet && !m_bJson);
    m_pEarlierResponder = orv::setMessageResponder(
        std::make_unique<orv::TextResponder>(std::cerr, ::isatty(STDIN_FILENO) != 0 ? &m_input : nullptr));
}

CliSession::~CliSession()
{
    orv::setMessageResponder(std::move(m_pEarlierResponder));
    m_pProgress.reset();
    std::cout.rdbuf(m_pOldBuffer);
    std::cout.clear();
    orv::setLogFile(QString(), nullptr);
    XTNT::setThreadCount(0);
}

void CliSession::declareOptions(CommandParser& parser)
{
    parser.addOption(
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Tell the options of this command.")});
    parser.addOption({{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Tell the version.")});
    parser.addOption({QStringLiteral("json"), QStringLiteral("Answer with one JSON object.")});
    parser.addOption({QStringLiteral("quiet"), QStringLiteral("Say nothing but errors.")});
    parser.addOption({QStringLiteral("verbose"), QStringLiteral("Show the log on standard error.")});
    parser.addOption({QStringLiteral("log"), QStringLiteral("Append the log to FILE."), QStringLiteral("FILE")});
    parser.addOption({QStringLiteral("trace"), QStringLiteral("Write the trace of the algorithms to FILE."),
                      QStringLiteral("FILE")});
    parser.addOption({QStringLiteral("threads"),
                      QStringLiteral("Compute on so many threads; as many as there are processors. Results do not "
                                     "depend on it."),
                      QStringLiteral("N")});
}

void CliSession::answer(const QString& strText) const
{
    if (m_bQuiet || m_bJson) {
        return;
    }
    m_pProgress->finish();
    if (!writeAll(STDOUT_FILENO, orv::printable(strText).toUtf8())) {
        throw Failure(QStringLiteral("standard output cannot be written"));
    }
}

void CliSession::answerJson(const QJsonObject& object) const
{
    if (!m_bJson) {
        return;
    }
    QJsonObject whole = object;
    whole.insert(QStringLiteral("schema"), kJsonSchema);
    if (!whole.contains(QStringLiteral("answer"))) {
        whole.insert(QStringLiteral("answer"), m_strCommand);
    }
    if (!writeAll(STDOUT_FILENO, orv::printableJson(QJsonDocument(whole).toJson(QJsonDocument::Indented)))) {
        throw Failure(QStringLiteral("standard output cannot be written"));
    }
}

void CliSession::answer(const RunAnswer& answer) const
{
    this->answer(answer.text);
    answerJson(answer.json);
}

void CliSession::tellDetails(const QString& strText)
{
    m_pProgress->finish();
    writeAll(STDERR_FILENO, orv::printable(strText).toUtf8());
}

void CliSession::warn(const QString& strText)
{
    if (m_bQuiet) {
        m_withheld.append(strText);
        return;
    }
    m_told.append(strText);
    m_pProgress->finish();
    writeAll(STDERR_FILENO,
             (QLatin1String("spum: warning: ") + orv::printableLine(strText) + QLatin1Char('\n')).toUtf8());
}

void CliSession::catchInterrupts()
{
    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
    // Whoever starts a program by nohup wants it to live on.
    struct sigaction earlier = {};
    if (::sigaction(SIGHUP, nullptr, &earlier) == 0 && earlier.sa_handler != SIG_IGN) {
        ::sigaction(SIGHUP, &action, nullptr);
    }
}

void CliSession::startProgress(const QString& strMessage)
{
    m_pProgress->start(strMessage);
}

void CliSession::showProgress(const QString& strMessage, double dFraction)
{
    if (m_pWatch && strMessage != m_strStage) {
        m_pWatch->clear();
        m_strStage = strMessage;
    }
    const QString detail = m_pWatch ? m_pWatch->text() : QString();
    m_pProgress->show(detail.isEmpty() ? strMessage : strMessage + QStringLiteral(", ") + detail, dFraction);
}

void CliSession::endProgress()
{
    m_pProgress->finish();
}

bool CliSession::isInterrupted()
{
    return interrupted != 0;
}

void CliSession::setInterrupted(bool bInterrupted)
{
    interrupted = bInterrupted ? 1 : 0;
    if (!bInterrupted) {
        orv::clearAborts();
    }
}
