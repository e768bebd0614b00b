#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs the tests of a build under the address and undefined-behaviour sanitizers.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
# Leaks of the font and platform libraries that a Qt program loads are not ours; tests/lsan.supp names them.
export ASAN_OPTIONS="detect_leaks=1:halt_on_error=1:detect_stack_use_after_return=0"
export LSAN_OPTIONS="suppressions=$root/tests/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
ctest --test-dir "$1" --output-on-failure -j"${JOBS:-1}"
