// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

struct Probe;
struct SimulationOptions;

// Centres of an excitation and an emission filter in nm, each 20 nm wide; an excitation of 0 is a block, which lets no
// light through.
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

// `count` emissions without excitation, from `firstNm` on a grid of 20, 10, 5, 2 or 1 nm. False as above.
bool chooseEmissions(int count, int firstNm, QList<FilterPair>* pPairs, QString* pError);

// One pair, for what is followed over time: the excitation given, or 25 nm before the bluest probe's emission peak
// (rounded to 5 nm, 720 at most); the emission on the grid of 20 nm that is nearest to the mean of the probes' peaks
// beyond both bandwidths. False as above, and for more than one excitation.
bool chooseOne(const QList<int>& excitations, const QList<Probe>& probes, FilterPair* pPair, QString* pError);

} // namespace FilterPlan

// The filter pairs of a simulated sequence: of each spot of a scan, and one in a temporal sequence. False with a
// sentence in *pError when probes or filters cannot be had.
bool choosePairs(const SimulationOptions& options, QList<FilterPair>* pPairs, QString* pError);
