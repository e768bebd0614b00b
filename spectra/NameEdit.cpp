// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/NameEdit.h"

#include "spectra/plainToolTip.h"

#include <QFocusEvent>

NameEdit::NameEdit(const QString& strName, QWidget* pParent) : QLineEdit(strName, pParent)
{
    showName();
    connect(this, &QLineEdit::textChanged, this, [this] { showName(); });
}

void NameEdit::focusOutEvent(QFocusEvent* pEvent)
{
    QLineEdit::focusOutEvent(pEvent);
    // The line's own menu and another window take the keyboard for a while only.
    if (pEvent->reason() != Qt::PopupFocusReason) {
        setCursorPosition(0);
        Q_EMIT focusOut(text());
    }
}

void NameEdit::showName()
{
    setToolTip(plainToolTip(text()));
    if (!isModified()) {
        setCursorPosition(0);
    }
}
