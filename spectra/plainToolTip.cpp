// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/plainToolTip.h"

#include <QTextDocument>

QString plainToolTip(const QString& strName)
{
    return Qt::mightBeRichText(strName) ? QStringLiteral("<span>%1</span>").arg(strName.toHtmlEscaped()) : strName;
}
