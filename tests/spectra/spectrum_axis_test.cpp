// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/SpectrumAxis.h"

#include <gtest/gtest.h>

TEST(SpectrumAxisTest, TheLabelHasItsUnit)
{
    EXPECT_EQ(axisLabel(SPECTRUMAXIS_EMISSION), "Emission Wavelength [nm]");
    EXPECT_EQ(axisLabel(SPECTRUMAXIS_EXCITATION), "Excitation Wavelength [nm]");
    EXPECT_EQ(axisLabel(SPECTRUMAXIS_TIME), "Time Point [s]");
    EXPECT_EQ(axisLabel(3), "");
    EXPECT_EQ(axisLabel(-1), "");
}
