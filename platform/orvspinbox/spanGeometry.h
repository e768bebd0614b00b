// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orv {

// Places along a groove of `nLength` pixels, whose pixel 0 stands for `nMinimum` and whose pixel `nLength` for
// `nMaximum`, or the other way round when reversed.
struct SpanGeometry
{
    int m_nMinimum = 0;
    int m_nMaximum = 0;
    int m_nLength = 0;
    bool m_bReversed = false;

    // 0 for an empty range. Values outside the range go to its ends.
    int pixelOf(int nValue) const;
    // The value whose pixel is nearest; pixels outside the groove give the ends of the range.
    int valueAt(int nPixel) const;
};

// Which end a press at `nPixel` takes, by their pixels: the nearer one. Between ends that are as near, or meet, the one
// that can be moved towards the pointer: the lower one for a place before both, else the upper one.
bool isLowerNearer(int nPixel, int nLowerPixel, int nUpperPixel, bool bReversed);

} // namespace orv
