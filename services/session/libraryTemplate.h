// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/KeyPair.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

// A table to fill in, as SpectraTable reads it back: a line an image with its excitation and emission, and an empty
// column a name.
QByteArray libraryTemplate(const QList<KeyPair>& pairs, const QStringList& names);
