// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/ColorCombo.h"
#include "spectra/DefaultColors.h"
#include "spectra/colorSwatch.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QTest>
#include <QToolTip>

#include <gtest/gtest.h>

namespace {

class ColorComboTest : public ::testing::Test
{
protected:
    ColorComboTest()
    {
        for (const QString& name : defaultSpectrumColors()) {
            m_combo.addItem(colorSwatch(name), name);
        }
        m_combo.setMinimumWidth(40);
        m_combo.setCurrentText("magenta");
    }
    // What is painted with the current name, and what with none.
    bool isNamePainted()
    {
        const QImage named = m_combo.grab().toImage();
        const int nItem = m_combo.currentIndex();
        const QString name = m_combo.currentText();
        m_combo.setItemText(nItem, QString());
        const QImage bare = m_combo.grab().toImage();
        m_combo.setItemText(nItem, name);
        return named != bare;
    }

    ColorCombo m_combo;
};

TEST_F(ColorComboTest, ShowsTheNameWhereThereIsRoomForAnyOfThem)
{
    m_combo.resize(300, m_combo.sizeHint().height());
    EXPECT_TRUE(m_combo.showsNames());
    EXPECT_TRUE(isNamePainted());
    m_combo.resize(60, m_combo.sizeHint().height());
    EXPECT_FALSE(m_combo.showsNames());
    EXPECT_FALSE(isNamePainted());
}

TEST_F(ColorComboTest, WhateverTheColorAllOfOneWidthShowTheirNamesOrNone)
{
    int nWidth = 60;
    m_combo.resize(nWidth, m_combo.sizeHint().height());
    while (!m_combo.showsNames()) {
        m_combo.resize(++nWidth, m_combo.sizeHint().height());
    }
    for (const QString& name : defaultSpectrumColors()) {
        m_combo.setCurrentText(name);
        m_combo.resize(nWidth, m_combo.height());
        EXPECT_TRUE(isNamePainted()) << name.toStdString();
        m_combo.resize(nWidth - 1, m_combo.height());
        EXPECT_FALSE(m_combo.showsNames()) << name.toStdString();
    }
    m_combo.setCurrentText("red");
    EXPECT_FALSE(isNamePainted());
}

TEST_F(ColorComboTest, NamesThatDropDownAreWhole)
{
    m_combo.resize(60, m_combo.sizeHint().height());
    m_combo.show();
    m_combo.showPopup();
    EXPECT_GE(m_combo.view()->viewport()->width(), m_combo.view()->sizeHintForColumn(0));
    m_combo.hidePopup();
}

TEST_F(ColorComboTest, TheToolTipIsTheNameOfTheCurrentColor)
{
    m_combo.resize(60, m_combo.sizeHint().height());
    m_combo.show();
    QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), m_combo.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&m_combo, &help);
    EXPECT_EQ(QToolTip::text(), "magenta");
    QToolTip::hideText();
}

} // namespace
