// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <memory>
#include <vector>

class Command;
class QCommandLineParser;

// The `spum` command: global options, choice of the command, exit status 0 (done), 1 (failed), 2 (usage), 3
// (warnings, where they count), 130 (aborted).
class CommandLine
{
public:
    // Makes the process fit for a command line (locale, platform without a display), runs the command that argv names
    // and returns the exit status.
    static int run(int argc, char** argv);

    // The option that came with two values and takes one; empty when there is none.
    static QString repeatedOption(const Command& command, const QCommandLineParser& parser);

    // Every command, in the order of the help text.
    static std::vector<std::unique_ptr<Command>> commands();
};
