// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

class SpectrumPlotParams;

// Spectra as a plain table, which programs for tables read as it is: a line of names, "excitation,emission,A,B" (of
// time courses "interval,time,A,B"; of numbered channels "excitation,emission,channel,A,B", with their names), and one
// line a pair. Numbers have all their digits. A library file has colours,
// origins and a note besides, in lines ahead of the table that such programs stumble over. One of numbered channels
// comes back from people who have filled it in: as such programs store it, too, with tabs or semicolons for commas,
// decimal commas then, and numbers of channels without their zeros.

// At least one spectrum; all have the pairs of the first. `channels`: names of the numbered channels, one a pair; empty
// for images of filters and times.
QByteArray pairTableText(const QList<SpectrumPlotParams*>& spectra, bool bTime, const QStringList& channels = {});

// Whether the first line is one of such names, in any case.
bool isPairTable(const QByteArray& text);
// Whether that is one of time courses.
bool isTimeTable(const QByteArray& text);
// Whether it names numbered channels, whose keys are no wavelengths.
bool isChannelTable(const QByteArray& text);

// The spectra of such a table, with default colours; the caller owns them. Throws Failure that names the file and the
// line: for a line of another length than the first, and a value that is missing or no number.
QList<SpectrumPlotParams*> readPairTable(const QByteArray& text, const QString& strFile);
