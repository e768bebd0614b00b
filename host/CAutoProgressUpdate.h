// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMutex>
#include <QString>
#include <QThread>
#include <QWaitCondition>

// A thread that keeps the progress display alive while a long operation runs on another.
class CAutoProgressUpdate : public QThread
{
    Q_OBJECT

public:
    explicit CAutoProgressUpdate(const QString& strText, QObject* pParent = nullptr);
    // Stops the thread and waits for it.
    ~CAutoProgressUpdate() override;

    // Safe from any thread, also while the thread is not started.
    void setStatusMessage(const QString& strMessage);
    QString statusMessage() const;
    // Ends the display and waits for the thread. A second call does nothing.
    void stop();

protected:
    void run() override;

private:
    mutable QMutex m_mutex;
    QWaitCondition m_wake;
    QString m_strMessage;
    bool m_bStop = false;
    bool m_bChanged = false;
};
