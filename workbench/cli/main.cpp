// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/CommandLine.h"

int main(int argc, char** argv)
{
    return CommandLine::run(argc, argv);
}
