// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/RunLock.h"

#include <QApplication>
#include <QWidget>

RunLock::RunLock(QObject* pParent) : QObject(pParent)
{
    connect(qApp, &QApplication::focusChanged, this, &RunLock::noteFocus);
    m_forget.setSingleShot(true);
    connect(&m_forget, &QTimer::timeout, this, [this] { m_pDisabledFocus.clear(); });
}

void RunLock::addWidget(QWidget* pWidget)
{
    m_widgets.append(pWidget);
}

void RunLock::noteFocus(QWidget* pOld, QWidget*)
{
    if (m_bLocked || pOld == nullptr || pOld->isEnabled() || m_pDisabledFocus) {
        return;
    }
    m_pDisabledFocus = pOld;
    // A lock that belongs to it comes before the next event.
    m_forget.start(0);
}

void RunLock::lock()
{
    if (m_bLocked) {
        return;
    }
    m_pFocus = m_pDisabledFocus ? m_pDisabledFocus.data() : QApplication::focusWidget();
    m_bLocked = true;
    for (const auto& pWidget : qAsConst(m_widgets)) {
        if (pWidget && pWidget->isEnabled()) {
            pWidget->setEnabled(false);
            m_disabled.append(pWidget);
        }
    }
    Q_EMIT changed(true);
}

void RunLock::hold()
{
    m_bHeld = true;
    lock();
}

void RunLock::release()
{
    m_bHeld = false;
    unlock();
}

void RunLock::unlock()
{
    if (!m_bLocked || m_bHeld) {
        return;
    }
    m_bLocked = false;
    const auto disabled = m_disabled;
    m_disabled.clear();
    for (const auto& pWidget : disabled) {
        if (pWidget) {
            pWidget->setEnabled(true);
        }
    }
    restoreFocus();
    Q_EMIT changed(false);
}

// A widget that went or was hidden meanwhile, such as a window whose work was the start of the run, gets no focus.
void RunLock::restoreFocus()
{
    const QPointer<QWidget> pFocus = m_pFocus;
    m_pFocus.clear();
    if (pFocus && pFocus->isVisible() && pFocus->isEnabled()) {
        pFocus->setFocus(Qt::OtherFocusReason);
    } else if (QApplication::focusWidget() == nullptr) {
        Q_EMIT focusMissing();
    }
}
