// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The components that an analysis starts with: which probe names are offered, which of them are proposed for a
// sequence, and what else is on. Analysis types: 0 luminescent sequence, 1 and 2 fluorescent sequences, 3 temporal
// sequence.

// The entry for a probe that nothing is known of.
constexpr const char* const kUnknownProbe = "Unknown";

// The library's names without the two characters at their end that tell the filter, each once, in the order of their
// first occurrence.
QStringList namesWithoutFilter(QStringList libraryNames);

// The names that a row of the probe table offers: the database's sources for luminescent analyses and temporal ones
// that are not fluorescent, the library's for the others; sorted by insensitiveLessThan, after kUnknownProbe. Another
// type has no offer of its own (an empty list: what was offered before stays).
QStringList offeredProbes(int nAnalysisType, bool bFluorescent);

// What the proposed names of a sequence come to.
struct ProbeProposal
{
    QStringList offered; // the offer for every row, see proposeProbes()
    QStringList names;   // the accepted names, trimmed, as they were spelled, in their order
};

// Accepts the names that are offered, without regard to case; others are dropped in silence. From a name with "RAD-"
// that text is removed first; when it is the very first name, the radioactive sources (without kUnknownProbe) become
// the offer for all.
ProbeProposal proposeProbes(const QStringList& initialProbes, const QStringList& offered);

// The texts of the table's rows at the start: the accepted names that the offer has in the same spelling; for a name in
// another spelling an empty text, as no entry is selected; and rows of the first entry up to the fewest
// that a table starts with, one, or two in a temporal sequence. Empty texts when nothing is offered.
QStringList proposedProbes(const QStringList& initialProbes, const QStringList& offered, int nAnalysisType);

// The entry of the offer that differs from the name by case alone; empty when the offer has the name itself, or none.
QString otherSpelling(const QString& strName, const QStringList& offered);

// Whether the tissue's own light counts as a component at the start (food never does), and whether constraints are
// used.
bool isTissueByDefault(int nAnalysisType);
bool isConstrainedByDefault(int nAnalysisType);

// The names of the components in their order: "TissueAF", "Food", then the table's rows.
QStringList componentNames(bool bTissue, bool bFood, const QStringList& rows);
