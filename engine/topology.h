// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "spectra/KeyPair.h"

#include <QList>
#include <QStringList>

// How the selected images lie on the grid of their two keys: `layout` gets a row a secondary value and a column a
// primary one, 1 where there is an image and 0 elsewhere. As many images as primary values are one row of ones,
// whatever their secondary values. Gives the number of images that have no place on the grid; they are passed over.
// Images that share a place count once, so that the layout's sum can be less than the number of images.
//
// The primary value of a pair is looked for as its three-digit key, the secondary as it stands.
int wavelengthTopology(const QList<KeyPair>& selection, int eAxis, const QStringList& primaryKeys,
                       const QStringList& secondaryKeys, XTNT::Matrix<int>& layout);
