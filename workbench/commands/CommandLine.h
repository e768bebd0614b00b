// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

class Command;

// The `spum` command: global options, choice of the command, exit status 0 (done), 1 (failed), 2 (usage), 130
// (aborted).
class CommandLine
{
public:
    // Makes the process fit for a command line (locale, platform without a display), runs the command that argv names
    // and returns the exit status.
    static int run(int argc, char** argv);

    // Every command, in the order of the help text.
    static std::vector<std::unique_ptr<Command>> commands();
};
