// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/BatchPage.h"

#include "services/basis/TextTable.h"
#include "services/batch/BatchPlaces.h"
#include "services/batch/resultOfFolder.h"
#include "services/results/htmlPage.h"

#include <QBuffer>
#include <QColor>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QUrl>

#include <algorithm>
#include <cmath>

namespace {

// Twice what is shown, for fine screens and paper.
const QSize thumbnailSize(320, 240);
constexpr int shownHeight = 96;
constexpr int jpegQuality = 75;

const char* const pageStyle = R"(
main { max-width: none; }
#batch { margin-top: 24px; font-size: 14px; }
#batch th { position: sticky; top: 0; background: #fff; vertical-align: bottom; padding: 0; }
#batch th button { all: unset; cursor: pointer; display: block; width: 100%; box-sizing: border-box; padding: 8px 10px; }
#batch th button:focus-visible { outline: 2px solid var(--accent); outline-offset: -2px; }
#batch th[aria-sort="ascending"] button::after { content: " \25B2"; }
#batch th[aria-sort="descending"] button::after { content: " \25BC"; }
#batch td { vertical-align: top; }
#batch .text { text-align: left; }
#batch td.text { white-space: normal; overflow-wrap: break-word; }
#batch td.components { white-space: nowrap; }
#batch .words { min-width: 260px; overflow-wrap: anywhere; }
#batch img { height: 96px; width: auto; max-width: none; }
#batch ul { margin: 0; padding: 0; list-style: none; }
#batch .share { color: var(--soft); }
#batch .failed { border-left: 4px solid #b3261e; }
#batch .warned { border-left: 4px solid #c77700; }
#batch .well { border-left: 4px solid transparent; }
@media print {
  @page { size: landscape; margin: 10mm; }
  #batch { font-size: 8pt; }
  #batch thead { display: table-header-group; break-inside: avoid; }
  #batch th { position: static; }
  #batch th button { padding: 3px 6px; }
  #batch img { height: 20mm; }
  #batch .words { min-width: 0; }
}
)";

// Rows are moved, not made anew; empty cells stay behind, whichever way one sorts.
const char* const script = R"(<script>
(function () {
  var table = document.getElementById('batch'), body = table.tBodies[0];
  function key(row, column) {
    var cell = row.cells[column];
    return cell.hasAttribute('data-v') ? cell.getAttribute('data-v') : cell.textContent;
  }
  table.tHead.addEventListener('click', function (event) {
    var head = event.target.closest('th');
    if (!head || !head.querySelector('button')) { return; }
    var column = head.cellIndex, numbers = head.hasAttribute('data-n');
    var falling = head.getAttribute('aria-sort') === 'ascending';
    var rows = Array.prototype.map.call(body.rows, function (row) { return { row: row, key: key(row, column) }; });
    rows.sort(function (a, b) {
      if (a.key === '' || b.key === '') { return (a.key === '') - (b.key === ''); }
      var way = numbers ? a.key - b.key : a.key.localeCompare(b.key, undefined, { numeric: true });
      return falling ? -way : way;
    });
    var all = document.createDocumentFragment();
    rows.forEach(function (entry) { all.appendChild(entry.row); });
    body.appendChild(all);
    Array.prototype.forEach.call(table.tHead.rows[0].cells, function (cell) { cell.removeAttribute('aria-sort'); });
    head.setAttribute('aria-sort', falling ? 'descending' : 'ascending');
  });
})();
</script>
)";

QString escaped(const QString& strText)
{
    return strText.toHtmlEscaped();
}

QString numberOf(double dValue, int nDigits)
{
    return std::isfinite(dValue) ? TextTable::number(dValue, nDigits) : QString();
}

QString numberCell(double dValue, int nDigits)
{
    const QString full = std::isfinite(dValue) ? QString::number(dValue, 'g', 12) : QString();
    return QStringLiteral("<td data-v=\"") + full + QStringLiteral("\">") + numberOf(dValue, nDigits) +
           QStringLiteral("</td>");
}

double valueOf(const QJsonObject& json, const char* pKey)
{
    return json.value(QLatin1String(pKey)).toDouble(std::nan(""));
}

QString thumbnailCell(const QString& strResults, const BatchEntry& entry)
{
    const QImage picture = thumbnailOfFolder(strResults, entry.summary, thumbnailSize);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (picture.isNull() || !buffer.open(QIODevice::WriteOnly) ||
        !picture.convertToFormat(QImage::Format_RGB32).save(&buffer, "JPG", jpegQuality)) {
        return QStringLiteral("<td></td>");
    }
    const int width = std::max(1, picture.width() * shownHeight / std::max(1, picture.height()));
    return QStringLiteral("<td><img alt=\"composite\" decoding=\"async\" width=\"%1\" height=\"%2\" "
                          "src=\"data:image/jpeg;base64,")
               .arg(width)
               .arg(shownHeight) +
           QString::fromLatin1(bytes.toBase64()) + QStringLiteral("\"></td>");
}

// The name leads to the sequence's own report, where there is one.
QString nameCell(const QString& strResults, const BatchEntry& entry)
{
    const QString name = escaped(entry.job.name);
    const bool report =
        entry.state == BatchEntry::State::Done && QFileInfo::exists(strResults + QStringLiteral("/report.html"));
    const QString target =
        QString::fromLatin1(QUrl::toPercentEncoding(entry.job.name)) + QStringLiteral("/report.html");
    return QStringLiteral("<td class=\"text\" title=\"") + escaped(entry.job.sequence) +
           QStringLiteral("\" data-v=\"") + name + QStringLiteral("\">") +
           (report ? QStringLiteral("<a href=\"") + target + QStringLiteral("\">") + name + QStringLiteral("</a>")
                   : name) +
           QStringLiteral("</td>");
}

QString stateCell(const BatchEntry& entry, int nRank)
{
    const bool done = entry.state == BatchEntry::State::Done;
    const bool warned = done && !entry.warnings.isEmpty();
    const QString look = warned ? QStringLiteral("warned") : QStringLiteral("well");
    return QStringLiteral("<td class=\"text %1\" data-v=\"%2\">%3</td>")
        .arg(done ? look : QStringLiteral("failed"))
        .arg(nRank)
        .arg(warned ? QStringLiteral("%1 (warnings: %2)").arg(entry.stateName()).arg(entry.warnings.size())
                    : entry.stateName());
}

QString componentsCell(const BatchEntry& entry)
{
    QString html = QStringLiteral("<td class=\"text components\"><ul>");
    for (const auto& value : entry.summary.value(QStringLiteral("components")).toArray()) {
        const QJsonObject component = value.toObject();
        const QColor color(component.value(QStringLiteral("color")).toString());
        html += QStringLiteral("<li>");
        if (color.isValid()) {
            html += QStringLiteral("<span class=\"patch\" style=\"background:%1\"></span>").arg(color.name());
        }
        html += escaped(component.value(QStringLiteral("name")).toString()) +
                QStringLiteral(" <span class=\"share\">") + numberOf(100.0 * valueOf(component, "share"), 3) +
                QStringLiteral(" %</span></li>");
    }
    return html + QStringLiteral("</ul></td>");
}

QString wordsCell(const BatchEntry& entry)
{
    QString html = QStringLiteral("<td class=\"text words\"><ul>");
    const QStringList lines = entry.message.isEmpty() ? entry.warnings : QStringList(entry.message) + entry.warnings;
    for (const QString& line : lines) {
        html += QStringLiteral("<li>") + escaped(line) + QStringLiteral("</li>");
    }
    return html + QStringLiteral("</ul></td>");
}

QString rowHtml(const BatchPlaces& places, const BatchEntry& entry, int nRank)
{
    const QString results = places.results(entry.job.name);
    const double seconds = entry.seconds > 0.0 ? entry.seconds : std::nan("");
    return QStringLiteral("<tr>") + stateCell(entry, nRank) + thumbnailCell(results, entry) + nameCell(results, entry) +
           QStringLiteral("<td class=\"text\">") + escaped(entry.job.group) + QStringLiteral("</td>") +
           componentsCell(entry) + numberCell(100.0 * entry.residual(), 4) +
           numberCell(100.0 * valueOf(entry.summary, "explainedVariance"), 6) +
           numberCell(valueOf(entry.summary, "componentsAboveNoise"), 3) +
           numberCell(valueOf(entry.summary, "iterations"), 6) + numberCell(seconds, 3) + wordsCell(entry) +
           QStringLiteral("</tr>\n");
}

QString headHtml(const QList<BatchEntry>& entries)
{
    const auto count = [&entries](const auto& holds) {
        return static_cast<int>(std::count_if(entries.begin(), entries.end(), holds));
    };
    const int done = count([](const BatchEntry& entry) { return entry.state == BatchEntry::State::Done; });
    const int warned = count(
        [](const BatchEntry& entry) { return entry.state == BatchEntry::State::Done && !entry.warnings.isEmpty(); });
    QString html = QStringLiteral("<h1>Unmixed sequences</h1>\n<p class=\"subtitle\">");
    html += QStringLiteral("%1 in all, %2 done, %3 of them with warnings, %4 without a result")
                .arg(entries.size())
                .arg(done)
                .arg(warned)
                .arg(entries.size() - done);
    return html + QStringLiteral("</p>\n");
}

// Behind the table: it may name hundreds of sequences.
QString commandHtml(const BatchPageFrame& frame)
{
    return frame.command.isEmpty()
               ? QString()
               : QStringLiteral("<h2>Command</h2>\n<pre>") + escaped(frame.command) + QStringLiteral("</pre>\n");
}

QString tableHead()
{
    struct Column
    {
        const char* title;
        const char* attributes;
    };
    static const Column columns[] = {{"State", " data-n class=\"text\" aria-sort=\"ascending\""},
                                     {nullptr, ""},
                                     {"Sequence", " class=\"text\""},
                                     {"Group", " class=\"text\""},
                                     {"Components, share of the signal", " class=\"text\""},
                                     {"Residual, %", " data-n"},
                                     {"Variance explained, %", " data-n"},
                                     {"Above noise", " data-n"},
                                     {"Iterations", " data-n"},
                                     {"Time, s", " data-n"},
                                     {"Message, warnings", " class=\"text\""}};
    QString html = QStringLiteral("<table id=\"batch\"><thead><tr>");
    for (const Column& column : columns) {
        html += QStringLiteral("<th") + QLatin1String(column.attributes) + QLatin1Char('>');
        if (column.title != nullptr) {
            html +=
                QStringLiteral("<button type=\"button\">") + QLatin1String(column.title) + QStringLiteral("</button>");
        }
        html += QStringLiteral("</th>");
    }
    return html + QStringLiteral("</tr></thead><tbody>\n");
}

} // namespace

void writeBatchPage(const BatchPlaces& places, const QList<BatchEntry>& entries, const BatchPageFrame& frame,
                    const std::function<void(const QByteArray& bytes)>& put)
{
    put(htmlPageHead(QStringLiteral("Unmixed sequences"), QLatin1String(pageStyle)).toUtf8());
    put((headHtml(entries) + tableHead()).toUtf8());
    const QVector<int> order = orderOfNeed(entries);
    for (int i = 0; i < order.size(); ++i) {
        put(rowHtml(places, entries[order[i]], i).toUtf8());
    }
    put((QStringLiteral("</tbody></table>\n") + commandHtml(frame) + QLatin1String(script) +
         htmlPageFoot(frame.program))
            .toUtf8());
}
