// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QString;

// Whether the palette belongs beside that tab of a sequence's window, without regard to case: the sequence's own views
// and the tabs of an analysis. "Unmixed Images" counts when the host reports a tab, and not when a sequence changes.
bool isUnmixingTab(const QString& strTitle, bool bWithUnmixedImages);
