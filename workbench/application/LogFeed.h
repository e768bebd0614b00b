// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/LogSinks.h"

#include <QObject>
#include <QVector>

#include <memory>

// Brings the lines of the log, from whichever thread, to the thread of this object.
class LogFeed : public QObject
{
    Q_OBJECT

public:
    explicit LogFeed(QObject* pParent = nullptr);
    ~LogFeed() override;

    // What has not come yet by itself comes now.
    Q_INVOKABLE void flush();

Q_SIGNALS:
    void arrived(const QVector<orv::LogRecord>& records);

private:
    struct Inbox;

    std::shared_ptr<Inbox> m_pInbox;
    int m_nSink;
};
