// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

class CORVSpumKyvo;

enum class Filling
{
    Done,
    Failed, // told in the log
    Aborted // by the user, or because it is not wanted any more; the cube is empty
};

// Fills the engine's cube and makes its overview, on the thread of the user interface. Where that takes longer than
// `nPatience` milliseconds, `begins` is called, and events go on between images under a long process of its own, whose
// abort ends the filling; `isWanted` is asked after each look at the events. The abort waits for one image, or for four
// where they are stored.
Filling fillCube(CORVSpumKyvo& engine, int nPatience, const std::function<void()>& begins,
                 const std::function<bool()>& isWanted);
