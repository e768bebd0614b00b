// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/consoleButtons.h"

#include <algorithm>

namespace {

constexpr int kMostRows = 9; // and one more for each that was removed
constexpr int kFewestSpectra = 2;

} // namespace

int usableSpectra(const QVector<ConsoleRow>& rows, bool bBackgroundMode)
{
    return static_cast<int>(std::count_if(rows.begin(), rows.end(), [bBackgroundMode](const ConsoleRow& row) {
        return row.hasData && (bBackgroundMode || row.selected);
    }));
}

ConsoleButtons consoleButtons(const ConsoleState& state)
{
    ConsoleButtons buttons;
    buttons.remove = std::any_of(state.rows.begin(), state.rows.end(),
                                 [](const ConsoleRow& row) { return row.selectEnabled && row.selected; });
    buttons.add = state.rows.size() != kMostRows + state.removedCount;
    buttons.save = !state.rows.isEmpty();
    const bool bEnough = usableSpectra(state.rows, state.backgroundMode) >= kFewestSpectra;
    buttons.unmix = bEnough && (state.backgroundMode || state.modified);
    buttons.compute = bEnough;
    return buttons;
}
