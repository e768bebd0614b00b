// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/NameEdit.h"

#include <QFocusEvent>
#include <QTextDocument>

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
    // A name that looks like markup is shown as it stands.
    const QString name = text();
    setToolTip(Qt::mightBeRichText(name) ? QStringLiteral("<span>%1</span>").arg(name.toHtmlEscaped()) : name);
    if (!isModified()) {
        setCursorPosition(0);
    }
}
