// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ReportHtml.h"

#include "services/results/htmlPage.h"

#include <QColor>

namespace {

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
    QString html = htmlPageHead(content.title + QStringLiteral(" - ") + content.subtitle);
    html += headHtml(content);
    html += figuresHtml(QStringLiteral("Composite"), QStringLiteral("large"), content.composites);
    html += figuresHtml(QStringLiteral("Maps"), QStringLiteral("grid"), content.maps);
    html += figuresHtml(QStringLiteral("Spectra"), QStringLiteral("large"), content.plots);
    if (!content.components.rows.isEmpty()) {
        html += QStringLiteral("<h2>Components</h2>\n<div class=\"scroll components\">\n") +
                tableHtml(content.components) + QStringLiteral("</div>\n");
    }
    html += settingsHtml(content.tables);
    if (!content.command.isEmpty()) {
        html += QStringLiteral("<h2>Command</h2>\n<pre>") + escaped(content.command) + QStringLiteral("</pre>\n");
    }
    return (html + htmlPageFoot(content.program)).toUtf8();
}
