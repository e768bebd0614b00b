// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/manual/helpText.h"

#include "workbench/manual/CommandManual.h"

#include <algorithm>

namespace {

constexpr int leastColumns = 40;
constexpr int termIndent = 2;
constexpr int termGap = 2;
// A longer term has its text on the lines below it.
constexpr int widestTerm = 24;

using Terms = QList<QPair<QString, QString>>;

QString blanks(int nCount)
{
    return {nCount, QLatin1Char(' ')};
}

Terms termsOf(const QList<CommandManual::Entry>& entries)
{
    Terms terms;
    for (const CommandManual::Entry& entry : entries) {
        terms.append({termOf(entry), entry.text});
    }
    return terms;
}

Terms termsOf(const QList<CommandManual>& commands)
{
    Terms terms;
    for (const CommandManual& command : commands) {
        terms.append({command.name.section(QLatin1Char(' '), 1), command.summary});
    }
    return terms;
}

QString section(const QString& strTitle, const Terms& terms, int nColumns)
{
    if (terms.isEmpty()) {
        return QString();
    }
    int width = 0;
    for (const auto& term : terms) {
        width = term.first.size() <= widestTerm ? std::max(width, term.first.size()) : width;
    }
    const int indent = termIndent + width + termGap;
    QString text = QStringLiteral("\n%1:\n").arg(strTitle);
    for (const auto& term : terms) {
        const bool beside = term.first.size() <= width;
        text += blanks(termIndent) +
                (beside ? term.first.leftJustified(width + termGap) : term.first + QLatin1Char('\n') + blanks(indent));
        text += wrappedText(term.second, nColumns, indent) + QLatin1Char('\n');
    }
    return text;
}

QString examplesText(const QList<CommandManual::Example>& examples, int nColumns)
{
    if (examples.isEmpty()) {
        return QString();
    }
    QString text = QStringLiteral("\nExamples:\n");
    for (const CommandManual::Example& example : examples) {
        constexpr int textIndent = 6;
        text += blanks(termIndent) + example.command + QLatin1Char('\n') + blanks(textIndent) +
                wrappedText(example.text, nColumns, textIndent) + QLatin1Char('\n');
    }
    return text;
}

} // namespace

QString wrappedText(const QString& strText, int nColumns, int nIndent)
{
    QString text;
    int column = nIndent;
    for (const QString& word : strText.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        if (text.isEmpty()) {
            column += word.size();
        } else if (column + 1 + word.size() <= nColumns) {
            text += QLatin1Char(' ');
            column += 1 + word.size();
        } else {
            text += QLatin1Char('\n') + blanks(nIndent);
            column = nIndent + word.size();
        }
        text += word;
    }
    return text;
}

QString helpText(const CommandManual& manual, int nColumns)
{
    const int columns = std::max(nColumns, leastColumns);
    QString text =
        QStringLiteral("Usage: %1 %2\n%3\n").arg(manual.name, manual.usage, wrappedText(manual.summary, columns, 0));
    text += section(QStringLiteral("Commands"), termsOf(manual.commands), columns);
    text += section(QStringLiteral("Arguments"), termsOf(manual.arguments), columns);
    for (const CommandManual::Group& group : manual.options) {
        text += section(group.title, termsOf(group.entries), columns);
    }
    text += examplesText(manual.examples, columns);
    for (const QString& note : manual.notes) {
        text += QLatin1Char('\n') + wrappedText(note, columns, 0) + QLatin1Char('\n');
    }
    return text;
}
