// SPDX-License-Identifier: GPL-3.0-or-later
#include "end_to_end/WorkbenchFixture.h"

#include <filesystem>
#include <iostream>

void WorkbenchFixture::SetUp()
{
    m_pProgram = std::make_unique<DrivenProgram>(QStringLiteral(ORV_BINARY_DIR "/bin/spum-workbench"));
}

void WorkbenchFixture::TearDown()
{
    const QString strErrors = m_pProgram->standardError();
    EXPECT_FALSE(strErrors.contains("QObject::connect")) << strErrors.toStdString();
    EXPECT_FALSE(strErrors.contains("QObject::~")) << strErrors.toStdString();
    EXPECT_FALSE(m_pProgram->crashed()) << strErrors.toStdString();
    if (HasFailure()) {
        const auto* pTest = ::testing::UnitTest::GetInstance()->current_test_info();
        m_pProgram->picture(QStringLiteral("end_to_end/failed/%1.png").arg(pTest->name()));
        std::cerr << strErrors.toStdString();
    }
}

QString WorkbenchFixture::copyOf(const QString& strFolder, const QString& strName)
{
    const QString strCopy = m_work.filePath(strName);
    std::filesystem::copy(strFolder.toStdString(), strCopy.toStdString(), std::filesystem::copy_options::recursive);
    return strCopy;
}

void WorkbenchFixture::startProgram(const QStringList& arguments)
{
    ASSERT_TRUE(program().start(arguments)) << program().standardError().toStdString();
    ASSERT_TRUE(program().waitFor("mainWindow")) << program().standardError().toStdString();
}

void WorkbenchFixture::startOn(const Screen& screen)
{
    program().setVariable("QT_SCALE_FACTOR", screen.scale);
    startProgram({});
    if (screen.dark) {
        program().call({{"do", "dark"}});
    }
    program().call({{"do", "resize"}, {"widget", "mainWindow"}, {"size", QJsonArray{screen.width, screen.height}}});
}

bool WorkbenchFixture::openWizard(const QString& strMethod)
{
    program().call({{"do", "tab"}, {"widget", "tabWidget1"}, {"text", "Analyze"}});
    if (!program().waitFor("m_pWaveLengthTable/.QCheckBox") ||
        !program().call({{"do", "choose"}, {"widget", "m_pUnmixingMethodsCMB"}, {"text", strMethod}})["ok"].toBool() ||
        !program().waitUntil([&] { return text("m_pUnmixingMethodsCMB") == strMethod; }) ||
        !program().click("m_pUnmixSpectraButton")) {
        return false;
    }
    const bool bOpen = program().waitUntil([&] {
        if (program().isVisible(".QMessageBox")) {
            program().click(".QMessageBox/.QPushButton[No]");
        }
        return program().isVisible("SpUnmixWizardWnd");
    });
    program().call({{"do", "quiet"}, {"ms", 100}});
    return bOpen;
}

bool WorkbenchFixture::finishWizard()
{
    const bool bDone = program().waitUntilEnabled("qt_wizard_finish") && program().click("qt_wizard_finish") &&
                       program().waitFor("DistributionView", 120000) && program().waitFor("m_pSPUnResultsLV", 120000) &&
                       program().waitUntilEnabled("tabWidget1");
    program().call({{"do", "quiet"}, {"ms", 100}});
    return bDone;
}

bool WorkbenchFixture::openComposite()
{
    // It is the last tile of the grid.
    const QJsonArray place = program().state("DistributionView")["place"].toArray();
    for (int nX = place[2].toInt() - 20; nX > 0; nX -= 40) {
        for (int nY = place[3].toInt() - 20; nY > 0; nY -= 40) {
            const QJsonArray at{nX, nY};
            const QJsonObject tip = program().call({{"do", "tip"}, {"widget", "DistributionView"}, {"at", at}});
            if (tip["text"].toString().startsWith("Composite")) {
                program().click("DistributionView", {{"at", at}, {"double", true}});
                return program().waitFor("m_pImageList", 10000);
            }
        }
    }
    return false;
}

bool WorkbenchFixture::openCube()
{
    program().call({{"do", "tab"}, {"widget", "sequenceTabs"}, {"text", "Unmixing"}});
    program().call({{"do", "tab"}, {"widget", "m_pImageTabWidget"}, {"text", "ImageCube"}});
    const bool bOpen = program().waitFor("m_pVideoCheckBox") && program().click("m_pVideoCheckBox");
    program().call({{"do", "quiet"}, {"ms", 100}});
    return bOpen;
}

QStringList WorkbenchFixture::rowNames()
{
    QStringList names;
    for (const QJsonValue& row :
         program()
             .call({{"do", "find"}, {"widget", "m_pGBSpectrumList/.NameEdit"}, {"all", true}})["found"]
             .toArray()) {
        names.append(row.toObject()["text"].toString());
    }
    return names;
}
