// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/TextLines.h"

#include <QTextLayout>

namespace orvimage {

QStringList textLines(const QString& text, const QFont& font, double width)
{
    const QString simple = text.simplified();
    QTextLayout layout(simple, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QStringList lines;
    for (QTextLine line = layout.createLine(); line.isValid() && !simple.isEmpty(); line = layout.createLine()) {
        line.setLineWidth(width);
        lines.append(simple.mid(line.textStart(), line.textLength()).trimmed());
    }
    layout.endLayout();
    return lines;
}

} // namespace orvimage
