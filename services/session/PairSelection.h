// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/KeyPair.h"

#include <QList>
#include <QString>

class ChannelLabels;

// The images that --select names: parts separated by commas, each "first/second" (excitation/emission, or
// interval/time), "*" for any. The result holds each pair of `all` that a part names, in the order of the parts and,
// within one, in the order of `all`. Throws Failure when a part is malformed or names nothing, with what there is.
QList<KeyPair> selectPairs(const QString& strSelect, const QList<KeyPair>& all);

// "640/700", and "700" where there is no excitation.
QString pairText(const KeyPair& pair);
// The same; for a numbered channel its name with the number that --select takes, "DAPI (003)".
QString pairText(const KeyPair& pair, const ChannelLabels& channels);
QString pairsText(const QList<KeyPair>& pairs);
