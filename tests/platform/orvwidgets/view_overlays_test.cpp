// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/viewOverlays.h"

#include "windows/compositeControls.h"

#include <QFont>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace {

// What is asked of bold text.
constexpr double kLeastContrast = 3.0;

QColor over(const QColor& outline, int nPaper)
{
    const double a = outline.alphaF();
    const auto mixed = [&](int c) { return qRound(a * c + (1.0 - a) * nPaper); };
    return {mixed(outline.red()), mixed(outline.green()), mixed(outline.blue())};
}

TEST(OutlineTest, IsDarkAroundLightTextAndLightAroundDarkText)
{
    for (const char* light : {"white", "yellow", "lime", "cyan", "orange", "pink"}) {
        EXPECT_LT(orvwidgets::outlineOf(light).lightness(), 50) << light;
    }
    for (const char* dark : {"black", "blue", "navy", "maroon", "purple", "darkgreen"}) {
        EXPECT_GT(orvwidgets::outlineOf(dark).lightness(), 200) << dark;
    }
}

TEST(OutlineTest, StandsOffEveryColorOnEveryPicture)
{
    constexpr int kStep = 15;
    for (int red = 0; red <= 255; red += kStep) {
        for (int green = 0; green <= 255; green += kStep) {
            for (int blue = 0; blue <= 255; blue += kStep) {
                const QColor text(red, green, blue);
                for (const int nPaper : {0, 128, 255}) {
                    EXPECT_GE(contrast(text, over(orvwidgets::outlineOf(text), nPaper)), kLeastContrast)
                        << red << " " << green << " " << blue << " on " << nPaper;
                }
            }
        }
    }
}

// A text of the colour of what it lies on is read by its outline.
TEST(OutlineTest, IsDrawnAroundTheText)
{
    for (const char* color : {"black", "blue", "red", "white"}) {
        QImage picture(120, 40, QImage::Format_RGB32);
        picture.fill(QColor(color));
        QPainter painter(&picture);
        QFont font;
        font.setBold(true);
        font.setPixelSize(16);
        orvwidgets::paintOutlinedText(painter, QPointF(10, 25), "Cy5", font, color);
        painter.end();
        int nOutline = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                nOutline += contrast(picture.pixelColor(x, y), color) >= kLeastContrast ? 1 : 0;
            }
        }
        EXPECT_GT(nOutline, 100) << color;
    }
}

} // namespace
