// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How a run of MCR ended; finer than its result.
enum class MCREnding
{
    NotRun,
    Converged,
    GoodFit,
    Diverged,
    IterationLimit,
    Degenerate
};
