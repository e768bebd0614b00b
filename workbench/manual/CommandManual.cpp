// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/manual/CommandManual.h"

QString termOf(const CommandManual::Entry& entry)
{
    if (entry.names.isEmpty()) {
        return entry.value;
    }
    QStringList names;
    for (const QString& name : entry.names) {
        names.append(QLatin1String(name.size() == 1 ? "-" : "--") + name);
    }
    const QString term = names.join(QStringLiteral(", "));
    return entry.value.isEmpty() ? term : QStringLiteral("%1 <%2>").arg(term, entry.value);
}
