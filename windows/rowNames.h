// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The names of the rows of a spectrum list.

// Rows that have a name of their own: one that does not start with "UMX".
int namedRowCount(const QStringList& rows);

// The name of a row that is added to `rows` without one: "UMX%1", counted from 1 among the rows without a name of their
// own.
QString nextRowName(const QStringList& rows);

// The rows that an analysis starts with: the tissue's own light and the probes. In Cherenkov data "RAD-" is removed
// from the names.
QStringList startingRows(const QStringList& probes, bool bCherenkov);

// Whether a row with this name is ticked as the background when it is added in the drawing step.
bool isBackgroundName(const QString& strName);
