// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/SpumKyvoSpectrumCtrl.h"

#include "spectra/DefaultColors.h"
#include "spectra/NameEdit.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPixmap>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include <memory>

#include <gtest/gtest.h>

namespace {

QImage picture(const QIcon& icon)
{
    return icon.pixmap(16, 16).toImage();
}

QStringList actionTexts(const QMenu& menu)
{
    QStringList texts;
    for (const QAction* action : menu.actions()) {
        texts.append(action->text());
    }
    return texts;
}

} // namespace

TEST(SpumKyvoSpectrumCtrlTest, LaysOutTheWidgetsInOrder)
{
    const SpumKyvoSpectrumCtrl row(nullptr, true, true);
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    row.m_pLayout->getContentsMargins(&left, &top, &right, &bottom);
    EXPECT_EQ(left, 3);
    EXPECT_EQ(top, 0);
    EXPECT_EQ(right, 3);
    EXPECT_EQ(bottom, 0);
    EXPECT_EQ(row.m_pLayout->spacing(), 3);
    ASSERT_EQ(row.m_pLayout->count(), 5);
    EXPECT_EQ(row.m_pLayout->itemAt(0)->widget(), row.m_pIndexLabel);
    EXPECT_EQ(row.m_pLayout->itemAt(1)->widget(), row.m_pSelectBox);
    EXPECT_EQ(row.m_pLayout->itemAt(2)->widget(), row.m_pNameEdit);
    EXPECT_EQ(row.m_pLayout->itemAt(3)->widget(), row.m_pColorCombo);
    EXPECT_EQ(row.m_pLayout->itemAt(4)->widget(), row.m_pToolButton);
}

TEST(SpumKyvoSpectrumCtrlTest, StartsWithTheDefaults)
{
    const SpumKyvoSpectrumCtrl row(nullptr, true, true);
    EXPECT_FALSE(row.m_pIndexLabel->isEnabled());
    EXPECT_FALSE(row.m_pSelectBox->isChecked());
    EXPECT_EQ(row.m_pNameEdit->text(), "NoName");
    EXPECT_FALSE(row.m_pNameEdit->isEnabled());
    EXPECT_EQ(row.m_pColorCombo->minimumContentsLength(), 15);
    EXPECT_EQ(row.m_pToolButton->popupMode(), QToolButton::MenuButtonPopup);
    EXPECT_TRUE(row.m_pToolButton->autoRaise());
    EXPECT_EQ(row.m_pToolButton->menu(), row.m_pToolMenu);
    EXPECT_EQ(row.m_nCurveId, -1);
    EXPECT_EQ(row.m_nCurveFlag, 0);
}

TEST(SpumKyvoSpectrumCtrlTest, OffersTheTwelveColorsWithSwatches)
{
    const SpumKyvoSpectrumCtrl row(nullptr, false, true);
    ASSERT_EQ(row.m_pColorCombo->count(), 12);
    ASSERT_EQ(row.m_colorEntries.size(), 12);
    for (int i = 0; i < 12; ++i) {
        const QString name = defaultSpectrumColors().at(i);
        EXPECT_EQ(row.m_pColorCombo->itemText(i), name);
        EXPECT_EQ(row.m_colorEntries.at(i).name, name);
        QColor color;
        color.setNamedColor(name);
        EXPECT_EQ(picture(row.m_pColorCombo->itemIcon(i)).pixelColor(8, 8), color) << qPrintable(name);
    }
}

TEST(SpumKyvoSpectrumCtrlTest, MenuHoldsTheToolsWithTheirIcons)
{
    const SpumKyvoSpectrumCtrl row(nullptr, true, true);
    EXPECT_EQ(actionTexts(*row.m_pToolMenu), (QStringList{"Thin", "Medium", "Thick", "Import"}));
    const QStringList files{":/Resource/pencilthin.xpm", ":/Resource/pencilmedium.xpm", ":/Resource/pencilthick.xpm",
                            ":/Resource/fileopen_enabled.xpm"};
    for (int i = 0; i < files.size(); ++i) {
        const QPixmap file(files.at(i));
        EXPECT_EQ(file.size(), QSize(16, 16)) << qPrintable(files.at(i));
        EXPECT_EQ(picture(row.m_pToolMenu->actions().at(i)->icon()), file.toImage()) << qPrintable(files.at(i));
    }
    EXPECT_EQ(row.m_pImportAction, row.m_pToolMenu->actions().at(3));
}

TEST(SpumKyvoSpectrumCtrlTest, MenuHasNoImportUnlessAskedFor)
{
    const SpumKyvoSpectrumCtrl row(nullptr, false, true);
    EXPECT_EQ(actionTexts(*row.m_pToolMenu), (QStringList{"Thin", "Medium", "Thick"}));
    EXPECT_TRUE(row.m_pImportAction.isNull());
}

TEST(SpumKyvoSpectrumCtrlTest, DefaultToolIsMedium)
{
    const SpumKyvoSpectrumCtrl row(nullptr, true, true);
    ASSERT_NE(row.m_pToolMenu->defaultAction(), nullptr);
    EXPECT_EQ(row.m_pToolMenu->defaultAction()->text(), "Medium");
    EXPECT_EQ(row.m_pToolButton->text(), "Medium");
    EXPECT_EQ(picture(row.m_pToolButton->icon()), QPixmap(":/Resource/pencilmedium.xpm").toImage());
    EXPECT_EQ(row.settings().shape, 1);
}

TEST(SpumKyvoSpectrumCtrlTest, ClickingTheToolTurnsItOnAndOffAndKeepsItsFace)
{
    SpumKyvoSpectrumCtrl row(nullptr, true, true);
    SpectrumSettings settings;
    settings.shape = 2;
    row.setSettings(settings);
    row.m_pToolButton->click();
    EXPECT_TRUE(row.m_pToolButton->isChecked());
    EXPECT_EQ(row.m_pToolButton->text(), "Thick");
    row.m_pToolButton->click();
    EXPECT_FALSE(row.m_pToolButton->isChecked());
    EXPECT_EQ(row.m_pToolButton->text(), "Thick");
}

TEST(SpumKyvoSpectrumCtrlTest, SelectsWithACheckBoxOrARadioButton)
{
    const SpumKyvoSpectrumCtrl multi(nullptr, true, true);
    EXPECT_NE(qobject_cast<QCheckBox*>(multi.m_pSelectBox), nullptr);
    EXPECT_TRUE(multi.m_bMultiSelect);
    const SpumKyvoSpectrumCtrl single(nullptr, true, false);
    EXPECT_NE(qobject_cast<QRadioButton*>(single.m_pSelectBox), nullptr);
    EXPECT_FALSE(single.m_bMultiSelect);
    EXPECT_FALSE(single.m_pSelectBox->isChecked());
}

TEST(SpumKyvoSpectrumCtrlTest, ShowsAndReadsBackAllSettings)
{
    SpumKyvoSpectrumCtrl row(nullptr, true, true);
    for (int i = 0; i < 12; ++i) {
        SpectrumSettings settings;
        settings.selected = i % 2 == 0;
        settings.index = i;
        settings.curveId = 100 + i;
        settings.curveFlag = i % 4;
        settings.name = QString("name %1").arg(i);
        settings.color = defaultSpectrumColors().at(i);
        settings.shape = i % 3;
        settings.enabled = i % 2 == 1;
        row.setSettings(settings);
        const SpectrumSettings read = row.settings();
        EXPECT_EQ(read.selected, settings.selected);
        EXPECT_EQ(read.index, settings.index);
        EXPECT_EQ(read.curveId, settings.curveId);
        EXPECT_EQ(read.curveFlag, settings.curveFlag);
        EXPECT_EQ(read.name, settings.name);
        EXPECT_EQ(read.color, settings.color);
        EXPECT_EQ(read.shape, settings.shape);
        EXPECT_EQ(read.enabled, settings.enabled);
    }
}

TEST(SpumKyvoSpectrumCtrlTest, ShowsTheIconOfTheShape)
{
    SpumKyvoSpectrumCtrl row(nullptr, true, true);
    const QStringList files{":/Resource/pencilthin.xpm", ":/Resource/pencilmedium.xpm", ":/Resource/pencilthick.xpm"};
    for (int shape : {0, 2, 1}) {
        SpectrumSettings settings;
        settings.shape = shape;
        row.setSettings(settings);
        EXPECT_EQ(picture(row.m_pToolButton->icon()), QPixmap(files.at(shape)).toImage());
    }
}

TEST(SpumKyvoSpectrumCtrlTest, AnUnknownColorKeepsTheCombo)
{
    SpumKyvoSpectrumCtrl row(nullptr, true, true);
    SpectrumSettings settings;
    settings.color = "gold";
    row.setSettings(settings);
    for (const char* unknown : {"purple", "", "#ff0000"}) {
        settings.color = unknown;
        row.setSettings(settings);
        EXPECT_EQ(row.settings().color, "gold") << unknown;
    }
}

TEST(SpumKyvoSpectrumCtrlTest, TheColorOfANewRecordIsFoundWhateverItsCase)
{
    SpumKyvoSpectrumCtrl row(nullptr, true, true);
    row.setSettings(SpectrumSettings());
    EXPECT_EQ(row.settings().color, "black");
}

TEST(SpumKyvoSpectrumCtrlTest, ReadsTheToolWithoutRegardToCaseAndIgnoresOtherTexts)
{
    const SpumKyvoSpectrumCtrl row(nullptr, true, true);
    row.m_pToolButton->setText("THICK");
    EXPECT_EQ(row.settings().shape, 2);
    row.m_pToolButton->setText("thin");
    EXPECT_EQ(row.settings().shape, 0);
    row.m_pToolButton->setText("Import");
    EXPECT_EQ(row.settings().shape, SpectrumSettings().shape);
}

TEST(SpumKyvoSpectrumCtrlTest, AShapeBeyondTheToolsKeepsTheFace)
{
    SpumKyvoSpectrumCtrl row(nullptr, true, true);
    SpectrumSettings settings;
    settings.shape = 0;
    row.setSettings(settings);
    settings.shape = 3;
    row.setSettings(settings);
    EXPECT_EQ(row.m_pToolButton->text(), "Thin");
    settings.shape = -1;
    row.setSettings(settings);
    EXPECT_EQ(row.m_pToolButton->text(), "Thin");
}

TEST(SpumKyvoSpectrumCtrlTest, SettingIsSilent)
{
    SpumKyvoSpectrumCtrl row(nullptr, true, true);
    QSignalSpy colors(row.m_pColorCombo, SIGNAL(currentIndexChanged(int)));
    QSignalSpy toggles(row.m_pSelectBox, SIGNAL(toggled(bool)));
    ASSERT_TRUE(colors.isValid() && toggles.isValid());
    SpectrumSettings settings;
    settings.color = "blue";
    settings.selected = true;
    row.setSettings(settings);
    EXPECT_EQ(colors.count(), 0);
    EXPECT_EQ(toggles.count(), 0);
    // The user's own changes are told as before.
    row.m_pColorCombo->setCurrentIndex(0);
    row.m_pSelectBox->click();
    EXPECT_EQ(colors.count(), 1);
    EXPECT_EQ(toggles.count(), 1);
}

TEST(SpumKyvoSpectrumCtrlTest, EnablesWithDataOrByForce)
{
    SpumKyvoSpectrumCtrl row(nullptr, true, true);
    for (const bool hasData : {true, false}) {
        for (const bool force : {true, false}) {
            row.setControlsEnabled(hasData, force);
            EXPECT_EQ(row.m_pSelectBox->isEnabled(), hasData || force);
            EXPECT_EQ(row.m_pNameEdit->isEnabled(), hasData || force);
        }
    }
}

TEST(SpumKyvoSpectrumCtrlTest, ADisabledWindowDoesNotEnterTheSettings)
{
    QWidget window;
    SpumKyvoSpectrumCtrl row(&window, true, true);
    row.setControlsEnabled(true, false);
    window.setEnabled(false);
    EXPECT_TRUE(row.settings().enabled);
}

TEST(SpumKyvoSpectrumCtrlTest, HidesTheToolAndUnchecks)
{
    for (const bool multiSelect : {true, false}) {
        SpumKyvoSpectrumCtrl row(nullptr, true, multiSelect);
        row.hide();
        EXPECT_TRUE(row.m_pToolButton->isHidden());
        row.m_pSelectBox->setChecked(true);
        row.uncheck();
        EXPECT_FALSE(row.m_pSelectBox->isChecked());
    }
}

TEST(SpumKyvoSpectrumCtrlTest, RadioButtonsOfOneListExcludeEachOtherAndCanBeUnchecked)
{
    QWidget window;
    SpumKyvoSpectrumCtrl first(&window, true, false);
    SpumKyvoSpectrumCtrl second(&window, true, false);
    first.m_pSelectBox->click();
    second.m_pSelectBox->click();
    EXPECT_FALSE(first.m_pSelectBox->isChecked());
    EXPECT_TRUE(second.m_pSelectBox->isChecked());
    second.uncheck();
    EXPECT_FALSE(second.m_pSelectBox->isChecked());
    SpectrumSettings settings;
    settings.selected = true;
    first.setSettings(settings);
    settings.selected = false;
    first.setSettings(settings);
    EXPECT_FALSE(first.m_pSelectBox->isChecked());
    first.m_pSelectBox->click();
    second.m_pSelectBox->click();
    EXPECT_FALSE(first.m_pSelectBox->isChecked());
}

TEST(SpumKyvoSpectrumCtrlTest, DestroyingARowDeletesItsWidgets)
{
    QWidget window;
    auto* pList = new QVBoxLayout(&window);
    auto row = std::make_unique<SpumKyvoSpectrumCtrl>(&window, true, true);
    pList->addLayout(row->m_pLayout);
    ASSERT_EQ(pList->count(), 1);
    ASSERT_FALSE(window.findChildren<QWidget*>().isEmpty());
    row.reset();
    EXPECT_EQ(pList->count(), 0);
    EXPECT_TRUE(window.findChildren<QWidget*>().isEmpty());
}

TEST(SpumKyvoSpectrumCtrlTest, SurvivesTheDeathOfItsWindow)
{
    auto window = std::make_unique<QWidget>();
    auto* pList = new QVBoxLayout(window.get());
    SpumKyvoSpectrumCtrl row(window.get(), true, true);
    pList->addLayout(row.m_pLayout);
    window.reset();
    EXPECT_TRUE(row.m_pLayout.isNull());
    EXPECT_TRUE(row.m_pNameEdit.isNull());
    row.setControlsEnabled(true, true);
    row.setSettings(SpectrumSettings());
    row.hide();
    row.uncheck();
    EXPECT_EQ(row.settings().shape, 1);
}

TEST(SpumKyvoSpectrumCtrlTest, AUserTypesANameAndPicksATool)
{
    QWidget window;
    SpumKyvoSpectrumCtrl row(&window, true, true);
    window.setLayout(row.m_pLayout);
    row.setControlsEnabled(true, false);
    window.show();
    row.m_pNameEdit->clear();
    QTest::keyClicks(row.m_pNameEdit, "Dye 7");
    QTest::mouseClick(row.m_pSelectBox, Qt::LeftButton, Qt::NoModifier, QPoint(8, row.m_pSelectBox->height() / 2));
    EXPECT_EQ(row.settings().name, "Dye 7");
    EXPECT_TRUE(row.settings().selected);
}
