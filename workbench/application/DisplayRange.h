// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class CILImage;

// The values that the ends of a colour table stand for.
struct DisplayRange
{
    double minimum = 0.0;
    double maximum = 0.0;

    // Of all finite pixels.
    static DisplayRange whole(const CILImage& image);
    // Without the 0.1 percent of pixels that are darkest and the 0.02 percent that are brightest, so that hot pixels do
    // not darken the rest while a probe of a few pixels still counts; whole() where that leaves a single value.
    static DisplayRange automatic(const CILImage& image);

    // From the least minimum to the greatest maximum.
    DisplayRange united(const DisplayRange& other) const;
    // With another end; an end that would pass the other takes it along.
    DisplayRange withMinimum(double dValue) const;
    DisplayRange withMaximum(double dValue) const;

    bool isEmpty() const { return !(maximum > minimum); }
    bool operator==(const DisplayRange& other) const { return minimum == other.minimum && maximum == other.maximum; }
    bool operator!=(const DisplayRange& other) const { return !(*this == other); }
};

// Values from one end of an image's range to the other as the steps of a slider.
class RangeScale
{
public:
    static constexpr int kSteps = 1000; // the last one

    explicit RangeScale(const DisplayRange& whole = {}) : m_whole(whole) {}

    // The nearest step; values beyond the ends get those. 0 for a scale of a single value.
    int step(double dValue) const;
    // The ends themselves at 0 and kSteps.
    double value(int nStep) const;
    const DisplayRange& whole() const { return m_whole; }

private:
    DisplayRange m_whole;
};
