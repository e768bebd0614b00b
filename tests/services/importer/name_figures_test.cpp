// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/NameFigures.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace {

// "ex640 em700", "t12.5" and so on; doubts as "?".
QString figuresOf(const QString& name)
{
    static const QStringList kinds{"ex", "em", "t", "T", "frame", "int", "x", "y"};
    const NameFigures read = NameFigures::read(name, "name");
    QStringList parts;
    for (const Figure& figure : read.figures) {
        parts.append(kinds.value(figure.kind) + QString::number(figure.value));
    }
    for (int i = 0; i < read.doubts.size(); ++i) {
        parts.append("?");
    }
    return parts.join(' ');
}

struct Case
{
    const char* name;
    const char* figures;
};

class NameFiguresTest : public ::testing::TestWithParam<Case>
{
};

TEST_P(NameFiguresTest, NamesTellWhatTheySay)
{
    EXPECT_EQ(figuresOf(QString::fromUtf8(GetParam().name)), GetParam().figures) << GetParam().name;
}

INSTANTIATE_TEST_SUITE_P(
    Wavelengths, NameFiguresTest,
    ::testing::Values(Case{"ex640_em700", "ex640 em700"}, Case{"EX640EM700", "ex640 em700"},
                      Case{"Ex640nmEm700nm", "ex640 em700"}, Case{"mouse 3 exc=640 emi=700", "ex640 em700"},
                      Case{"excitation_640_emission_700_003", "ex640 em700"}, Case{"em700-ex640", "ex640 em700"},
                      Case{"640-700", "ex640 em700"}, Case{"640_700nm", "ex640 em700"},
                      Case{"Maus 640nm - 700nm x", "ex640 em700"}, Case{"640nm to 700nm", "ex640 em700"},
                      Case{"em700", "em700"}, Case{"cells 700nm", "em700"}, Case{"ex640", "ex640"},
                      Case{"mouse250_640-700", "ex640 em700"}, Case{"\xC3\xA4\xC3\xB6_ex640_em700", "ex640 em700"},
                      Case{"ex640_ex640_em700", "ex640 em700"}));

INSTANTIATE_TEST_SUITE_P(Times, NameFiguresTest,
                         ::testing::Values(Case{"t0012", "T12"}, Case{"t12.5s", "t12.5"}, Case{"time_12.5", "T12.5"},
                                           Case{"scan_250ms", "t0.25"}, Case{"t5min", "t300"}, Case{"2h", "t7200"},
                                           Case{"int2_t12.5s", "int2 t12.5"}, Case{"ex640_em700_t3s", "ex640 em700 t3"},
                                           Case{"frame12", "frame12"}, Case{"IMG_0012", "frame12"},
                                           Case{"tp3", "frame3"}, Case{"cells_0510", "frame510"},
                                           Case{"512x512", "frame512"}, Case{"t-5s", "?"}, Case{"t=-5s", "t-5"},
                                           Case{"t=-5", "?"}, Case{"t1s_t2s", "?"}));

INSTANTIATE_TEST_SUITE_P(Spots, NameFiguresTest,
                         ::testing::Values(Case{"ex640_em700_spot x-0.45 y1.60", "x-0.45 y1.6 ex640 em700"},
                                           Case{"640-700_Spot_X250_Y300", "x250 y300 ex640 em700"},
                                           Case{"700nm spot x1,y2", "x1 y2 em700"},
                                           Case{"spot x1 y2 spot x1 y3 em700", "em700 ?"}, Case{"em700 spotx", "em700"},
                                           Case{"em700 spot x1", "em700"}));

INSTANTIATE_TEST_SUITE_P(Doubts, NameFiguresTest,
                         ::testing::Values(Case{"640_700_720", "?"}, Case{"700-640", "?"}, Case{"640-640", "?"},
                                           Case{"ex640-660_em700", "em700 ?"}, Case{"ex640-700", "?"},
                                           Case{"ex640_ex650_em700", "em700 ?"}, Case{"ex640_700", "ex640 ?"},
                                           Case{"640_em700", "em700 ?"}, Case{"700nm 640nm", "?"}));

INSTANTIATE_TEST_SUITE_P(Nothing, NameFiguresTest,
                         ::testing::Values(Case{"", ""}, Case{"cells", ""}, Case{"index640b", ""},
                                           Case{"mouse640-700b", ""}, Case{"1640-1700b", ""}, Case{"hexem", ""},
                                           Case{"ex64_em70x", ""}, Case{"a 100-150 b", ""}));

} // namespace

TEST(NameFiguresTest, TheOriginTellsWhatWasRead)
{
    const NameFigures read = NameFigures::read("mouse_ex640nm_em700", "page name");
    ASSERT_EQ(read.figures.size(), 2);
    EXPECT_EQ(read.figures[0].origin, "page name: ex640nm");
    EXPECT_EQ(read.figures[1].origin, "page name: em700");
}

TEST(NameFiguresTest, ATextIsNoName)
{
    EXPECT_EQ(figuresOf("ex640_em700 " + QString(300, 'x')), QString());
}

RC_GTEST_PROP(NameFiguresLaws, EveryPairComesBackFromItsName, ())
{
    const int excitation = *rc::gen::inRange(200, 998);
    const int emission = *rc::gen::inRange(excitation + 1, 1000);
    const QString pair = QStringLiteral("%1-%2").arg(excitation).arg(emission);
    const QString named = QStringLiteral("x_ex%1_em%2_y").arg(excitation).arg(emission);
    const QString wanted = QStringLiteral("ex%1 em%2").arg(excitation).arg(emission);
    RC_ASSERT(figuresOf(pair) == wanted);
    RC_ASSERT(figuresOf(named) == wanted);
}

RC_GTEST_PROP(NameFiguresLaws, AnyTextIsReadWithoutHarm, (const std::string& text))
{
    const NameFigures read = NameFigures::read(QString::fromStdString(text), "name");
    for (const Figure& figure : read.figures) {
        RC_ASSERT(figure.value >= 0.0);
    }
}

TEST(NameFiguresTest, ASpotIsKeptAsItIsWritten)
{
    const NameFigures read = NameFigures::read("ex640_em700_spot x-0.50 y1", "name");
    ASSERT_EQ(read.figures.size(), 4);
    EXPECT_EQ(read.figures[0].kind, Figure::SpotX);
    EXPECT_EQ(read.figures[0].text, "-0.50");
    EXPECT_EQ(read.figures[1].text, "1");
}
