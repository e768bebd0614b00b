// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/PairSelection.h"

#include "services/basis/ChannelLabels.h"
#include "services/basis/Failure.h"

#include <QStringList>

#include <algorithm>

namespace {

bool matches(const QString& strPattern, const QString& strKey)
{
    return strPattern == QLatin1String("*") || strPattern.compare(strKey, Qt::CaseInsensitive) == 0;
}

// A part without a slash names the second key of any pair.
KeyPair parsePart(const QString& strPart)
{
    const QStringList halves = strPart.trimmed().split(QLatin1Char('/'));
    KeyPair pattern;
    if (halves.size() == 1) {
        pattern.first = QStringLiteral("*");
        pattern.second = halves[0].trimmed();
    } else if (halves.size() == 2) {
        pattern.first = halves[0].trimmed();
        pattern.second = halves[1].trimmed();
    }
    if (halves.size() > 2 || pattern.second.isEmpty()) {
        throw Failure(
            QStringLiteral("--select: \"%1\" is not of the form EXCITATION/EMISSION or INTERVAL/TIME").arg(strPart),
            Failure::Kind::BadRequest);
    }
    return pattern;
}

bool contains(const QList<KeyPair>& pairs, const KeyPair& pair)
{
    for (const auto& other : pairs) {
        if (other.first == pair.first && other.second == pair.second) {
            return true;
        }
    }
    return false;
}

} // namespace

QList<KeyPair> selectPairs(const QString& strSelect, const QList<KeyPair>& all)
{
    QList<KeyPair> selected;
    for (const auto& part : strSelect.split(QLatin1Char(','))) {
        const KeyPair pattern = parsePart(part);
        bool found = false;
        for (const auto& pair : all) {
            if (!matches(pattern.first, pair.first) || !matches(pattern.second, pair.second)) {
                continue;
            }
            found = true;
            if (!contains(selected, pair)) {
                selected.append(pair);
            }
        }
        if (!found) {
            const auto firstKey = [&part](const KeyPair& pair) { return matches(part.trimmed(), pair.first); };
            const bool first = std::any_of(all.begin(), all.end(), firstKey);
            throw Failure(
                QStringLiteral("--select: no image is \"%1\"; there are %2").arg(part.trimmed(), pairsText(all)),
                first ? QStringLiteral("\"%1/*\" takes all of %1").arg(part.trimmed()) : QString());
        }
    }
    return selected;
}

QString pairText(const KeyPair& pair)
{
    return pair.first.isEmpty() ? pair.second : pair.first + QLatin1Char('/') + pair.second;
}

QString pairText(const KeyPair& pair, const ChannelLabels& channels)
{
    const QString label = channels.label(pair);
    return label.isEmpty() ? pairText(pair) : QStringLiteral("%1 (%2)").arg(label, pair.second);
}

QString pairsText(const QList<KeyPair>& pairs)
{
    QStringList texts;
    for (const auto& pair : pairs) {
        texts.append(pairText(pair));
    }
    return texts.join(QLatin1String(", "));
}
