// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/ProbeNames.h"

#include "host/CORVDatabase.h"
#include "services/basis/similarNames.h"

#include <QHash>

#include <algorithm>

namespace {

constexpr int mostNames = 3;
// Names of one probe may stand beside each other among the nearest.
constexpr int mostKeys = 9;

} // namespace

QString probeMeant(const QString& strText, const QStringList& known)
{
    const QString text = strText.trimmed();
    if (known.contains(text)) {
        return text;
    }
    const auto sameLetters = std::find_if(known.begin(), known.end(), [&text](const QString& name) {
        return name.compare(text, Qt::CaseInsensitive) == 0;
    });
    if (sameLetters != known.end()) {
        return *sameLetters;
    }
    sProbeParameters probe;
    return CORVDatabase::findProbe(text, &probe) && known.contains(probe.name) ? probe.name : QString();
}

QStringList nearestProbes(const QString& strText, const QStringList& known)
{
    QStringList keys = known;
    QHash<QString, QString> nameOf;
    for (const QString& name : known) {
        nameOf.insert(name, name);
    }
    for (const sProbeParameters& probe : CORVDatabase::probeList()) {
        for (const QString& alias : probe.aliases) {
            if (known.contains(probe.name) && !nameOf.contains(alias)) {
                keys.append(alias);
                nameOf.insert(alias, probe.name);
            }
        }
    }
    QStringList nearest;
    for (const QString& key : similarNames(strText, keys, mostKeys)) {
        if (!nearest.contains(nameOf.value(key)) && nearest.size() < mostNames) {
            nearest.append(nameOf.value(key));
        }
    }
    return nearest;
}

QString nearestProbesText(const QString& strText, const QStringList& known)
{
    const QStringList nearest = nearestProbes(strText, known);
    return nearest.isEmpty() ? QString()
                             : QStringLiteral("; did you mean \"%1\"?").arg(nearest.join(QStringLiteral("\", \"")));
}
