// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/basis/Failure.h"
#include "services/warnings/RunWarning.h"

// How work ends that is done, but was not to be warned of: as failed where one of the warnings is an error, else as
// warned of.
Failure::Kind strictKind(const QList<RunWarning>& warnings);
// The same with a sentence that names the codes, of one warning at least.
Failure strictFailure(const QList<RunWarning>& warnings);
