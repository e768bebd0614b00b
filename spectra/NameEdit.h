// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLineEdit>

// A line for a name: it says so when the user leaves it, shows a name that is too long from its start unless it is
// being edited, and has the whole name as its tool tip.
class NameEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit NameEdit(const QString& strName, QWidget* pParent = nullptr);

Q_SIGNALS:
    // The keyboard went elsewhere; `strName` is what stands in the line.
    void focusOut(QString strName);

protected:
    void focusOutEvent(QFocusEvent* pEvent) override;

private:
    void showName();
};
