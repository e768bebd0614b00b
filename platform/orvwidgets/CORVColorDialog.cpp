// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVColorDialog.h"

#include "platform/orvutils/MessageResponder.h"

QColor CORVColorDialog::getColor(const QColor& initial, QWidget* pParent, const QString& strTitle)
{
    orv::ColorRequest request;
    request.m_pParent = pParent;
    request.m_strTitle = strTitle;
    request.m_initial = initial;
    return orv::messageResponder().chooseColor(request).value_or(QColor());
}
