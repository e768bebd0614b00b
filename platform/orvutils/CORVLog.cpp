// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVLog.h"

#include "platform/orvutils/LogSinks.h"
#include "platform/orvutils/printable.h"

#include <QFile>
#include <QMutex>
#include <QMutexLocker>

#include <cstdio>
#include <map>
#include <memory>

namespace orv {

namespace {

struct Sinks
{
    // Recursive: a sink may remove itself.
    QRecursiveMutex m_mutex;
    ConsoleLog m_eConsole = ConsoleLog::Warnings;
    std::unique_ptr<QFile> m_pFile;
    std::map<int, std::shared_ptr<const std::function<void(const LogRecord&)>>> m_functions;
    int m_nNextId = 1;
};

// Never destroyed, so that lines logged while the process ends find it.
Sinks& sinks()
{
    static auto* const pSinks = new Sinks;
    return *pSinks;
}

thread_local bool insideSink = false;

const char* levelWord(long nLevel)
{
    switch (nLevel) {
    case CORVLOG_WARNING:
        return "WARNING";
    case CORVLOG_ERROR:
        return "ERROR";
    case CORVLOG_PROGRESS:
        return "PROGRESS";
    default:
        return "NOTE";
    }
}

bool isForConsole(ConsoleLog eConsole, long nLevel)
{
    switch (eConsole) {
    case ConsoleLog::Nothing:
        return false;
    case ConsoleLog::Errors:
        return nLevel == CORVLOG_ERROR;
    case ConsoleLog::Warnings:
        return nLevel == CORVLOG_ERROR || nLevel == CORVLOG_WARNING;
    case ConsoleLog::Everything:
        break;
    }
    return true;
}

QString oneLine(QString strText)
{
    for (auto& c : strText) {
        if (c.unicode() < 0x20 || c == QChar::LineSeparator || c == QChar::ParagraphSeparator) {
            c = QLatin1Char(' ');
        }
    }
    return strText;
}

void writeConsole(const QByteArray& line)
{
    const QByteArray shown = orv::printable(QString::fromLocal8Bit(line)).toLocal8Bit();
    std::fwrite(shown.constData(), 1, static_cast<size_t>(shown.size()), stderr);
}

void writeFile(Sinks& all, const QByteArray& line)
{
    if (!all.m_pFile || (all.m_pFile->write(line) == line.size() && all.m_pFile->flush())) {
        return;
    }
    writeConsole(QStringLiteral("%1: the log ends here: %2\n")
                     .arg(all.m_pFile->fileName(), all.m_pFile->errorString())
                     .toLocal8Bit());
    all.m_pFile.reset();
}

void callFunctions(Sinks& all, const LogRecord& record)
{
    struct Guard
    {
        Guard() { insideSink = true; }
        ~Guard() { insideSink = false; }
    } guard;
    const auto functions = all.m_functions;
    for (const auto& [id, pFunction] : functions) {
        if (all.m_functions.count(id) != 0) {
            (*pFunction)(record);
        }
    }
}

} // namespace

void setConsoleLogLevel(ConsoleLog eLevel)
{
    QMutexLocker lock(&sinks().m_mutex);
    sinks().m_eConsole = eLevel;
}

bool setLogFile(const QString& strPath, QString* pError)
{
    std::unique_ptr<QFile> pFile;
    if (!strPath.isEmpty()) {
        pFile = std::make_unique<QFile>(strPath);
        if (!pFile->open(QIODevice::WriteOnly | QIODevice::Append)) {
            if (pError) {
                *pError = QStringLiteral("%1: the log cannot be written: %2").arg(strPath, pFile->errorString());
            }
            return false;
        }
    }
    QMutexLocker lock(&sinks().m_mutex);
    sinks().m_pFile = std::move(pFile);
    return true;
}

int addLogSink(std::function<void(const LogRecord&)> sink)
{
    QMutexLocker lock(&sinks().m_mutex);
    const int id = sinks().m_nNextId++;
    sinks().m_functions[id] = std::make_shared<const std::function<void(const LogRecord&)>>(std::move(sink));
    return id;
}

void removeLogSink(int nSink)
{
    QMutexLocker lock(&sinks().m_mutex);
    sinks().m_functions.erase(nSink);
}

QString logLine(const LogRecord& record)
{
    QString line = record.m_time.toUTC().toString(Qt::ISODateWithMs) + QLatin1String("  ") +
                   QString::fromLatin1(levelWord(record.m_nLevel)).leftJustified(8) + QLatin1String("  ") +
                   oneLine(record.m_strMessage);
    if (!record.m_strExtra.isEmpty()) {
        line += QLatin1String(" | ") + oneLine(record.m_strExtra);
    }
    return line;
}

} // namespace orv

CORVLog* CORVLog::getLogObject()
{
    static CORVLog log;
    return &log;
}

// The caller's time field is the time at which its source was compiled; the line states the time of the call.
void CORVLog::log(const QString& strMessage, const QString& strExtra, int, const QString&, long nLevel, bool)
{
    if (orv::insideSink) {
        return;
    }
    auto& all = orv::sinks();
    QMutexLocker lock(&all.m_mutex);
    const orv::LogRecord record{QDateTime::currentDateTimeUtc(), nLevel, strMessage, strExtra};
    const bool console = orv::isForConsole(all.m_eConsole, nLevel);
    if (console || all.m_pFile) {
        const QString line = orv::logLine(record) + QLatin1Char('\n');
        if (console) {
            orv::writeConsole(line.toLocal8Bit());
        }
        orv::writeFile(all, line.toUtf8());
    }
    orv::callFunctions(all, record);
}
