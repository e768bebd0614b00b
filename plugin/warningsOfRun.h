// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class CORVSpumKyvo;

// Looks at the engine's present result, that of a run that has just ended, and keeps what is to be said against it
// among its properties, where the page of results and the report show it and a saved result holds it: the list that the
// command line tells. The number of components is estimated from so few pixels that a window does not stand still.
void keepWarningsOfRun(CORVSpumKyvo& engine);

// After a PCA: the tip of the wizard's button for it tells how many components stand above the noise, as the command
// line does, where that can be told.
void tellNumberOfComponents(const CORVSpumKyvo& engine);
