// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QSize>
#include <QString>
#include <QStringList>
#include <QVector>

#include <vector>

// What becomes of images that differ in size.
enum class SizeRule
{
    Refuse,
    Crop, // to the smallest width and height, from the upper left
    Bin,  // to the smallest size, which must be the same whole part of all others
    Pad   // to the largest width and height; what was added has no value
};

// The one size that images get.
class CommonSize
{
public:
    // "crop", "bin" or "pad"; false for another text.
    static bool ruleOf(const QString& strText, SizeRule* pRule);

    // Chooses the size for images of those sizes, of which there is one at least. False with the reason and the first
    // image concerned, where they differ and the rule is to refuse them, or cannot bring them to one size; the images'
    // names serve for the reason.
    bool choose(const QVector<QSize>& sizes, const QStringList& names, SizeRule eRule, QString* pReason, int* pImage);

    long width() const { return m_size.width(); }
    long height() const { return m_size.height(); }
    // Whether some image is changed.
    bool isNeeded() const { return m_bNeeded; }
    // What was done, for people: "cut to the smallest"; empty where nothing was.
    QString text() const;
    // Pixels along a side that become one in image i.
    int factor(int i) const { return m_factors.at(i); }

    // Brings image i to the size, and `invalid` (empty: none), which marks its pixels without a value, likewise. Binned
    // counts are summed, as a camera bins, pixels of another unit, which are densities (`bDensity`), averaged; both
    // become floats, or doubles of 32 bit integers and doubles. A binned pixel with one that has no value has none.
    // False without memory.
    bool fit(int i, bool bDensity, CILImage& image, std::vector<bool>& invalid) const;

private:
    bool chooseSmallest(const QVector<QSize>& sizes, const QStringList& names, QString* pReason, int* pImage);
    bool bin(int nFactor, bool bDensity, CILImage& image, std::vector<bool>& invalid) const;
    bool place(CILImage& image, std::vector<bool>& invalid) const;

    SizeRule m_eRule = SizeRule::Refuse;
    QSize m_size;
    QVector<int> m_factors;
    bool m_bNeeded = false;
};
