// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/manual/CommandManual.h"

#include <memory>
#include <vector>

class Command;

// What there is to say about a command, with its options ahead of those that every command has.
CommandManual manualOf(const Command& command);

// What there is to say about `spum` with those commands, each whole.
CommandManual manualOfProgram(const std::vector<std::unique_ptr<Command>>& commands);
