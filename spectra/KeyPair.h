// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// What tells one image of a sequence from the others: the filter texts (excitation, emission), or (interval, time) in a
// temporal sequence. In a table of images `second` is the row and `first` the column.
struct KeyPair
{
    QString first;
    QString second;
};

inline bool operator==(const KeyPair& a, const KeyPair& b)
{
    return a.first == b.first && a.second == b.second;
}
inline bool operator!=(const KeyPair& a, const KeyPair& b)
{
    return !(a == b);
}
