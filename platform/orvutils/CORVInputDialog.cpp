// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVInputDialog.h"

#include "platform/orvutils/MessageResponder.h"

QString CORVInputDialog::getItem(QWidget* pParent, const QString& strTitle, const QString& strLabel,
                                 const QStringList& items, int nCurrent, bool bEditable, bool* pOk)
{
    orv::ItemRequest request;
    request.m_pParent = pParent;
    request.m_strTitle = strTitle;
    request.m_strLabel = strLabel;
    request.m_items = items;
    request.m_nCurrent = nCurrent;
    request.m_bEditable = bEditable;
    std::optional<QString> answer;
    if (bEditable || !items.isEmpty()) {
        answer = orv::messageResponder().chooseItem(request);
    }
    const bool bAnswered = answer && (bEditable || items.contains(*answer));
    if (pOk != nullptr) {
        *pOk = bAnswered;
    }
    return bAnswered ? *answer : QString();
}
