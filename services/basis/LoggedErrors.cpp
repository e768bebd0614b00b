// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/LoggedErrors.h"

#include "platform/orvutils/LogSinks.h"

LoggedErrors::LoggedErrors(long nLevel)
    : m_nSink(orv::addLogSink([this, nLevel](const orv::LogRecord& record) {
          if (record.m_nLevel != nLevel) {
              return;
          }
          const QMutexLocker lock(&m_mutex);
          // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): the analyser loses the lock beside the list
          m_lines.append({record.m_strMessage, record.m_strExtra});
      }))
{
}

LoggedErrors::~LoggedErrors()
{
    orv::removeLogSink(m_nSink);
}

QStringList LoggedErrors::lines() const
{
    const QMutexLocker lock(&m_mutex);
    QStringList messages;
    for (const Line& line : m_lines) {
        messages.append(line.message);
    }
    return messages;
}

QStringList LoggedErrors::linesBeyond(const QString& strFailure) const
{
    const QMutexLocker lock(&m_mutex);
    const QString told = strFailure.simplified();
    const QString engine = QStringLiteral("SpumKyvo: ");
    QStringList beyond;
    for (const Line& line : m_lines) {
        QString text = line.message.simplified();
        if (text.startsWith(engine)) {
            text.remove(0, engine.size());
        }
        if (text.isEmpty() || told.contains(text)) {
            continue;
        }
        beyond.append(line.extra.isEmpty() ? text : text + QLatin1String(" | ") + line.extra.simplified());
    }
    beyond.removeDuplicates();
    return beyond;
}
