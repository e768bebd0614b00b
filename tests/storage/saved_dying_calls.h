// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Ends this process at a chosen one of its calls that change something on disk, as if it were killed there.
namespace dyingCalls {

constexpr int exitStatus = 77;

// From here on calls are counted, from 1. The one with this number is not done any more; with bHalf a write is done for
// half of its bytes first. 0 ends nothing.
void dieAt(int nCall, bool bHalf);
// So far.
int count();

} // namespace dyingCalls
