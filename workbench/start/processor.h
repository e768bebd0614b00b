// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Whether the processor has what the build relies on; what it lacks is told on standard error under the name of the
// program. To be asked ahead of all else.
bool processorSuffices(const char* pProgram);
