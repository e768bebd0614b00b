// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

class MouseShape;

// Further pictures that an instrument takes of the animal. All are `side` x `side` pixels over the field of view; empty
// for a side below 1 or without memory, and independent of the number of threads.

// A scan with structured light: stripes across the animal, thrown from an angle, so that its relief shifts them. Bytes;
// without the stripes it is the reference of the scan.
CILImage takeStructuredLight(const MouseShape& shape, int side, bool bStripes);

// An X-ray image: what body and bones (spine, ribs, skull) let through, 16 bits.
CILImage takeXRay(const MouseShape& shape, int side);
