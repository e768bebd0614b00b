// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/NameEdit.h"

#include "spectra/SpumKyvoSpectrumCtrl.h"

#include <QComboBox>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

const QString longName = QStringLiteral("AlexaFluor 750 in the left kidney of animal 12");

// A window with two lines, of which the first has the keyboard.
class TwoLines
{
public:
    TwoLines()
    {
        auto* pLayout = new QHBoxLayout(&window);
        first = new NameEdit(QStringLiteral("one"), &window);
        second = new NameEdit(QStringLiteral("two"), &window);
        pLayout->addWidget(first);
        pLayout->addWidget(second);
        window.show();
        QApplication::setActiveWindow(&window);
        first->setFocus();
    }
    QWidget window;
    NameEdit* first = nullptr;
    NameEdit* second = nullptr;
};

} // namespace

TEST(NameEditTest, LeavingTheLineTellsItsText)
{
    TwoLines lines;
    ASSERT_TRUE(lines.first->hasFocus());
    QSignalSpy spy(lines.first, SIGNAL(focusOut(QString)));
    lines.first->clear();
    EXPECT_EQ(spy.count(), 0);
    lines.second->setFocus();
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy.first().first().toString(), QString());
    lines.first->setFocus();
    QTest::keyClicks(lines.first, "Dye 7");
    QTest::keyClick(lines.first, Qt::Key_Tab);
    ASSERT_EQ(spy.count(), 2);
    EXPECT_EQ(spy.at(1).first().toString(), "Dye 7");
}

TEST(NameEditTest, ItsMenuDoesNotCountAsLeaving)
{
    TwoLines lines;
    QSignalSpy spy(lines.first, &NameEdit::focusOut);
    QFocusEvent menu(QEvent::FocusOut, Qt::PopupFocusReason);
    QApplication::sendEvent(lines.first, &menu);
    EXPECT_EQ(spy.count(), 0);
}

TEST(NameEditTest, ALongNameShowsItsStartUnlessItIsTyped)
{
    TwoLines lines;
    lines.second->setText(longName);
    EXPECT_EQ(lines.second->cursorPosition(), 0);
    lines.first->clear();
    QTest::keyClicks(lines.first, longName);
    EXPECT_EQ(lines.first->cursorPosition(), longName.size());
    lines.second->setFocus();
    EXPECT_EQ(lines.first->cursorPosition(), 0);
    const NameEdit alone(longName);
    EXPECT_EQ(alone.cursorPosition(), 0);
}

TEST(NameEditTest, TheToolTipIsTheWholeNameAsItStands)
{
    NameEdit edit(longName);
    EXPECT_EQ(edit.toolTip(), longName);
    edit.setText("A & B");
    EXPECT_EQ(edit.toolTip(), "A & B");
    edit.setText("<b>bold</b>");
    EXPECT_EQ(edit.toolTip(), "<span>&lt;b&gt;bold&lt;/b&gt;</span>");
}

// The list of spectra beside the images is some 300 pixels wide.
TEST(NameEditTest, InANarrowRowTheNameHasTheMostRoom)
{
    for (const bool withImport : {true, false}) {
        QWidget window;
        SpumKyvoSpectrumCtrl row(&window, withImport, true);
        window.setLayout(row.m_pLayout);
        row.m_pNameEdit->setText("AlexaFluor 750");
        window.resize(300, window.sizeHint().height());
        window.show();
        ASSERT_EQ(window.width(), 300);
        EXPECT_GE(row.m_pNameEdit->width(), 120);
        EXPECT_GE(row.m_pNameEdit->width(), row.m_pNameEdit->fontMetrics().horizontalAdvance("AlexaFluor 750"));
        EXPECT_GE(row.m_pColorCombo->width(), row.m_pColorCombo->iconSize().width() + 24);
        EXPECT_EQ(row.m_pColorCombo->minimumContentsLength(), 15);
        // With room enough the colour has its name too.
        window.resize(600, window.height());
        QCoreApplication::processEvents();
        const int text = row.m_pColorCombo->fontMetrics().horizontalAdvance(QStringLiteral("magenta"));
        EXPECT_GE(row.m_pColorCombo->width(), row.m_pColorCombo->iconSize().width() + 32 + text);
        EXPECT_GE(row.m_pNameEdit->width(), 2 * row.m_pColorCombo->width() - 2);
    }
}
