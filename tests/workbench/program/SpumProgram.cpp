// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/program/SpumProgram.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonDocument>
#include <QProcess>
#include <QProcessEnvironment>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int timeout = 120000; // ms

bool stagingPresent(const QString& strFolder)
{
    return !QDir(strFolder)
                .entryList({QStringLiteral(".*")}, QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot)
                .isEmpty();
}

// The side of a new terminal on which its user sits.
int openTerminal()
{
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    EXPECT_TRUE(master >= 0 && ::grantpt(master) == 0 && ::unlockpt(master) == 0) << "there is no terminal to be had";
    return master;
}

} // namespace

QJsonObject ProgramResult::json() const
{
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(out, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << qPrintable(error.errorString()) << "\n" << out.constData();
    EXPECT_TRUE(document.isObject()) << out.constData();
    return document.object();
}

QString SpumProgram::path()
{
    return QStringLiteral(ORV_BINARY_DIR "/bin/spum");
}

void SpumProgram::setFaults(const QString& strRules, const QString& strBelow, const QString& strLog)
{
    m_faults.clear();
    if (strRules.isEmpty() && strLog.isEmpty()) {
        return;
    }
    m_faults.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(ORV_BINARY_DIR "/lib/libfaults.so"));
    m_faults.insert(QStringLiteral("FAULTS"), strRules);
    m_faults.insert(QStringLiteral("FAULTS_BELOW"), QFileInfo(strBelow).canonicalFilePath());
    m_faults.insert(QStringLiteral("FAULTS_LOG"), strLog);
    // The sanitizer of a build under one wants to stand first; behind this library it does as well.
    m_faults.insert(QStringLiteral("ASAN_OPTIONS"),
                    qEnvironmentVariable("ASAN_OPTIONS") + QStringLiteral(":verify_asan_link_order=0"));
}

void SpumProgram::prepare(QProcess& process, const QStringList& arguments) const
{
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("PATH"), QStringLiteral("/usr/bin:/bin"));
    environment.insert(QStringLiteral("HOME"), m_strHome);
    environment.insert(QStringLiteral("XDG_DATA_HOME"), m_strHome + QStringLiteral("/data"));
    // The test program's own folder of temporary files, and what a build under a sanitizer is told.
    for (const char* name : {"TMPDIR", "ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS", "LSAN_OPTIONS"}) {
        if (qEnvironmentVariableIsSet(name)) {
            environment.insert(QLatin1String(name), qEnvironmentVariable(name));
        }
    }
    environment.insert(m_faults);
    environment.insert(m_variables);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_strFolder);
    process.setProgram(path());
    process.setArguments(arguments);
    if (m_nMegabytes > 0) {
        const QString limited = QStringLiteral("ulimit -v %1; exec \"$0\" \"$@\"").arg(m_nMegabytes * 1024);
        process.setProgram(QStringLiteral("/bin/sh"));
        process.setArguments(QStringList{QStringLiteral("-c"), limited, path()} + arguments);
    }
    process.setStandardInputFile(QProcess::nullDevice());
}

ProgramResult SpumProgram::finish(QProcess& process)
{
    ProgramResult result;
    const bool ended = process.state() == QProcess::NotRunning || process.waitForFinished(timeout);
    if (!ended) {
        process.kill();
        process.waitForFinished();
    }
    EXPECT_TRUE(ended) << "the program did not end";
    if (ended) {
        (process.exitStatus() == QProcess::NormalExit ? result.status : result.signal) = process.exitCode();
    }
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

ProgramResult SpumProgram::run(const QStringList& arguments) const
{
    QProcess process;
    prepare(process, arguments);
    process.start();
    return finish(process);
}

ProgramResult SpumProgram::runAndInterrupt(const QStringList& arguments, const QString& strWatched, int nMilliseconds,
                                           int nSignal) const
{
    return runAndInterrupt(arguments, strWatched, nMilliseconds, std::vector<int>{nSignal});
}

ProgramResult SpumProgram::runAndInterrupt(const QStringList& arguments, const QString& strWatched, int nMilliseconds,
                                           const std::vector<int>& signalNumbers) const
{
    QProcess process;
    prepare(process, arguments);
    process.start();
    QElapsedTimer timer;
    timer.start();
    while (!stagingPresent(strWatched) && !process.waitForFinished(1) && timer.elapsed() < timeout) {
        continue;
    }
    QThread::msleep(static_cast<unsigned long>(nMilliseconds));
    if (process.state() == QProcess::Running) {
        const auto id = static_cast<pid_t>(process.processId());
        // Stopped meanwhile: it cannot come to its end between one and the next.
        ::kill(id, SIGSTOP);
        for (const int signalNumber : signalNumbers) {
            ::kill(id, signalNumber);
        }
        ::kill(id, SIGCONT);
    }
    return finish(process);
}

ProgramResult SpumProgram::runAndSignal(const QStringList& arguments, const std::function<bool()>& isTime,
                                        int nSignal) const
{
    QProcess process;
    startInBackground(process, arguments);
    QElapsedTimer timer;
    timer.start();
    while (!isTime() && !process.waitForFinished(1) && timer.elapsed() < timeout) {
        continue;
    }
    if (process.state() == QProcess::Running) {
        ::kill(static_cast<pid_t>(process.processId()), nSignal);
    }
    return finish(process);
}

void SpumProgram::startInBackground(QProcess& process, const QStringList& arguments) const
{
    prepare(process, arguments);
    process.start();
}

ProgramResult SpumProgram::runAtQuestion(const QStringList& arguments, const QByteArray& typed, int nSignal) const
{
    const int master = openTerminal();
    QProcess process;
    prepare(process, arguments);
    process.setStandardInputFile(QString::fromLocal8Bit(::ptsname(master)));
    process.setReadChannel(QProcess::StandardError);
    process.start();
    QByteArray shown;
    while (!shown.endsWith("? ") && process.waitForReadyRead(timeout)) {
        shown += process.readAllStandardError();
    }
    EXPECT_TRUE(shown.endsWith("? ")) << shown.constData();
    if (typed.isEmpty()) {
        ::kill(static_cast<pid_t>(process.processId()), nSignal);
    } else {
        EXPECT_EQ(::write(master, typed.constData(), static_cast<std::size_t>(typed.size())), typed.size());
    }
    ProgramResult result = finish(process);
    ::close(master);
    result.err = shown + result.err;
    return result;
}

ProgramResult SpumProgram::runOnTerminal(const QStringList& arguments) const
{
    const int master = openTerminal();
    QProcess process;
    prepare(process, arguments);
    process.setStandardErrorFile(QString::fromLocal8Bit(::ptsname(master)));
    process.start();
    QByteArray shown;
    QElapsedTimer timer;
    timer.start();
    const auto drain = [&] {
        char buffer[4096];
        for (ssize_t n = ::read(master, buffer, sizeof buffer); n > 0; n = ::read(master, buffer, sizeof buffer)) {
            shown.append(buffer, static_cast<int>(n));
        }
    };
    while (!process.waitForFinished(10) && timer.elapsed() < timeout) {
        drain();
    }
    drain();
    ProgramResult result = finish(process);
    ::close(master);
    result.err = shown;
    return result;
}
