// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <cstdint>

class MouseShape;

// The photograph of the animal in a lit cabinet, its lamp nearly overhead: fur that runs along the body, bare ears,
// paws and tail, eyes, on a dark bed with the animal's soft shadow. Bytes, `side` x `side` pixels over the field of
// view; an empty image for a side below 1 or without memory. The bed stays below a fifth of the range and the coat far
// above, as in a photograph taken to find the animal's outline. Independent of the number of threads.
CILImage takeMousePhotograph(const MouseShape& shape, int side, std::uint64_t seed);
