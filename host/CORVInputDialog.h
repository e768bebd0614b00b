// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

// Questions whose answer is more than a button, answered by the responder that answers CORVMessageBox.
class CORVInputDialog
{
public:
    // One of the items, the way of QInputDialog::getItem(): `nCurrent` is the place of the one that is proposed; with
    // `bEditable` another text may be the answer. *pOk (may be null) is false, and the text empty, when the user backed
    // out, and when there is neither an item to choose nor a text to be typed.
    static QString getItem(QWidget* pParent, const QString& strTitle, const QString& strLabel, const QStringList& items,
                           int nCurrent = 0, bool bEditable = true, bool* pOk = nullptr);
};
