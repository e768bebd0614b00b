// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/similarNames.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace {

constexpr int mostMeant = 3;
// A beginning of fewer letters may be that of anything.
constexpr int shortestBeginning = 3;

int editDistance(const QString& strA, const QString& strB)
{
    const auto n = static_cast<std::size_t>(strB.size());
    std::vector<int> before(n + 1); // of two letters less
    std::vector<int> last(n + 1);
    std::vector<int> row(n + 1);
    std::iota(last.begin(), last.end(), 0);
    for (int i = 0; i < strA.size(); ++i) {
        row[0] = i + 1;
        for (std::size_t j = 0; j < n; ++j) {
            const auto at = static_cast<int>(j);
            const bool same = strA.at(i) == strB.at(at);
            row[j + 1] = std::min({last[j] + (same ? 0 : 1), last[j + 1] + 1, row[j] + 1});
            if (i > 0 && at > 0 && strA.at(i) == strB.at(at - 1) && strA.at(i - 1) == strB.at(at)) {
                row[j + 1] = std::min(row[j + 1], before[j - 1] + 1);
            }
        }
        before.swap(last);
        last.swap(row);
    }
    return last[n];
}

QString comparable(const QString& strText)
{
    QString text;
    for (const QChar c : strText.toLower()) {
        if (c.isLetterOrNumber()) {
            text.append(c);
        }
    }
    return text;
}

} // namespace

QStringList similarNames(const QString& strText, const QStringList& names, int nMost)
{
    const QString wanted = comparable(strText);
    std::vector<std::pair<int, QString>> sorted;
    for (const QString& name : names) {
        sorted.emplace_back(editDistance(wanted, comparable(name)), name);
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    QStringList nearest;
    for (std::size_t i = 0; i < sorted.size() && nearest.size() < nMost; ++i) {
        nearest.append(sorted[i].second);
    }
    return nearest;
}

QStringList meantNames(const QString& strText, const QStringList& names)
{
    const QString wanted = comparable(strText);
    QStringList meant;
    for (const QString& name : names) {
        const QString candidate = comparable(name);
        const bool begins = wanted.size() >= shortestBeginning && candidate.startsWith(wanted);
        if (begins || 3 * editDistance(wanted, candidate) <= std::max(3, wanted.size())) {
            meant.append(name);
        }
    }
    return similarNames(strText, meant, mostMeant);
}

QString meantNamesText(const QStringList& meant)
{
    if (meant.isEmpty()) {
        return QStringLiteral(".");
    }
    const QString before = QStringList(meant.mid(0, meant.size() - 1)).join(QStringLiteral(", "));
    return QStringLiteral("; did you mean %1%2?")
        .arg(before.isEmpty() ? QString() : before + QStringLiteral(" or "), meant.last());
}
