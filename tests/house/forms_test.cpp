// SPDX-License-Identifier: GPL-3.0-or-later
// What the build makes of a form compiles under the warnings of the project and keeps the texts as they stand.
#include "house/ui_odd_texts.h"

#include <QWidget>

#include <gtest/gtest.h>

TEST(FormsTest, TextsKeepTheirBlanks)
{
    QWidget widget;
    Ui::OddTexts form;
    form.setupUi(&widget);
    EXPECT_EQ(widget.windowTitle(), "  two blanks ahead, two behind  ");
    EXPECT_EQ(form.m_pLabel->text(), QString::fromUtf8(" Mean  (&p/s)\t<cm\xC2\xB2>: "));
    EXPECT_EQ(form.m_pCombo->itemText(0), "Time(hh:mm:ss) ");
    EXPECT_EQ(form.m_pSpin->suffix(), " %");
    EXPECT_EQ(form.m_pSpin->maximum(), 1e9);
}
