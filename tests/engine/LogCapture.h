// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/LogSinks.h"

#include <QMutex>
#include <QMutexLocker>

#include <algorithm>
#include <string>
#include <vector>

// Every line that is logged while it lives. One at a time.
class LogCapture
{
public:
    LogCapture()
    {
        orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
        m_nSink = orv::addLogSink([this](const orv::LogRecord& line) {
            QMutexLocker lock(&m_mutex);
            m_lines.push_back(line);
        });
    }
    ~LogCapture()
    {
        orv::removeLogSink(m_nSink);
        orv::setConsoleLogLevel(orv::ConsoleLog::Warnings);
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // How often exactly this message came at this level.
    long count(const QString& strMessage, long nLevel) const
    {
        return countIf(
            [&](const orv::LogRecord& line) { return line.m_strMessage == strMessage && line.m_nLevel == nLevel; });
    }
    bool has(const QString& strMessage, long nLevel) const { return count(strMessage, nLevel) > 0; }
    bool mentions(const QString& strPart) const
    {
        return countIf([&](const orv::LogRecord& line) { return line.m_strMessage.contains(strPart); }) > 0;
    }
    // The messages above the level of notes, in order, a line each.
    std::string reports() const
    {
        QMutexLocker lock(&m_mutex);
        QString strText;
        for (const orv::LogRecord& line : m_lines) {
            strText += line.m_nLevel > 1 ? line.m_strMessage + "\n" : QString();
        }
        return strText.toStdString();
    }
    std::vector<orv::LogRecord> lines() const
    {
        QMutexLocker lock(&m_mutex);
        return m_lines;
    }

private:
    template <class Holds>
    long countIf(Holds holds) const
    {
        QMutexLocker lock(&m_mutex);
        return static_cast<long>(std::count_if(m_lines.begin(), m_lines.end(), holds));
    }

    mutable QMutex m_mutex;
    std::vector<orv::LogRecord> m_lines;
    int m_nSink = 0;
};
