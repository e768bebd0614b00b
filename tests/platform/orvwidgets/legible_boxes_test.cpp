// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/LegibleBoxes.h"

#include "support/boxContrast.h"
#include "support/darkPalette.h"

#include <QStyleFactory>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>

namespace {

struct Box
{
    const char* name;
    QStyle::PrimitiveElement element;
    QStyle::State state;
};

void PrintTo(const Box& box, std::ostream* pOut)
{
    *pOut << box.name;
}

QImage drawn(const QStyle& style, const Box& box, const QPalette& palette)
{
    return boxcontrast::drawn(style, box.element, box.state, palette);
}

class LegibleBoxesTest : public ::testing::TestWithParam<Box>
{
protected:
    const std::unique_ptr<QStyle> m_own{QStyleFactory::create("fusion")};
    const LegibleBoxes m_legible{"fusion"};
};

TEST_P(LegibleBoxesTest, TheOutlineIsSeenInADarkPalette)
{
    const QPalette dark = screen::darkPalette();
    EXPECT_GE(boxcontrast::ofOutline(drawn(m_legible, GetParam(), dark), dark), boxcontrast::kLegible);
}

TEST_P(LegibleBoxesTest, ALightPaletteLooksAsTheStyleHasIt)
{
    const QPalette light(QColor(239, 239, 239));
    EXPECT_GT(boxcontrast::ofOutline(drawn(*m_own, GetParam(), light), light), 1.0) << "nothing is drawn";
    EXPECT_EQ(drawn(m_legible, GetParam(), light), drawn(*m_own, GetParam(), light));
}

TEST(LegibleBoxesNameTest, IsThatOfTheStyleBeneath)
{
    EXPECT_EQ(LegibleBoxes("fusion").objectName(), "fusion");
}

INSTANTIATE_TEST_SUITE_P(
    Boxes, LegibleBoxesTest,
    ::testing::Values(Box{"Unticked", QStyle::PE_IndicatorCheckBox, QStyle::State_Enabled | QStyle::State_Off},
                      Box{"Ticked", QStyle::PE_IndicatorCheckBox, QStyle::State_Enabled | QStyle::State_On},
                      Box{"Partly", QStyle::PE_IndicatorCheckBox, QStyle::State_Enabled | QStyle::State_NoChange},
                      Box{"Radio", QStyle::PE_IndicatorRadioButton, QStyle::State_Enabled | QStyle::State_Off},
                      Box{"InAList", QStyle::PE_IndicatorItemViewItemCheck, QStyle::State_Enabled | QStyle::State_Off}),
    [](const auto& box) { return std::string(box.param.name); });

} // namespace
