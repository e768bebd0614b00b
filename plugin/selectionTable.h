// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The words of the table of images: columns and rows are the keys of an engine.
namespace selectionTable {

// How a user wants the rows of a temporal sequence to be called; the index in the list of types.
enum RowNames
{
    RowTimes = 0,  // "hh:mm:ss"
    RowNumbers = 1 // from 1
};

// Words of the list of types for the axis of a selection.
QStringList typeTexts(int eAxis);

// Text of a row's header. Off the time axis it is the key. On it the key counts seconds, and a day's time begins anew
// after 24 hours, so that two rows may read alike: who wants the key back keeps it beside the text.
QString rowText(int eAxis, int nRowNames, const QString& strKey, int nRow);

// What a cell's check box is about, for tool tips and assistive tools.
QString cellName(int eAxis, const QString& strColumnKey, const QString& strRowText);

} // namespace selectionTable
