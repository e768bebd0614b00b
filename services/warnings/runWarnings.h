// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/warnings/RunFindings.h"
#include "services/warnings/RunWarning.h"

#include <QList>

// What is told of a run, the worst first. The limits stand in the source with their reasons; docs/formats.md lists the
// codes.
QList<RunWarning> runWarnings(const RunFindings& findings);

// Whether the dark pixels of all images are as bright, and bright enough to be taken for light.
bool tellsOfOffset(const RunFindings& findings);
