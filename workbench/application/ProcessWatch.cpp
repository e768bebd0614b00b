// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/ProcessWatch.h"

#include "platform/orvutils/ProgressDisplay.h"

#include <QMutex>
#include <QMutexLocker>
#include <QThread>

// Outlives the watch as long as another thread may be about to tell it something.
struct ProcessWatch::Inbox
{
    QMutex m_mutex;
    ProcessWatch* m_pReceiver = nullptr;
    bool m_bPosted = false;
    orv::ProcessState m_state;
    QString m_strMessage;
    double m_dFraction = -1.0;

    // Called with the mutex locked.
    void post()
    {
        if (m_pReceiver != nullptr && !m_bPosted) {
            m_bPosted = QMetaObject::invokeMethod(m_pReceiver, "takeNews", Qt::QueuedConnection);
        }
    }
};

ProcessWatch::ProcessWatch(QObject* pParent) : QObject(pParent), m_pInbox(std::make_shared<Inbox>())
{
    m_pInbox->m_pReceiver = this;
    m_pInbox->m_state = m_state = orv::processState();
    const auto pInbox = m_pInbox;
    m_nObserver = orv::addProcessObserver([pInbox](const orv::ProcessState& state) {
        ProcessWatch* pHere = nullptr;
        {
            QMutexLocker lock(&pInbox->m_mutex);
            pInbox->m_state = state;
            if (pInbox->m_pReceiver != nullptr && pInbox->m_pReceiver->thread() == QThread::currentThread()) {
                pHere = pInbox->m_pReceiver;
            } else {
                pInbox->post();
            }
        }
        if (pHere != nullptr) {
            pHere->takeNews();
        }
    });
    orv::setProgressDisplay([pInbox](const QString& strMessage, double dFraction, double) {
        QMutexLocker lock(&pInbox->m_mutex);
        pInbox->m_strMessage = strMessage;
        pInbox->m_dFraction = dFraction;
        pInbox->post();
    });
}

ProcessWatch::~ProcessWatch()
{
    orv::removeProcessObserver(m_nObserver);
    orv::setProgressDisplay({});
    QMutexLocker lock(&m_pInbox->m_mutex);
    m_pInbox->m_pReceiver = nullptr;
}

void ProcessWatch::takeNews()
{
    {
        QMutexLocker lock(&m_pInbox->m_mutex);
        m_pInbox->m_bPosted = false;
        m_state = m_pInbox->m_state;
        m_strMessage = m_pInbox->m_strMessage;
        m_dFraction = m_pInbox->m_dFraction;
    }
    Q_EMIT changed();
}

QString ProcessWatch::message() const
{
    return m_strMessage.isEmpty() ? m_state.m_strMessage : m_strMessage;
}

double ProcessWatch::fraction() const
{
    if (m_state.m_nSteps <= 0) {
        return m_dFraction;
    }
    return qBound(0.0, static_cast<double>(m_state.m_nStep) / m_state.m_nSteps, 1.0);
}
