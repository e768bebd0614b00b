// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/PageProjection.h"

#include "services/importer/CsvLine.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace {

// More than any file has that can be read.
constexpr int maxPages = 100000;
constexpr int shownPages = 6;
// Shorter runs stand number by number.
constexpr int shortestRun = 3;

} // namespace

QStringList PageProjection::kindNames()
{
    return {QStringLiteral("max"), QStringLiteral("mean")};
}

bool PageProjection::kindOf(const QString& strText, Kind* pKind)
{
    const int at = kindNames().indexOf(strText.trimmed().toLower());
    if (at >= 0) {
        *pKind = at == 0 ? Kind::Max : Kind::Mean;
    }
    return at >= 0;
}

QString PageProjection::kindText() const
{
    return isNone() ? QString() : kindNames().at(kind == Kind::Max ? 0 : 1);
}

bool PageProjection::readPages(const QString& strText, QVector<int>* pPages, QString* pReason)
{
    static const QRegularExpression run(QStringLiteral("^(\\d{1,9})(?:\\.\\.(\\d{1,9}))?$"));
    pPages->clear();
    QSet<int> seen;
    for (const QString& word : strText.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QRegularExpressionMatch match = run.match(word);
        const int first = match.captured(1).toInt();
        const int last = match.captured(2).isEmpty() ? first : match.captured(2).toInt();
        if (!match.hasMatch() || first < 1 || last < first) {
            *pReason = QStringLiteral("\"%1\" is no page from 1 on and no run of them such as 1..30").arg(word);
            return false;
        }
        if (last - first >= maxPages - pPages->size()) {
            *pReason = QStringLiteral("more than %1 pages make one image").arg(maxPages);
            return false;
        }
        for (int page = first; page <= last; ++page) {
            if (seen.contains(page)) {
                *pReason = QStringLiteral("the page %1 stands twice").arg(page);
                return false;
            }
            seen.insert(page);
            pPages->append(page);
        }
    }
    return true;
}

QString PageProjection::pagesText() const
{
    QStringList words;
    for (int i = 0; i < pages.size();) {
        int last = i;
        while (last + 1 < pages.size() && pages.at(last + 1) == pages.at(last) + 1) {
            ++last;
        }
        if (last - i + 1 < shortestRun) {
            last = i;
        }
        words.append(last == i ? QString::number(pages.at(i))
                               : QStringLiteral("%1..%2").arg(pages.at(i)).arg(pages.at(last)));
        i = last + 1;
    }
    return words.join(QLatin1Char(' '));
}

QString PageProjection::text() const
{
    if (isNone()) {
        return QString();
    }
    if (pages.size() > shownPages) {
        const auto ends = std::minmax_element(pages.cbegin(), pages.cend());
        return QStringLiteral("%1 of %2 pages, %3 to %4")
            .arg(kindText())
            .arg(pages.size())
            .arg(*ends.first)
            .arg(*ends.second);
    }
    QStringList numbers;
    for (const int page : pages) {
        numbers.append(QString::number(page));
    }
    return QStringLiteral("%1 of the pages %2").arg(kindText(), numbers.join(QStringLiteral(", ")));
}

QString PageProjection::placeText(const std::optional<int>& page, const PageProjection& projection)
{
    return !projection.isNone() ? projection.text() : page ? QStringLiteral("page %1").arg(*page) : QString();
}

QString PageProjection::fieldText(const std::optional<int>& page, const PageProjection& projection)
{
    return projection.isNone() ? csvNumber(page) : projection.pagesText();
}
