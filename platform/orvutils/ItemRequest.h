// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace orv {

// A question that is answered with one of several texts.
struct ItemRequest
{
    QWidget* m_pParent = nullptr; // may be null; borrowed for the time of the question
    QString m_strTitle;
    QString m_strLabel;
    QStringList m_items;
    int m_nCurrent = 0;       // place of the item that is proposed; any other number proposes none
    bool m_bEditable = false; // another text than the items is an answer too
};

} // namespace orv
