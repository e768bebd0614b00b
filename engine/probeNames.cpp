// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/probeNames.h"

namespace {

void appendNames(QString strName, QStringList& names)
{
    if (strName.contains("AlexaFluor") || strName.contains("AF")) {
        names.append(strName.replace("AF", "AlexaFluor ").trimmed());
        return;
    }
    if (strName.contains("QDot") || strName.contains("QD")) {
        names.append(strName.replace("QD", "QDot ").trimmed());
        return;
    }
    if (strName.contains("Ferrimark 750")) {
        names.append(strName.replace("Ferrimark 750", "Ferrin-Mark 750").trimmed());
    }
    if (strName.contains("Glowmark Pronto COX - 2") || strName.contains("COX 2")) {
        names.append(strName.replace("COX 2", "Glowmark Pronto COX - 2").trimmed());
    }
    names.append(strName.trimmed());
}

} // namespace

QStringList normalisedProbeNames(const QString& strText)
{
    QStringList names;
    const QStringList parts = strText.split(',', Qt::SkipEmptyParts);
    for (const QString& strPart : parts) {
        appendNames(strPart, names);
    }
    return names;
}
