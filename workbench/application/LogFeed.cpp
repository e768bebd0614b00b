// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/LogFeed.h"

#include <QMutex>
#include <QMutexLocker>

struct LogFeed::Inbox
{
    QMutex m_mutex;
    LogFeed* m_pReceiver = nullptr;
    QVector<orv::LogRecord> m_records;
};

LogFeed::LogFeed(QObject* pParent) : QObject(pParent), m_pInbox(std::make_shared<Inbox>())
{
    m_pInbox->m_pReceiver = this;
    const auto pInbox = m_pInbox;
    m_nSink = orv::addLogSink([pInbox](const orv::LogRecord& record) {
        QMutexLocker lock(&pInbox->m_mutex);
        if (pInbox->m_pReceiver == nullptr) {
            return;
        }
        if (pInbox->m_records.isEmpty()) {
            QMetaObject::invokeMethod(pInbox->m_pReceiver, "flush", Qt::QueuedConnection);
        }
        pInbox->m_records.append(record);
    });
}

LogFeed::~LogFeed()
{
    orv::removeLogSink(m_nSink);
    QMutexLocker lock(&m_pInbox->m_mutex);
    m_pInbox->m_pReceiver = nullptr;
}

void LogFeed::flush()
{
    QVector<orv::LogRecord> records;
    {
        QMutexLocker lock(&m_pInbox->m_mutex);
        records.swap(m_pInbox->m_records);
    }
    if (!records.isEmpty()) {
        Q_EMIT arrived(records);
    }
}
