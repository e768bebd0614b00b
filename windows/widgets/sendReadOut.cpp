// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/widgets/sendReadOut.h"

#include <QCoreApplication>
#include <QStatusTipEvent>
#include <QWidget>

void sendReadOut(QWidget& view, const QString& strText)
{
    QStatusTipEvent tip(strText);
    QCoreApplication::sendEvent(&view, &tip);
}
