// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QObject;
class QValidator;

// Reads a half life in minutes (C locale). True when it is a number above 0, finite also in seconds: dMinutes and
// dSeconds then hold it. Otherwise dMinutes holds the number that was read, 0 for none, and dSeconds is left alone.
bool parseHalfLife(const QString& strMinutes, double& dMinutes, double& dSeconds);

// A half life in seconds as text in minutes, with up to six significant digits.
QString halfLifeText(double dSeconds);

// The line for the log (level 3) about a half life that cannot be used.
QString invalidHalfLifeText(const QString& strIsotope, double dMinutes, const QString& strSequenceID);

// The line for the log (level 3) when the factors of a decay correction cannot be had.
QString noDecayFactorsText(const QString& strIsotope, const QString& strMinutes, const QString& strSequenceID,
                           int nImages);

// Of an edit in which a half life in minutes is typed. Numbers are read with a decimal point, whatever the user's
// language, so nothing else may be typed.
QValidator* halfLifeValidator(QObject* pParent);
