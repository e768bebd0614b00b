// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/RefinementFacts.h"

#include "services/basis/TextTable.h"

QJsonObject RefinementFacts::json() const
{
    QJsonObject json{
        {"start", "purest pixels"}, {"rounds", rounds}, {"independent", independent}, {"enclosing", enclosing}};
    if (offset) {
        json.insert(QStringLiteral("offset"), *offset);
    }
    return json;
}

QString RefinementFacts::text() const
{
    constexpr int digits = 4;
    QString text = QStringLiteral("resolved again from the purest pixels in %1 rounds").arg(rounds);
    if (independent) {
        text += QStringLiteral(", then to where the amounts depend on each other least");
    }
    if (enclosing) {
        text += QStringLiteral(", then to where all pixels are mixtures");
    }
    if (offset) {
        text +=
            QStringLiteral("; an offset of %1 counts was taken off all images").arg(TextTable::number(*offset, digits));
    }
    return text;
}
