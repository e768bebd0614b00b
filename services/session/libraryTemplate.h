// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/session/SpectralBands.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

// A table to fill in: a line an image and an empty column a name. Where each band has a wavelength, images are told by
// excitation and emission in nm, or the word for no filter, as SpectraTable reads it back; else by their keys and the
// names of the channels, one a band, as readPairTable() does.
QByteArray libraryTemplate(const QList<SpectralBand>& bands, const QStringList& names, const QStringList& channels);
