// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/basis/JobMonitor.h"
#include "workbench/commands/TerminalInput.h"
#include "workbench/commands/TraceWatch.h"

#include <QCommandLineParser>
#include <QJsonObject>
#include <QString>

#include <fstream>
#include <istream>
#include <memory>
#include <streambuf>

class CliProgress;
class CommandParser;
struct RunAnswer;

namespace orv {
class MessageResponder;
}

// What a running command shares with its process: where answers go, how talkative it is, progress, interruption.
//
// The command's answer goes straight to descriptor 1; std::cout belongs to the iteration trace of the algorithms and is
// pointed at the file of --trace, or nowhere, so that pipes and --json stay clean. Warnings and errors go to standard
// error. Questions of the libraries below are put to the user on a terminal; without one the default stands.
class CliSession : public JobMonitor
{
public:
    // Takes --log, --trace, --threads, --quiet, --verbose and --json from the parser; throws Failure when a file cannot
    // be opened.
    explicit CliSession(const QCommandLineParser& parser);
    ~CliSession() override;

    // The kind of its answers: the command, with what it was asked to do where there are several.
    void setCommand(const QString& strName) { m_strCommand = strName; }

    // The options that every command has, --help and --version among them, which the caller answers.
    static void declareOptions(CommandParser& parser);

    bool isQuiet() const { return m_bQuiet; }
    bool isVerbose() const { return m_bVerbose; }

    // The command's answer: text unless --quiet or --json, the object with --json.
    void answer(const QString& strText) const;
    // With "schema" and "answer", its kind: without one of its own the command's name.
    void answerJson(const QJsonObject& object) const;
    void answer(const RunAnswer& answer) const;
    // Lines on standard error ahead of the one that says that the command has failed, whatever the options.
    void tellDetails(const QString& strText);
    // A line on standard error: warnings unless --quiet.
    void warn(const QString& strText) override;
    // What --quiet has kept back: it may tell why a command failed.
    const QStringList& withheldWarnings() const { return m_withheld; }
    const QStringList& toldWarnings() const { return m_told; }

    void startProgress(const QString& strMessage) override;
    void showProgress(const QString& strMessage, double dFraction) override;
    void endProgress() override;
    bool isStopRequested() const override { return isInterrupted(); }

    // Installs the handler of SIGINT, SIGTERM and, unless it is ignored, SIGHUP: the first signal asks running work to
    // abort, the second ends the process.
    static void catchInterrupts();
    static bool isInterrupted();
    // For tests.
    static void setInterrupted(bool bInterrupted);

private:
    TerminalInput m_typed{isInterrupted};
    std::istream m_input;
    bool m_bJson = false;
    bool m_bQuiet = false;
    bool m_bVerbose = false;
    QString m_strCommand;
    QStringList m_withheld;
    QStringList m_told;
    std::ofstream m_trace;
    std::streambuf* m_pOldBuffer = nullptr;
    std::unique_ptr<TraceWatch> m_pWatch; // where a progress line is shown
    QString m_strStage;                   // that the line tells of
    std::unique_ptr<CliProgress> m_pProgress;
    std::unique_ptr<orv::MessageResponder> m_pEarlierResponder;
};
