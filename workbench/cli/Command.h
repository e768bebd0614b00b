// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>
#include <QString>

class CliSession;

// One command of `spum`. A command reads its options from the parser, answers through the session, and throws CliFailure
// when it cannot do what was asked; it then has changed nothing and left nothing half written.
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
    virtual void declare(QCommandLineParser& parser) const = 0;
    virtual void run(const QCommandLineParser& parser, CliSession& session) = 0;
};
