// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class Failure;

// What the program ends with; scripts depend on the numbers.
namespace ExitStatus {

constexpr int success = 0;
constexpr int failed = 1;
constexpr int usage = 2;
constexpr int warned = 3;    // under --strict
constexpr int aborted = 130; // as a shell tells of SIGINT

int of(const Failure& failure);

} // namespace ExitStatus
