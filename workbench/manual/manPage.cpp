// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/manual/manPage.h"

#include "workbench/manual/CommandManual.h"

namespace {

QString pageName(const CommandManual& manual)
{
    return QString(manual.name).replace(QLatin1Char(' '), QLatin1Char('-'));
}

// Text as man prints it: a backslash and a minus of an option are marked, and no line begins as a request.
QString escaped(const QString& strText)
{
    QString text = strText.simplified();
    text.replace(QLatin1Char('\\'), QLatin1String("\\e"));
    text.replace(QLatin1Char('-'), QLatin1String("\\-"));
    text.replace(QLatin1Char('\''), QLatin1String("\\(aq"));
    text.replace(QLatin1Char('`'), QLatin1String("\\(ga"));
    text.replace(QLatin1Char('^'), QLatin1String("\\(ha"));
    text.replace(QLatin1Char('~'), QLatin1String("\\(ti"));
    return text.startsWith(QLatin1Char('.')) ? QStringLiteral("\\&") + text : text;
}

QString bold(const QString& strText)
{
    return QStringLiteral("\\fB%1\\fR").arg(escaped(strText));
}

QString italic(const QString& strText)
{
    return QStringLiteral("\\fI%1\\fR").arg(escaped(strText));
}

QString sectionHead(const char* pTitle)
{
    return QStringLiteral(".SH %1\n").arg(QLatin1String(pTitle));
}

QString termLine(const CommandManual::Entry& entry)
{
    if (entry.names.isEmpty()) {
        return italic(entry.value);
    }
    QStringList names;
    for (const QString& name : entry.names) {
        names.append(bold(QLatin1String(name.size() == 1 ? "-" : "--") + name));
    }
    const QString term = names.join(QStringLiteral(", "));
    return entry.value.isEmpty() ? term : term + QLatin1Char(' ') + italic(entry.value);
}

QString tagged(const QString& strTerm, const QString& strText)
{
    return QStringLiteral(".TP\n%1\n%2\n").arg(strTerm, escaped(strText));
}

QString commandsText(const CommandManual& manual)
{
    QString text = manual.commands.isEmpty() ? QString() : sectionHead("COMMANDS");
    for (const CommandManual& command : manual.commands) {
        text += tagged(QStringLiteral("\\fB%1\\fR(1)").arg(escaped(pageName(command))), command.summary);
    }
    return text;
}

QString optionsText(const CommandManual& manual)
{
    QString text = manual.arguments.isEmpty() ? QString() : sectionHead("ARGUMENTS");
    for (const CommandManual::Entry& argument : manual.arguments) {
        text += tagged(termLine(argument), argument.text);
    }
    text += manual.options.isEmpty() ? QString() : sectionHead("OPTIONS");
    for (const CommandManual::Group& group : manual.options) {
        text += QStringLiteral(".SS %1\n").arg(escaped(group.title));
        for (const CommandManual::Entry& option : group.entries) {
            text += tagged(termLine(option), option.text);
        }
    }
    return text;
}

QString examplesText(const CommandManual& manual)
{
    QString text = manual.examples.isEmpty() ? QString() : sectionHead("EXAMPLES");
    for (const CommandManual::Example& example : manual.examples) {
        text += QStringLiteral(".PP\n%1\n.PP\n.in +4n\n.nf\n%2\n.fi\n.in\n")
                    .arg(escaped(example.text), escaped(example.command));
    }
    return text;
}

} // namespace

QByteArray manPage(const CommandManual& manual, const ManPageFrame& frame)
{
    const QString name = pageName(manual);
    QString summary = manual.summary;
    while (summary.endsWith(QLatin1Char('.'))) {
        summary.chop(1);
    }
    QString text = QStringLiteral(".\\\" Made by the build from the table of options that --help prints.\n");
    text += QStringLiteral(".TH %1 1 %2 \"spum %3\" \"User commands\"\n")
                .arg(name.toUpper().replace(QLatin1Char('-'), QLatin1String("\\-")), frame.date, frame.version);
    text += sectionHead("NAME") + QStringLiteral("%1 \\- %2\n").arg(escaped(name), escaped(summary));
    text += sectionHead("SYNOPSIS") + bold(manual.name) + QLatin1Char(' ') + escaped(manual.usage) + QLatin1Char('\n');
    text += commandsText(manual) + optionsText(manual);
    for (int i = 0; i < manual.notes.size(); ++i) {
        text +=
            (i == 0 ? sectionHead("NOTES") : QStringLiteral(".PP\n")) + escaped(manual.notes[i]) + QLatin1Char('\n');
    }
    text += examplesText(manual);
    if (!frame.seeAlso.isEmpty()) {
        QStringList pages;
        for (const QString& page : frame.seeAlso) {
            pages.append(QStringLiteral("\\fB%1\\fR(1)").arg(escaped(page)));
        }
        text += sectionHead("SEE ALSO") + pages.join(QStringLiteral(", ")) + QLatin1Char('\n');
    }
    return text.toUtf8();
}

QString manPageFile(const CommandManual& manual)
{
    return pageName(manual) + QStringLiteral(".1");
}
