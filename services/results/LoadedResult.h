// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/basis/UnitLimit.h"
#include "services/results/Provenance.h"
#include "services/results/ResultNumbers.h"

#include <QString>

class JobMonitor;
class OpenedSequence;

// A saved result that a command has brought back: while it lives the engine of the sequence shows it, in the unit in
// which it was made.
class LoadedResult
{
public:
    // `strName` is one of the saved names. Throws Failure when the sequence cannot be analysed or the result cannot
    // be loaded with its maps, and where the monitor wants it to stop.
    LoadedResult(OpenedSequence& opened, const QString& strName, const JobMonitor& monitor);
    LoadedResult(const LoadedResult&) = delete;
    LoadedResult& operator=(const LoadedResult&) = delete;

    const ResultNumbers& numbers() const { return m_numbers; }
    const QString& note() const { return m_strNote; }
    // Of the load; its command is still to be set.
    const Provenance& provenance() const { return m_provenance; }

private:
    UnitLimit m_unitLimit;
    ResultNumbers m_numbers;
    QString m_strNote;
    Provenance m_provenance;
};
