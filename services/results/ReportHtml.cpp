// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ReportHtml.h"

#include <QColor>

namespace {

// So many stand in one row on paper.
constexpr int fewMaps = 4;

// Light and dark grounds alike keep the pictures on white; paper has no shadows and no colours behind text.
const char* const styleSheet = R"(
:root { color-scheme: light; --ink: #1b1f24; --soft: #5c6670; --line: #d9dee3; --ground: #f4f6f8; --accent: #0b5c8a; }
* { box-sizing: border-box; }
body { margin: 0; background: var(--ground); color: var(--ink);
       font: 15px/1.5 "Segoe UI", "Helvetica Neue", Helvetica, Arial, "DejaVu Sans", sans-serif; }
main { max-width: 1120px; margin: 0 auto; padding: 32px 40px 48px; background: #fff; min-height: 100vh; }
h1 { font-size: 28px; line-height: 1.2; margin: 0; }
h2 { font-size: 18px; margin: 36px 0 12px; padding-bottom: 4px; border-bottom: 2px solid var(--accent); }
.subtitle { color: var(--soft); margin: 4px 0 0; overflow-wrap: anywhere; }
.note { margin: 16px 0 0; padding: 8px 14px; border-left: 4px solid var(--accent); background: var(--ground);
        white-space: pre-wrap; }
.warning { margin: 12px 0 0; padding: 8px 14px; border-left: 4px solid #c77700; background: #fff6e5; }
dl.facts { display: grid; grid-template-columns: repeat(auto-fill, minmax(190px, 1fr)); gap: 12px 20px; margin: 24px 0 0; }
dl.facts div { border-top: 1px solid var(--line); padding-top: 6px; }
dt { color: var(--soft); font-size: 13px; }
dd { margin: 0; font-size: 17px; font-weight: 600; overflow-wrap: anywhere; }
figure { margin: 0; break-inside: avoid; }
img { display: block; max-width: 100%; height: auto; }
.large img { width: auto; max-height: 720px; margin: 0 auto; }
.large { display: grid; gap: 20px; }
.grid { display: grid; grid-template-columns: repeat(auto-fill, minmax(240px, 1fr)); gap: 20px; align-items: start; }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; width: 100%; font-variant-numeric: tabular-nums; }
th, td { text-align: right; padding: 5px 10px; border-bottom: 1px solid var(--line); white-space: nowrap; }
th { color: var(--soft); font-weight: 600; font-size: 13px; }
th:first-child, td:first-child { text-align: left; padding-left: 0; }
.settings { display: grid; grid-template-columns: repeat(auto-fit, minmax(320px, 1fr)); gap: 8px 40px; align-items: start; }
.settings h3 { font-size: 14px; margin: 8px 0 4px; }
.settings .wide { grid-column: 1 / -1; overflow-x: auto; }
.settings td + td { white-space: normal; overflow-wrap: anywhere; }
.components { font-size: 14px; }
.patch { display: inline-block; width: 12px; height: 12px; margin-right: 8px; border: 1px solid #0004; vertical-align: -1px;
         print-color-adjust: exact; -webkit-print-color-adjust: exact; }
pre { margin: 0; padding: 12px 16px; background: var(--ground); border: 1px solid var(--line); border-radius: 6px;
      font: 13px/1.5 "DejaVu Sans Mono", Consolas, Menlo, monospace; white-space: pre-wrap; overflow-wrap: anywhere; }
footer { margin-top: 32px; color: var(--soft); font-size: 13px; }
@media print {
  @page { margin: 15mm; }
  body { background: #fff; font-size: 10pt; }
  main { max-width: none; padding: 0; min-height: 0; }
  h2 { break-after: avoid; margin-top: 18pt; }
  .large img { max-height: 120mm; }
  .grid { grid-template-columns: repeat(3, 1fr); gap: 4mm; }
  .few { grid-template-columns: repeat(4, 1fr); }
  .scroll { overflow: visible; }
  th, td { padding: 3px 6px; }
  tr, .settings section { break-inside: avoid; }
}
)";

QString escaped(const QString& strText)
{
    return strText.toHtmlEscaped();
}

QString imageSource(const ReportFigure& figure)
{
    const bool vector = !figure.svg.isEmpty();
    const QByteArray bytes = vector ? figure.svg : figure.png;
    return QStringLiteral("data:image/%1;base64,%2")
        .arg(vector ? QStringLiteral("svg+xml") : QStringLiteral("png"), QString::fromLatin1(bytes.toBase64()));
}

QString figureHtml(const ReportFigure& figure)
{
    // In several steps: what is put in may itself hold place marks.
    QString html = QStringLiteral("<figure><img src=\"") + imageSource(figure) + QStringLiteral("\" alt=\"") +
                   escaped(figure.title) + QLatin1Char('"');
    if (figure.size.isValid()) {
        html += QStringLiteral(" width=\"%1\" height=\"%2\"").arg(figure.size.width()).arg(figure.size.height());
    }
    return html + QStringLiteral("></figure>\n");
}

QString figuresHtml(const QString& strTitle, const QString& strClass, const QList<ReportFigure>& figures)
{
    if (figures.isEmpty()) {
        return QString();
    }
    QString html = QStringLiteral("<h2>") + escaped(strTitle) + QStringLiteral("</h2>\n<div class=\"") + strClass +
                   QStringLiteral("\">\n");
    for (const ReportFigure& figure : figures) {
        html += figureHtml(figure);
    }
    return html + QStringLiteral("</div>\n");
}

QString patchHtml(const QString& strColor)
{
    const QColor color(strColor);
    return color.isValid() ? QStringLiteral("<span class=\"patch\" style=\"background:%1\"></span>").arg(color.name())
                           : QString();
}

QString tableHtml(const ReportTable& table)
{
    QString html = QStringLiteral("<table>");
    if (!table.header.isEmpty()) {
        html += QStringLiteral("<thead><tr>");
        for (const QString& title : table.header) {
            html += QStringLiteral("<th>") + escaped(title) + QStringLiteral("</th>");
        }
        html += QStringLiteral("</tr></thead>");
    }
    html += QStringLiteral("<tbody>\n");
    for (int i = 0; i < table.rows.size(); ++i) {
        html += QStringLiteral("<tr>");
        for (int k = 0; k < table.rows[i].size(); ++k) {
            html += QStringLiteral("<td>") + (k == 0 ? patchHtml(table.colors.value(i)) : QString()) +
                    escaped(table.rows[i][k]) + QStringLiteral("</td>");
        }
        html += QStringLiteral("</tr>\n");
    }
    return html + QStringLiteral("</tbody></table>\n");
}

QString headHtml(const ReportContent& content)
{
    QString html = QStringLiteral("<h1>") + escaped(content.title) + QStringLiteral("</h1>\n<p class=\"subtitle\">") +
                   escaped(content.subtitle) + QStringLiteral("</p>\n");
    if (!content.note.isEmpty()) {
        html += QStringLiteral("<p class=\"note\">") + escaped(content.note) + QStringLiteral("</p>\n");
    }
    for (const QString& warning : content.warnings) {
        html += QStringLiteral("<p class=\"warning\">") + escaped(warning) + QStringLiteral("</p>\n");
    }
    html += QStringLiteral("<dl class=\"facts\">\n");
    for (const auto& fact : content.facts) {
        html += QStringLiteral("<div><dt>") + escaped(fact.first) + QStringLiteral("</dt><dd>") + escaped(fact.second) +
                QStringLiteral("</dd></div>\n");
    }
    return html + QStringLiteral("</dl>\n");
}

QString settingsHtml(const QList<ReportTable>& tables)
{
    if (tables.isEmpty()) {
        return QString();
    }
    QString html = QStringLiteral("<h2>Settings</h2>\n<div class=\"settings\">\n");
    for (const ReportTable& table : tables) {
        html += QStringLiteral("<section") + (table.header.isEmpty() ? QString() : QStringLiteral(" class=\"wide\"")) +
                QStringLiteral("><h3>") + escaped(table.title) + QStringLiteral("</h3>\n") + tableHtml(table) +
                QStringLiteral("</section>\n");
    }
    return html + QStringLiteral("</div>\n");
}

} // namespace

QByteArray reportHtml(const ReportContent& content)
{
    QString html = QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                                  "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>");
    html += escaped(content.title + QStringLiteral(" - ") + content.subtitle) + QStringLiteral("</title>\n<style>") +
            QLatin1String(styleSheet) + QStringLiteral("</style>\n</head>\n<body>\n<main>\n");
    html += headHtml(content);
    html += figuresHtml(QStringLiteral("Composite"), QStringLiteral("large"), content.composites);
    html +=
        figuresHtml(QStringLiteral("Maps"),
                    content.maps.size() > fewMaps ? QStringLiteral("grid") : QStringLiteral("grid few"), content.maps);
    html += figuresHtml(QStringLiteral("Spectra"), QStringLiteral("large"), content.plots);
    if (!content.components.rows.isEmpty()) {
        html += QStringLiteral("<h2>Components</h2>\n<div class=\"scroll components\">\n") +
                tableHtml(content.components) + QStringLiteral("</div>\n");
    }
    html += settingsHtml(content.tables);
    if (!content.command.isEmpty()) {
        html += QStringLiteral("<h2>Command</h2>\n<pre>") + escaped(content.command) + QStringLiteral("</pre>\n");
    }
    html += QStringLiteral("<footer>") + escaped(content.program) + QStringLiteral("</footer>\n");
    return (html + QStringLiteral("</main>\n</body>\n</html>\n")).toUtf8();
}
