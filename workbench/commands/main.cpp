// SPDX-License-Identifier: GPL-3.0-or-later
// Compiled for any processor of the architecture, as it asks first whether this one suffices.
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandLine.h"
#include "workbench/start/processor.h"

int main(int argc, char** argv)
{
    if (!processorSuffices("spum")) {
        return 1;
    }
    // Ahead of all else: what a signal meets half way must be cleaned up.
    CliSession::catchInterrupts();
    return CommandLine::run(argc, argv);
}
