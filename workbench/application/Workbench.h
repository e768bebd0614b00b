// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The program: reads the command line, shows the main window and runs until that is closed. The answer is the exit
// status.
int runWorkbench(int argc, char** argv);
