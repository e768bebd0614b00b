// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVToolPalettePluginBase.h"

#include <QWidget>

#include <cstring>
#include <gtest/gtest.h>

// Connections by pointer want to see what the host keeps to itself.
struct downloaded_save_data
{
};

namespace {

using Base = CORVToolPalettePluginBase;

// The plug-in that overrides only what it must.
class PlainPlugin : public Base
{
public:
    QWidget* paletteWidget() override { return &m_palette; }
    QString pluginName() override { return QStringLiteral("plain"); }
    int pluginTypeCode() override { return 1; }
    QString shortName() override { return QStringLiteral("p"); }
    bool isEnabledByDefault() override { return false; }

private:
    QWidget m_palette;
};

// Where a virtual operation stands in the table: by the common ABI of the platform's compilers a pointer to a virtual
// member holds its offset plus one.
template <typename Function>
int slotOf(Function pFunction)
{
    std::ptrdiff_t offset = 0;
    std::memcpy(&offset, &pFunction, sizeof offset);
    return static_cast<int>((offset - 1) / static_cast<std::ptrdiff_t>(sizeof(void*)));
}

TEST(PluginBaseTest, TheHostFindsTheOperationsInTheirOrder)
{
    using LoadFile = void (Base::*)(QString, bool, ESTATUS*, downloaded_save_data*);
    using LoadFileShort = void (Base::*)(QString, bool, ESTATUS*);
    using CreateOne = void (Base::*)(QString, bool);
    using CreateMany = void (Base::*)(QStringList, bool);
    const std::vector<int> places = {slotOf(&Base::paletteWidget),
                                     slotOf(&Base::pluginName),
                                     slotOf(&Base::pluginTypeCode),
                                     slotOf(&Base::executePlugin),
                                     slotOf(&Base::shortName),
                                     slotOf(&Base::isEnabledByDefault),
                                     slotOf(&Base::defaultVisibilityForPluggin),
                                     slotOf(&Base::hasMenuBasedAction),
                                     slotOf(&Base::pluginMenu),
                                     slotOf(&Base::pluginAction),
                                     slotOf(&Base::pluginIcon),
                                     slotOf(&Base::PluginMenuItem),
                                     slotOf(&Base::MenuItemBefore),
                                     slotOf(&Base::onSignalDatasetChanged),
                                     slotOf(&Base::onSignalSequenceChanged),
                                     slotOf(&Base::onSignalDatasetRemoved),
                                     slotOf(&Base::onSignalSequenceAdded),
                                     slotOf(&Base::onSignalSequenceRemoved),
                                     slotOf(&Base::onSignalROIModified),
                                     slotOf(&Base::onSignalROIDeleted),
                                     slotOf(&Base::onSignalupdateROIList),
                                     slotOf(&Base::onSignalUpdatePluginPalette),
                                     slotOf(&Base::onAdvancedOptionChanged),
                                     slotOf(&Base::onSignalUpdateValidity),
                                     slotOf(&Base::onSignalSelectOrganDatabase),
                                     slotOf(&Base::onSignalAskToSaveResults),
                                     slotOf(static_cast<LoadFile>(&Base::onSignalLoadFile)),
                                     slotOf(static_cast<LoadFileShort>(&Base::onSignalLoadFile)),
                                     slotOf(&Base::signalChangeSeqWndUnit),
                                     slotOf(static_cast<CreateOne>(&Base::signalCreateSequence)),
                                     slotOf(&Base::onSignalBinningChanged),
                                     slotOf(&Base::onSignalUpdateSPUMTools),
                                     slotOf(&Base::onSignalAddWidgetToWorkspace),
                                     slotOf(&Base::onSignalMakeMeasurement),
                                     slotOf(&Base::onSignalCopyToClipboard),
                                     slotOf(&Base::onSignal3DViewChanged),
                                     slotOf(&Base::onSignalApplyQuantificationResult),
                                     slotOf(&Base::onSignalDatabaseChanged),
                                     slotOf(&Base::onSignalGetPrintPixmap),
                                     slotOf(&Base::onHideAllGraphWindows),
                                     slotOf(&Base::onSignal3DSceneChanged),
                                     slotOf(&Base::onSignalTransformObjectChanged),
                                     slotOf(&Base::onRestoreWindows),
                                     slotOf(&Base::onLoadUnmixDlg),
                                     slotOf(&Base::onDatasetSavedSignal),
                                     slotOf(&Base::onLoadResultsSignal),
                                     slotOf(&Base::onToolPalettePluginStatusModified),
                                     slotOf(static_cast<CreateMany>(&Base::signalCreateSequence)),
                                     slotOf(&Base::onSignalPrintPixmap)};
    ASSERT_EQ(places.size(), 49u);
    // Behind those of QObject without a gap.
    EXPECT_GT(places.front(), slotOf(&QObject::eventFilter));
    for (std::size_t i = 1; i < places.size(); ++i) {
        EXPECT_EQ(places[i], places[i - 1] + 1) << i;
    }
}

TEST(PluginBaseTest, AnswersToTheInterfaceOfPalettes)
{
    PlainPlugin plugin;
    QObject* pObject = &plugin;
    EXPECT_STREQ(qobject_interface_iid<Base*>(), "com.Halden.Orvia.CORVToolPalettePluginBase/1.0");
    EXPECT_EQ(pObject->metaObject()->superClass()->className(), QByteArray("QObject"));
    EXPECT_EQ(dynamic_cast<Base*>(pObject), &plugin);
}

TEST(PluginBaseTest, WhatIsNotOverriddenIsPlain)
{
    PlainPlugin plugin;
    EXPECT_TRUE(plugin.defaultVisibilityForPluggin());
    EXPECT_FALSE(plugin.hasMenuBasedAction());
    EXPECT_EQ(plugin.pluginMenu(), nullptr);
    EXPECT_EQ(plugin.pluginAction(), nullptr);
    EXPECT_TRUE(plugin.pluginIcon().isNull());
    EXPECT_TRUE(plugin.PluginMenuItem().isEmpty());
    EXPECT_TRUE(plugin.MenuItemBefore().isEmpty());
}

TEST(PluginBaseTest, WhatIsNotOverriddenRaisesNoSignal)
{
    PlainPlugin plugin;
    int nRaised = 0;
    const auto count = [&nRaised] { ++nRaised; };
    QObject::connect(&plugin, &Base::updatePluginValidity, count);
    QObject::connect(&plugin, &Base::signalLoadFile, count);
    QObject::connect(&plugin, &Base::changeSeqWndUnit, count);
    QObject::connect(&plugin, &Base::createSequence, count);
    QObject::connect(&plugin, &Base::printPixmap, count);
    QObject::connect(&plugin, &Base::printPreview, count);
    QObject::connect(&plugin, &Base::restoreWindowsToMain, count);
    plugin.executePlugin();
    plugin.onSignalDatasetChanged(nullptr);
    plugin.onSignalSequenceChanged(nullptr);
    plugin.onSignalUpdateValidity(nullptr, true);
    plugin.onSignalLoadFile(QString(), true, nullptr);
    plugin.onSignalLoadFile(QString(), true, nullptr, nullptr);
    plugin.signalChangeSeqWndUnit(QString(), DISPLAYUNIT_COUNTS);
    plugin.signalCreateSequence(QString(), true);
    plugin.signalCreateSequence(QStringList(), true);
    plugin.onSignalGetPrintPixmap(true);
    plugin.onSignalPrintPixmap(QPixmap());
    plugin.onRestoreWindows(true);
    EXPECT_EQ(nRaised, 0);
    Q_EMIT plugin.restoreWindowsToMain(true);
    EXPECT_EQ(nRaised, 1);
}

// Connections by text find only what the meta-object spells in the same words.
TEST(PluginBaseTest, ItsSignalsAndSlotsAreSpelledForConnectionsByText)
{
    const QMetaObject& meta = Base::staticMetaObject;
    for (const char* pSignal :
         {"updatePluginValidity(QWidget*,bool)", "signalLoadFile(QString,bool,ESTATUS*,downloaded_save_data*)",
          "changeSeqWndUnit(QString,EDISPLAYUNIT)", "createSequence(QStringList,bool)", "printPixmap(QPixmap,bool)",
          "printPreview(QPixmap,bool)", "restoreWindowsToMain(bool)"}) {
        EXPECT_GE(meta.indexOfSignal(pSignal), 0) << pSignal;
    }
    for (const char* pSlot :
         {"onSignalUpdateValidity(QWidget*,bool)", "onSignalLoadFile(QString,bool,ESTATUS*,downloaded_save_data*)",
          "onSignalLoadFile(QString,bool,ESTATUS*)", "signalChangeSeqWndUnit(QString,EDISPLAYUNIT)",
          "signalCreateSequence(QStringList,bool)", "onSignalPrintPixmap(QPixmap)", "onRestoreWindows(bool)",
          "onSignalAskToSaveResults()"}) {
        EXPECT_GE(meta.indexOfSlot(pSlot), 0) << pSlot;
    }
}

} // namespace
