// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/manual/completion.h"

#include "workbench/manual/CommandManual.h"

namespace {

enum class Kind
{
    Words, // of the entry's list
    Files,
    Folders,
    Other // nothing to offer
};

Kind kindOf(const CommandManual::Entry& entry)
{
    if (!entry.words.isEmpty()) {
        return Kind::Words;
    }
    static const QStringList folders = {QStringLiteral("DIR"), QStringLiteral("SEQ"), QStringLiteral("RESULT")};
    static const QStringList files = {QStringLiteral("FILE"),  QStringLiteral("PATH"), QStringLiteral("CSV"),
                                      QStringLiteral("STACK"), QStringLiteral("OUT"),  QStringLiteral("MASK")};
    for (QString name : entry.value.split(QLatin1Char('|'))) {
        name.remove(QStringLiteral("..."));
        if (folders.contains(name)) {
            return Kind::Folders;
        }
        if (files.contains(name)) {
            return Kind::Files;
        }
    }
    return Kind::Other;
}

QList<CommandManual::Entry> optionsOf(const CommandManual& command)
{
    QList<CommandManual::Entry> all;
    for (const CommandManual::Group& group : command.options) {
        all += group.entries;
    }
    return all;
}

QString wordOf(const CommandManual& command)
{
    return command.name.section(QLatin1Char(' '), 1);
}

QString joined(const QStringList& words)
{
    return words.join(QLatin1Char(' '));
}

QStringList namesOf(const QList<CommandManual>& commands)
{
    QStringList names;
    for (const CommandManual& command : commands) {
        names.append(wordOf(command));
    }
    return names;
}

QString identifier(const CommandManual& program)
{
    return QStringLiteral("_") + QString(program.name).replace(QLatin1Char('-'), QLatin1Char('_'));
}

// "        --unit) words='counts radiance' ;;"; nothing for an option without a value.
QString bashValueLine(const CommandManual::Entry& option)
{
    if (option.value.isEmpty()) {
        return QString();
    }
    const QString name = QStringLiteral("--") + option.names.last();
    switch (kindOf(option)) {
    case Kind::Words:
        return QStringLiteral("        %1) words='%2' ;;\n").arg(name, joined(option.words));
    case Kind::Files:
        return QStringLiteral("        %1) kind=file ;;\n").arg(name);
    case Kind::Folders:
        return QStringLiteral("        %1) kind=folder ;;\n").arg(name);
    case Kind::Other:
        break;
    }
    return QStringLiteral("        %1) kind=none ;;\n").arg(name);
}

QString bashCommand(const CommandManual& command)
{
    QStringList names;
    QString values;
    for (const CommandManual::Entry& option : optionsOf(command)) {
        names.append(QStringLiteral("--") + option.names.last());
        values += bashValueLine(option);
    }
    QStringList words;
    Kind kind = Kind::Other;
    for (const CommandManual::Entry& argument : command.arguments) {
        words += argument.words;
        const Kind own = kindOf(argument);
        kind = own == Kind::Files || (own == Kind::Folders && kind == Kind::Other) ? own : kind;
    }
    const char* const files = kind == Kind::Files ? "file" : kind == Kind::Folders ? "folder" : "none";
    return QStringLiteral("    %1)\n"
                          "        options='%2'\n"
                          "        case $previous in\n"
                          "%3"
                          "        *) words='%4' kind=%5 ;;\n"
                          "        esac\n"
                          "        ;;\n")
        .arg(wordOf(command), joined(names), values, joined(words), QLatin1String(files));
}

// As it stands between single quotes in an argument of _arguments, where brackets and colons have a meaning.
QString zshText(const QString& strText)
{
    QString text = strText.simplified();
    for (const char sign : {'\\', ':', '[', ']'}) {
        text.replace(QLatin1Char(sign), QLatin1String("\\") + QLatin1Char(sign));
    }
    return text.replace(QLatin1Char('\''), QLatin1String("'\\''"));
}

QString zshAction(const CommandManual::Entry& entry)
{
    switch (kindOf(entry)) {
    case Kind::Words:
        return QStringLiteral("(%1)").arg(joined(entry.words));
    case Kind::Files:
        return QStringLiteral("_files");
    case Kind::Folders:
        return QStringLiteral("_files -/");
    case Kind::Other:
        break;
    }
    return QStringLiteral(" ");
}

QString zshCommand(const CommandManual& command)
{
    QString text = QStringLiteral("    %1)\n        _arguments -s").arg(wordOf(command));
    for (const CommandManual::Entry& option : optionsOf(command)) {
        for (const QString& name : option.names) {
            const QString dashes = QLatin1String(name.size() == 1 ? "-" : "--") + name;
            const QString value = option.value.isEmpty()
                                      ? QString()
                                      : QStringLiteral(":%1:%2").arg(zshText(option.value), zshAction(option));
            text += QStringLiteral(" \\\n            '%1%2%3[%4]%5'")
                        .arg(QLatin1String(option.repeatable ? "*" : ""), dashes,
                             QLatin1String(value.isEmpty() ? "" : "="), zshText(option.text), value);
        }
    }
    for (const CommandManual::Entry& argument : command.arguments) {
        const bool many = argument.value.contains(QStringLiteral("..."));
        text += QStringLiteral(" \\\n            '%1:%2:%3'")
                    .arg(QLatin1String(many ? "*" : ""), zshText(argument.value), zshAction(argument));
    }
    return text + QStringLiteral("\n        ;;\n");
}

} // namespace

QByteArray bashCompletion(const CommandManual& program)
{
    QString cases;
    for (const CommandManual& command : program.commands) {
        cases += bashCommand(command);
    }
    const QString commands = joined(namesOf(program.commands));
    return QStringLiteral("# Made by the build from the table of options that --help prints.\n"
                          "%1() {\n"
                          "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
                          "    local options='' words='' kind=none\n"
                          "    [[ $current == '=' ]] && current=''\n"
                          "    [[ $previous == '=' ]] && previous=${COMP_WORDS[COMP_CWORD-2]}\n"
                          "    COMPREPLY=()\n"
                          "    if ((COMP_CWORD == 1)); then\n"
                          "        COMPREPLY=($(compgen -W 'help %2 --help --version' -- \"$current\"))\n"
                          "        return\n"
                          "    fi\n"
                          "    case ${COMP_WORDS[1]} in\n"
                          "    help) words='%2' ;;\n"
                          "%3"
                          "    esac\n"
                          "    if [[ $current == -* ]]; then\n"
                          "        COMPREPLY=($(compgen -W \"$options\" -- \"$current\"))\n"
                          "        return\n"
                          "    fi\n"
                          "    [[ -n $words ]] && COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
                          "    local IFS=$'\\n'\n"
                          "    case $kind in\n"
                          "    file) COMPREPLY+=($(compgen -f -- \"$current\")) ;;\n"
                          "    folder) COMPREPLY+=($(compgen -d -- \"$current\")) ;;\n"
                          "    esac\n"
                          "    [[ $kind != none ]] && compopt -o filenames 2>/dev/null\n"
                          "    return 0\n"
                          "}\n"
                          "complete -F %1 %4\n")
        .arg(identifier(program), commands, cases, program.name)
        .toUtf8();
}

QByteArray zshCompletion(const CommandManual& program)
{
    QString list = QStringLiteral("        'help:Tell the options of a command.'\n");
    QString cases;
    for (const CommandManual& command : program.commands) {
        list += QStringLiteral("        '%1:%2'\n").arg(wordOf(command), zshText(command.summary));
        cases += zshCommand(command);
    }
    return QStringLiteral("#compdef %4\n"
                          "# Made by the build from the table of options that --help prints.\n"
                          "%1() {\n"
                          "    local -a commands\n"
                          "    commands=(\n"
                          "%2"
                          "    )\n"
                          "    if ((CURRENT == 2)); then\n"
                          "        _describe command commands\n"
                          "        return\n"
                          "    fi\n"
                          "    local word=$words[2]\n"
                          "    shift words\n"
                          "    ((CURRENT--))\n"
                          "    case $word in\n"
                          "    help) _describe command commands ;;\n"
                          "%3"
                          "    esac\n"
                          "}\n"
                          "%1 \"$@\"\n")
        .arg(identifier(program), list, cases, program.name)
        .toUtf8();
}
