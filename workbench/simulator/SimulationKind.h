// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The kinds of sequences that can be simulated.
enum class SimulationKind
{
    Epi,               // dyes, excited and seen from above
    Luminescent,       // luciferases; no excitation
    Transillumination, // dyes, excited from below spot by spot
    Temporal,          // one pair of filters, many times
    Cherenkov          // an isotope's Cherenkov light, which decays
};

// The kind's name as the command line has it: "epi", "luminescent", "transillumination", "temporal", "cherenkov".
QString kindName(SimulationKind eKind);
// All names in that order.
QStringList kindNames();
// The kind of a name; false, and *pKind as it was, for another text.
bool kindOfName(const QString& strName, SimulationKind* pKind);

// Whether the light is excited through a filter.
bool isFluorescent(SimulationKind eKind);
