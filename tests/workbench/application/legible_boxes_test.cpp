// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/LegibleBoxes.h"

#include "support/darkPalette.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOptionButton>
#include <QStyleOptionViewItem>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

constexpr int kSide = 13;
constexpr int kRoom = 21;
// W3C, Web Content Accessibility Guidelines 2.1, 1.4.11: of controls against what is around them.
constexpr double kLegible = 3.0;

// Relative luminance, as the guidelines define it.
double luminance(const QColor& color)
{
    const auto linear = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return std::max(first / second, second / first);
}

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

// The box in the middle of a piece of window.
QImage drawn(const QStyle& style, const Box& box, const QPalette& palette)
{
    QImage image(kRoom, kRoom, QImage::Format_RGB32);
    image.fill(palette.color(QPalette::Window));
    QPainter painter(&image);
    const auto draw = [&](QStyleOption& option) {
        option.palette = palette;
        option.state = box.state;
        const int margin = (kRoom - kSide) / 2;
        option.rect = QRect(margin, margin, kSide, kSide);
        style.drawPrimitive(box.element, &option, &painter);
    };
    if (box.element == QStyle::PE_IndicatorItemViewItemCheck) {
        QStyleOptionViewItem option;
        draw(option);
    } else {
        QStyleOptionButton option;
        draw(option);
    }
    return image;
}

// Of the outline against the window: the best that a line of pixels from the left meets on its way into the box.
double outlineContrast(const QImage& image, const QPalette& palette)
{
    double best = 1.0;
    for (int x = 0; x < kRoom / 2 - 2; ++x) {
        best = std::max(best, contrast(image.pixelColor(x, kRoom / 2), palette.color(QPalette::Window)));
    }
    return best;
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
    EXPECT_GE(outlineContrast(drawn(m_legible, GetParam(), dark), dark), kLegible);
}

TEST_P(LegibleBoxesTest, ALightPaletteLooksAsTheStyleHasIt)
{
    const QPalette light(QColor(239, 239, 239));
    EXPECT_GT(outlineContrast(drawn(*m_own, GetParam(), light), light), 1.0) << "nothing is drawn";
    EXPECT_EQ(drawn(m_legible, GetParam(), light), drawn(*m_own, GetParam(), light));
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
