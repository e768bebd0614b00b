// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QString>

// A framed square of a colour, given by a name that QColor::setNamedColor understands, to stand beside that name. Drawn
// once and shared: a list of spectra shows a dozen a row.
QIcon colorSwatch(const QString& strName);
