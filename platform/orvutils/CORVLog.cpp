// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVLog.h"

#include "platform/orvutils/LogSinks.h"

#include <QDateTime>
#include <QFile>
#include <QMutex>
#include <QMutexLocker>

#include <cstdio>
#include <memory>

namespace {

struct Sinks
{
    QMutex mutex;
    orv::ConsoleLog console = orv::ConsoleLog::Errors;
    std::unique_ptr<QFile> file;
    std::function<void(const orv::LogLine&)> function;
};

Sinks& sinks()
{
    static Sinks instance;
    return instance;
}

QString levelWord(long nLevel)
{
    switch (nLevel) {
    case CORVLOG_NOTE:
        return QStringLiteral("NOTE");
    case CORVLOG_WARNING:
        return QStringLiteral("WARNING");
    case CORVLOG_ERROR:
        return QStringLiteral("ERROR");
    case CORVLOG_PROGRESS:
        return QStringLiteral("PROGRESS");
    default:
        return QStringLiteral("LEVEL%1").arg(nLevel);
    }
}

bool isShown(orv::ConsoleLog eConsole, long nLevel)
{
    switch (eConsole) {
    case orv::ConsoleLog::Everything:
        return true;
    case orv::ConsoleLog::Warnings:
        return nLevel == CORVLOG_WARNING || nLevel == CORVLOG_ERROR;
    case orv::ConsoleLog::Errors:
        return nLevel == CORVLOG_ERROR;
    default:
        return false;
    }
}

} // namespace

namespace orv {

void setConsoleLogLevel(ConsoleLog eLevel)
{
    QMutexLocker lock(&sinks().mutex);
    sinks().console = eLevel;
}

bool setLogFile(const QString& strPath, QString* pError)
{
    QMutexLocker lock(&sinks().mutex);
    sinks().file.reset();
    if (strPath.isEmpty())
        return true;
    auto file = std::make_unique<QFile>(strPath);
    if (!file->open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text)) {
        if (pError != nullptr)
            *pError = QStringLiteral("%1: the log file cannot be opened (%2)").arg(strPath, file->errorString());
        return false;
    }
    sinks().file = std::move(file);
    return true;
}

void setLogSink(std::function<void(const LogLine&)> sink)
{
    QMutexLocker lock(&sinks().mutex);
    sinks().function = std::move(sink);
}

QString formatLogLine(const LogLine& line)
{
    const QString now = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
    const QString extra = line.extra.isEmpty() ? QString() : QStringLiteral(" [%1]").arg(line.extra);
    return QStringLiteral("%1 %2 ").arg(now, levelWord(line.level)) + line.message + extra;
}

} // namespace orv

CORVLog* CORVLog::getLogObject()
{
    static CORVLog log;
    return &log;
}

void CORVLog::log(const QString& strMessage, const QString& strExtra, int, const QString& strTime, long nLevel, bool)
{
    const orv::LogLine line{strMessage, strExtra, strTime, nLevel};
    QMutexLocker lock(&sinks().mutex);
    const QByteArray text = orv::formatLogLine(line).toUtf8() + '\n';
    if (sinks().file) {
        sinks().file->write(text);
        sinks().file->flush();
    }
    if (isShown(sinks().console, nLevel))
        std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stderr);
    if (sinks().function)
        sinks().function(line);
}
