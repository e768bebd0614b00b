// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace orv {

// The family of a probe: what stands before the last number of its name, without the blanks and dashes between them;
// the name itself when nothing does or it holds no number. "AlexaFluor 488" is of the family "AlexaFluor", "Cy5.5" of
// "Cy".
QString probeFamily(const QString& strName);

// Entries of a list of probes that belong together.
struct ProbeFamily
{
    QString m_strName;
    QVector<int> m_entries; // places in the list, in its order
};

// The families in the order of their first entries. Families are told apart by case.
QVector<ProbeFamily> probeFamilies(const QStringList& names);

} // namespace orv
