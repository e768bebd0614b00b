// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/tileLabel.h"

#include <QFont>
#include <QFontMetricsF>

#include <gtest/gtest.h>

namespace orvwidgets {
namespace {

class TileLabelTest : public ::testing::Test
{
protected:
    double widthOf(const QString& text) const { return m_metrics.horizontalAdvance(text) + 1.0; }

    const QFontMetricsF m_metrics{QFont()};
};

TEST_F(TileLabelTest, StandsInOneLineWhereThereIsRoom)
{
    const double dWidth = widthOf("TissueAF_001");
    EXPECT_EQ(tileLabelLines("TissueAF_001", true, m_metrics, dWidth), QStringList{"TissueAF_001"});
    EXPECT_EQ(tileLabelLines(" Tissue \n AF", false, m_metrics, dWidth), QStringList{"Tissue AF"});
}

TEST_F(TileLabelTest, OfASpotTheNumberGetsALineOfItsOwn)
{
    EXPECT_EQ(tileLabelLines("TissueAF_012", true, m_metrics, widthOf("TissueAF")), (QStringList{"TissueAF", "012"}));
    const QStringList narrow = tileLabelLines("AlexaFluor 750_012", true, m_metrics, widthOf("Alexa"));
    ASSERT_EQ(narrow.size(), 2);
    EXPECT_TRUE(narrow[0].contains(QChar(0x2026)));
    EXPECT_EQ(narrow[1], "012");
}

TEST_F(TileLabelTest, AnyOtherIsElidedInItsMiddle)
{
    const QStringList lines = tileLabelLines("AlexaFluor_750", false, m_metrics, widthOf("AlexaFlu"));
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines[0].startsWith('A'));
    EXPECT_TRUE(lines[0].endsWith('0'));
    EXPECT_LE(m_metrics.horizontalAdvance(lines[0]), widthOf("AlexaFlu"));
}

} // namespace
} // namespace orvwidgets
