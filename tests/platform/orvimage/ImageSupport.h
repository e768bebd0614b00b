// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <vector>

inline const ORVDataTypes kAllPixelTypes[] = {ORVTYPE_BYTE, ORVTYPE_USHORT, ORVTYPE_INT, ORVTYPE_FLOAT, ORVTYPE_DOUBLE};

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

// An image of w x h pixels with these values, row by row.
inline CILImage makeImage(ORVDataTypes type, long w, long h, const std::vector<double>& values)
{
    CILImage image;
    EXPECT_EQ(EIL_SUCCESS, image.InitWithType(type, w, h));
    EXPECT_EQ(image.pixelCount(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        image.setValue(i, values[i]);
    }
    image.RefreshImageStats();
    return image;
}

inline std::vector<double> valuesOf(const CILImage& image)
{
    std::vector<double> values;
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        values.push_back(image.value(i));
    }
    return values;
}

inline double sumOf(const CILImage& image)
{
    double sum = 0.0;
    for (const double v : valuesOf(image)) {
        sum += v;
    }
    return sum;
}

// Matches values that differ from these by `tolerance` at most.
inline auto near(double tolerance, const std::vector<double>& values)
{
    return testing::Pointwise(testing::DoubleNear(tolerance), values);
}
