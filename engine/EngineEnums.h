// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/SpectrumAxis.h"

// Where the pure spectra of a run come from.
enum tag_eRunMode
{
    RUNMODE_LIBRARY = 0,   // a spectrum library
    RUNMODE_GUIDED = 1,    // drawn by the user
    RUNMODE_AUTOMATIC = 2, // resolved from the data
    RUNMODE_MANUAL = 3     // supplied by the user
};

enum tag_eSequenceKind
{
    SEQKIND_LUMINESCENT = 0,
    SEQKIND_EPI_FLUORESCENT = 1,
    SEQKIND_TRANSILLUMINATION = 2,
    SEQKIND_TEMPORAL = 3,
    SEQKIND_3D_SCENE = 4
};

// Error codes of a run; errorText() has their texts.
enum tag_eRunError
{
    RUNERROR_NONE = 0,
    RUNERROR_TOPOLOGY = 1,
    RUNERROR_TOO_MANY_COMPONENTS = 2,
    RUNERROR_INITIAL_GUESS = 3,
    RUNERROR_CONSTRAINTS = 4,
    RUNERROR_DATA = 5,
    RUNERROR_NO_SOLUTION = 6,
    RUNERROR_MEMORY = 7
};
