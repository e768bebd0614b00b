// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// The text as a tool tip shows it word for word: Qt takes one that looks like HTML for HTML, and names of files may.
// Long lines are broken.
inline QString literalToolTip(const QString& strText)
{
    return strText.isEmpty() ? QString()
                             : QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(strText.toHtmlEscaped());
}
