// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/session/SpectraTable.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

// What the fields of a plain table of spectra say by themselves.

inline const QString wavelengthsInNm = QStringLiteral("nm");
inline const QString wavelengthsInUm = QStringLiteral("um");
inline const QString otherUnit = QStringLiteral("?");

// The text of a table: UTF-16 with its mark, UTF-8, else Latin-1, as older spreadsheet programs write it. Lines end
// with LF.
QString decodedTable(const QByteArray& bytes);

// The separator of a line "sep=;", by which a spreadsheet program is told it; null for another line.
QChar separatorTold(const QString& strLine);

// Whether all fields are.
bool areEmpty(const QStringList& fields);

// With a decimal point or comma.
bool isDecimal(QString text);

// The unit of wavelengths that a field names: wavelengthsInNm, wavelengthsInUm, otherUnit for one that no wavelength is
// taken in; empty for none.
QString wavelengthUnitIn(const QString& strField);

// A field without the unit at its end: "640 nm", "0.64um".
QString withoutWavelengthUnit(const QString& strField);

// What a field says that the column below it, or the line behind it, holds, and in *pWavelengths whether wavelengths
// at all; units and punctuation do not count.
SpectraTable::Axis tableAxisIn(const QString& strField, bool* pWavelengths);
bool isTableAxis(const QString& strField, SpectraTable::Axis eAxis);

// A name as a library can have it, and in *pPercent whether it tells that its values are in percent.
QString spectrumNameIn(const QString& strField, bool* pPercent);
