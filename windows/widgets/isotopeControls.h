// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class QComboBox;
class QLineEdit;
class QWidget;

// The controls for the decay of an isotope, which several windows have.

// The isotope of the list whose half life the user states.
bool isUndefinedIsotope(const QString& strIsotope);

// Shows the group when the images of that sequence tell an isotope, and chooses it in the box of all `isotopes` (none,
// when it is not among them). True when there is one.
bool showIsotopeOf(const QString& strSequenceID, const QStringList& isotopes, QWidget& group, QComboBox& box);

// Shows the half life that is known of an isotope, or lets the user state it.
void showHalfLifeOf(const QString& strIsotope, QLineEdit& edit);
