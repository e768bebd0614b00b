// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// How many blocks of memory this thread has taken from the heap, by whatever way, since the program began.
long long allocationsOfThisThread();
