// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/probeFamilies.h"

#include <QHash>
#include <QRegularExpression>

namespace orv {

QString probeFamily(const QString& strName)
{
    // A point between digits belongs to the number. The head is as long as it can be, so the number is the last one.
    static const QRegularExpression number(QStringLiteral(R"(^(.*?)[\s_-]*\d+(?:\.\d+)*[^\d]*$)"));
    const QString head = number.match(strName).captured(1).trimmed();
    return head.isEmpty() ? strName : head;
}

QVector<ProbeFamily> probeFamilies(const QStringList& names)
{
    QVector<ProbeFamily> families;
    QHash<QString, int> places;
    for (int i = 0; i < names.size(); ++i) {
        const QString family = probeFamily(names[i]);
        if (!places.contains(family)) {
            places.insert(family, families.size());
            families.append({family, {}});
        }
        families[places.value(family)].m_entries.append(i);
    }
    return families;
}

} // namespace orv
