// SPDX-License-Identifier: GPL-3.0-or-later
// What a host sees of the plug-in before it opens anything.
#include "LoadedPlugin.h"

#include <QJsonObject>
#include <QProcess>
#include <QSignalSpy>

using namespace loaded;

// Structures of the host that are only handed on.
struct downloaded_save_data
{
};
struct SSpecUnmixControls
{
};

namespace {

using IdentityTest = LoadedPlugin;

TEST_F(IdentityTest, TheMetadataNameInterfaceAndClass)
{
    const QJsonObject data = m_loader.metaData();
    EXPECT_EQ(data.value("IID").toString(), "hal.orvia.orvspum");
    EXPECT_EQ(data.value("className").toString(), "CORVSpumKyvoPalettePlugin");
    EXPECT_EQ(data.value("MetaData").toObject(), QJsonObject());
    EXPECT_TRUE(data.contains("version"));
    EXPECT_TRUE(data.contains("debug"));
}

TEST_F(IdentityTest, TheObjectAnswersToTheInterfaceOfPalettes)
{
    EXPECT_NE(m_pPlugin->qt_metacast("com.Halden.Orvia.CORVToolPalettePluginBase/1.0"), nullptr);
    EXPECT_STREQ(m_pPlugin->metaObject()->className(), "CORVSpumKyvoPalettePlugin");
    EXPECT_EQ(m_pPlugin->qt_metacast("CORVSpumKyvo"), nullptr);
}

// Beside the two entry points only what the linker marks.
TEST_F(IdentityTest, NothingButTheEntryPointsIsExported)
{
    QProcess nm;
    nm.start("nm", {"-D", "--defined-only", ORV_PLUGIN_FILE});
    ASSERT_TRUE(nm.waitForFinished());
    QStringList names;
    for (const QString& line : QString::fromLocal8Bit(nm.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts)) {
        const QString strName = line.section(' ', -1);
        if (!QStringList{"_init", "_fini", "_edata", "_end", "__bss_start"}.contains(strName)) {
            names << strName;
        }
    }
    names.sort();
    EXPECT_EQ(names, (QStringList{"qt_plugin_instance", "qt_plugin_query_metadata"}));
}

TEST_F(IdentityTest, NamesAndKindAreTold)
{
    EXPECT_EQ(m_pPlugin->pluginName(), "Spectral Unmixing and KyVo");
    EXPECT_EQ(m_pPlugin->shortName(), "Spectral Unmixing");
    EXPECT_EQ(m_pPlugin->pluginTypeCode(), 6);
    EXPECT_TRUE(m_pPlugin->isEnabledByDefault());
    EXPECT_FALSE(m_pPlugin->hasMenuBasedAction());
    EXPECT_EQ(m_pPlugin->pluginMenu(), nullptr);
    EXPECT_EQ(m_pPlugin->pluginAction(), nullptr);
}

// Eight rows of connections, made once; the one that names what there is not is none.
TEST_F(IdentityTest, ThePaletteIsMadeAndConnectedOnce)
{
    EXPECT_EQ(m_pPlugin->paletteWidget(), m_pPalette);
    EXPECT_EQ(m_pPalette->parent(), nullptr);
    QSignalSpy told(m_pPlugin, SIGNAL(updatePluginValidity(QWidget*, bool)));
    ASSERT_TRUE(
        QMetaObject::invokeMethod(m_pPalette, "updateValidity", Q_ARG(QWidget*, m_pPalette), Q_ARG(bool, true)));
    EXPECT_EQ(told.count(), 1);
}

TEST_F(IdentityTest, RequestsOfThePaletteReachTheHost)
{
    ESTATUS eStatus = ESTATUS_FAILURE;
    QStringList heard;
    QObject::connect(m_pPlugin, &CORVToolPalettePluginBase::createSequence,
                     [&](const QStringList& folders, bool bShow) { heard << folders.join("+") + (bShow ? "!" : ""); });
    QObject::connect(m_pPlugin, &CORVToolPalettePluginBase::printPixmap, [&](const QPixmap& pixmap, bool bShow) {
        heard << QString("print %1 %2").arg(pixmap.width()).arg(bShow);
    });
    QObject::connect(m_pPlugin, &CORVToolPalettePluginBase::restoreWindowsToMain,
                     [&](bool bBack) { heard << (bBack ? "unlock" : "lock"); });
    QObject::connect(
        m_pPlugin, &CORVToolPalettePluginBase::changeSeqWndUnit,
        [&](const QString& strId, EDISPLAYUNIT eUnit) { heard << QString("%1 %2").arg(strId).arg(eUnit); });
    QObject::connect(m_pPlugin, &CORVToolPalettePluginBase::signalLoadFile,
                     [&](const QString& strPath, bool bShow, ESTATUS* pStatus, downloaded_save_data* pData) {
                         *pStatus = ESTATUS_SUCCESS;
                         heard << QString("load %1 %2 %3").arg(strPath).arg(bShow).arg(pData == nullptr);
                     });
    const auto raise = [this](const char* pSignal, auto... arguments) {
        return QMetaObject::invokeMethod(m_pPalette, pSignal, Qt::DirectConnection, arguments...);
    };
    EXPECT_TRUE(raise("createSpumKyvoSequence", Q_ARG(QStringList, (QStringList{"a", "b"})), Q_ARG(bool, false)));
    EXPECT_TRUE(raise("printPixmap", Q_ARG(QPixmap, QPixmap(7, 2))));
    EXPECT_TRUE(raise("restoreWindows", Q_ARG(bool, false)));
    EXPECT_TRUE(raise("changeSequenceWindowUnit", Q_ARG(QString, "id"), Q_ARG(EDISPLAYUNIT, DISPLAYUNIT_RADIANCE)));
    EXPECT_TRUE(raise("loadSpumResult", Q_ARG(QString, "/x"), Q_ARG(bool, true), Q_ARG(ESTATUS*, &eStatus),
                      Q_ARG(downloaded_save_data*, nullptr)));
    EXPECT_EQ(heard, (QStringList{"a+b", "print 7 1", "lock", "id 1", "load /x 1 1"}));
    EXPECT_EQ(eStatus, ESTATUS_SUCCESS);
    m_pPlugin->onSignalLoadFile("/y", false, &eStatus);
    EXPECT_EQ(heard.last(), "load /y 0 1");
}

TEST_F(IdentityTest, NothingOpenIsNoReasonToFail)
{
    QSignalSpy told(m_pPlugin, SIGNAL(updatePluginValidity(QWidget*, bool)));
    QSignalSpy printed(m_pPlugin, SIGNAL(printPixmap(QPixmap, bool)));
    QSignalSpy previewed(m_pPlugin, SIGNAL(printPreview(QPixmap, bool)));
    m_pPlugin->onSignalSequenceAdded(nullptr);
    m_pPlugin->onSignalSequenceRemoved(nullptr);
    m_pPlugin->onSignalDatasetRemoved(nullptr);
    EXPECT_EQ(told.count(), 0);
    m_pPlugin->onSignalSequenceChanged(nullptr);
    m_pPlugin->onSignalDatasetChanged(nullptr);
    ASSERT_EQ(told.count(), 2);
    EXPECT_EQ(told.last().at(1).toBool(), false);
    m_pPlugin->onSignalGetPrintPixmap(false);
    m_pPlugin->onSignalGetPrintPixmap(true);
    EXPECT_EQ(printed.count() + previewed.count(), 0);
    m_pPlugin->onSignalROIModified("roi");
    m_pPlugin->onSignalROIDeleted();
    m_pPlugin->onSignalupdateROIList();
    m_pPlugin->onSignalUpdateSPUMTools(nullptr);
    m_pPlugin->onAdvancedOptionChanged(true);
    m_pPlugin->onSignalBinningChanged(true);
    m_pPlugin->onSignalCopyToClipboard("Unmixing");
    m_pPlugin->onSignalAskToSaveResults();
    EXPECT_TRUE(m_answers.asked.isEmpty());
}

// Before its palette is asked for, a plug-in does nothing.
TEST_F(IdentityTest, WithoutAPaletteNothingIsForwarded)
{
    delete m_pPlugin;
    m_pPlugin = qobject_cast<CORVToolPalettePluginBase*>(m_loader.instance());
    ASSERT_NE(m_pPlugin, nullptr);
    QSignalSpy told(m_pPlugin, SIGNAL(updatePluginValidity(QWidget*, bool)));
    CORVSequenceDataset sequence;
    m_pPlugin->onSignalSequenceAdded(&sequence);
    m_pPlugin->onSignalSequenceChanged(&sequence);
    m_pPlugin->onSignalDatasetChanged(nullptr);
    m_pPlugin->onSignalUpdatePluginPalette("Unmixing");
    m_pPlugin->onSignalSequenceRemoved(&sequence);
    m_pPlugin->onSignalGetPrintPixmap(true);
    m_pPlugin->onLoadUnmixDlg();
    Q_EMIT sequence.sequencePropertyChanged(&sequence);
    EXPECT_EQ(told.count(), 0);
}

} // namespace
