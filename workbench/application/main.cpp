// SPDX-License-Identifier: GPL-3.0-or-later
// Compiled for any processor of the architecture, as it asks first whether this one suffices.
#include "workbench/application/Workbench.h"
#include "workbench/start/processor.h"

int main(int argc, char** argv)
{
    return processorSuffices("spum-workbench") ? runWorkbench(argc, argv) : 1;
}
