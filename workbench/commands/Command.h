// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/manual/CommandManual.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

class CliSession;
class CommandParser;

// One command of `spum`. A command reads its options from the parser, answers through the session, and throws
// Failure when it cannot do what was asked; it then has changed nothing and left nothing half written.
class Command
{
public:
    Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    virtual QString name() const = 0;
    // One line for the list of commands.
    virtual QString summary() const = 0;
    // Declares options and positional arguments.
    virtual void declare(CommandParser& parser) const = 0;
    // How it is used, for --help and the manual page: commands that work in the folder of a first demo.
    virtual QList<CommandManual::Example> examples() const { return {}; }
    // Options whose value may be left out, by name; it is then empty. Such an option takes the word behind it as its
    // value only where the command has one more argument than it takes.
    virtual QStringList optionsWithOptionalValue() const { return {}; }
    // How many positional arguments the command takes at most; only asked of a command with such options.
    virtual int argumentCount() const { return 1; }
    // Options that may be given more than once, by name; of every other one a second value is refused.
    virtual QStringList repeatableOptions() const { return {}; }
    // Throws what is wrong with the values of the options, as run() does, before anything is opened; asked where the
    // call is wrong already, to tell all of it at once.
    virtual void check(const QCommandLineParser&) const {}
    virtual void run(const QCommandLineParser& parser, CliSession& session) = 0;
};
