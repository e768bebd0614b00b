// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <optional>
#include <vector>

// The pixels of a stack that have no value in some image: those that hold the value by which a file marks them, and,
// where that is wanted, those that are not finite. They are left out of every analysis.
class InvalidPixels
{
public:
    // Those of one image, in its order; empty where there is none. `ignore` may be NaN; with `bNotFinite` pixels that
    // are no finite numbers of single precision count too.
    static std::vector<bool> of(const CILImage& image, std::optional<double> ignore, bool bNotFinite);

    // Adds those of an image of that size; all have one. Empty ones are none.
    void add(const std::vector<bool>& marks, long w, long h);
    // Sets all that were added so far to 0.
    void clear(CILImage& image) const;
    bool isMarked(std::size_t i) const { return !m_invalid.empty() && m_invalid[i]; }

    long long count() const;
    // 1 where every image has a value, as a square with zeros behind the images; of type byte. False without memory.
    bool validSquare(CILImage& out) const;

private:
    std::vector<bool> m_invalid; // empty while there are none
    long m_lWidth = 0;
    long m_lHeight = 0;
};
