// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

struct Probe;

// Centres of an excitation and an emission filter in nm, each 20 nm wide.
struct FilterPair
{
    int excitation;
    int emission;
};

// The filter pairs of a simulated sequence.
namespace FilterPlan {

constexpr int kFewest = 2;
constexpr int kMost = 200;
constexpr int kBandwidthNm = 20;
constexpr int kLongestNm = 880; // last emission filter

// `count` pairs, ordered by excitation, then emission. Each excitation filter's emissions run on a common grid from the
// first that lies beyond both bandwidths (more than 20 nm from the excitation), as coarse as the number allows: 20, 10,
// 5, 2 or 1 nm. `excitations` empty: up to 8 pairs share one filter, up to 24 two, more than that three, 70 nm apart;
// the last lies 25 nm before the bluest probe's emission peak (rounded to 5 nm), but not beyond 675 nm, and where the
// first would lie below 410 nm all move up. False with a sentence in *pError when the excitations cannot be had or do
// not hold that many pairs; *pPairs is then as it was.
bool choose(int count, const QList<int>& excitations, const QList<Probe>& probes, QList<FilterPair>* pPairs,
            QString* pError);

} // namespace FilterPlan
