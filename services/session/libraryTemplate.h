// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/session/SpectralBands.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

// A table to fill in, as SpectraTable reads it back: a line an image with its excitation and emission in nm, or the
// word for no filter, and an empty column a name. Each band has one of the two wavelengths.
QByteArray libraryTemplate(const QList<SpectralBand>& bands, const QStringList& names);
