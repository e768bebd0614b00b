// SPDX-License-Identifier: GPL-3.0-or-later
// Spectra that a user paints, keeps and unmixes with, in the window and with the command line beside it.
#include "end_to_end/WorkbenchFixture.h"
#include "end_to_end/savedDocument.h"
#include "support/simulated.h"

#include <QFile>

namespace {

class SpectraByHandTest : public WorkbenchFixture
{
protected:
    // The libraries of the user whom the driven program has.
    QString library(const QString& strName) { return program().homePath("data/orvia/data/Spum/" + strName + ".csv"); }

    bool chooseMethod(const QString& strMethod)
    {
        program().call({{"do", "tab"}, {"widget", "tabWidget1"}, {"text", "Analyze"}});
        return program().waitFor("m_pWaveLengthTable/.QCheckBox") &&
               program()
                   .call({{"do", "choose"}, {"widget", "m_pUnmixingMethodsCMB"}, {"text", strMethod}})["ok"]
                   .toBool() &&
               program().waitUntil([&] { return text("m_pUnmixingMethodsCMB") == strMethod; }) &&
               program().click("m_pUnmixSpectraButton");
    }

    // A stroke over the cube, about the middle of the view, `nBelow` below it.
    void paint(int nBelow)
    {
        const QJsonArray place = program().state("ImageCubeView")["place"].toArray();
        const int nX = place[2].toInt() / 2;
        const int nY = place[3].toInt() / 2 + nBelow;
        program().call({{"do", "drag"},
                        {"widget", "ImageCubeView"},
                        {"from", QJsonArray{nX - 20, nY}},
                        {"to", QJsonArray{nX + 20, nY}}});
    }

    bool saveLibrary(const QString& strName)
    {
        return program().click("m_pSaveDatabaseTB") && program().waitFor("fileNameEdit") &&
               program().type(strName, "fileNameEdit") && program().key("Return", "fileNameEdit") &&
               program().waitUntil([&] { return QFile::exists(library(strName)); });
    }

    // Loads the first library in the dialog that is open and goes on.
    bool applyFirstLibrary()
    {
        if (!program().waitFor("SpUnmixSpectrumLibraryWnd")) {
            return false;
        }
        program().call({{"do", "item"}, {"widget", "m_pSpumLibraryList"}, {"row", 0}});
        return program().waitUntilEnabled("m_pNextBtn") && program().click("m_pNextBtn") &&
               program().waitUntil([&] { return !program().isVisible("SpUnmixSpectrumLibraryWnd"); });
    }

    bool saveResult(const QString& strSequence)
    {
        return program().waitFor("m_pSPUnResultsLV", 60000) && program().waitUntilEnabled("m_pSaveButton") &&
               program().click("m_pSaveButton") &&
               program().waitUntil([&] { return !savedDocument(strSequence).isEmpty(); });
    }
};

TEST_F(SpectraByHandTest, PaintedRegionsBecomeALibraryThatTheCommandLineTakes)
{
    const QString strByWindow = copyOf(simulated::sequence({"--size", "128"}), "by window");
    startProgram({strByWindow});
    ASSERT_TRUE(chooseMethod("Manual"));
    ASSERT_TRUE(program().waitFor("SpumKyvoConsoleWnd"));
    program().click("m_pAddSpectrum");
    paint(0);
    program().click("m_pAddSpectrum");
    paint(90);
    program().call({{"do", "quiet"}, {"ms", 100}});
    program().picture("end_to_end/painted.png");
    ASSERT_TRUE(saveLibrary("painted spectra"));
    ASSERT_TRUE(program().waitUntilEnabled("m_pUnmixBtn"));
    program().click("m_pUnmixBtn");
    ASSERT_TRUE(program().waitFor("DistributionView", 60000));
    program().picture("end_to_end/painted_tiles.png");
    ASSERT_TRUE(chooseMethod("Library"));
    ASSERT_TRUE(program().waitFor(".QMessageBox"));
    program().click(".QMessageBox/.QPushButton[No]");
    ASSERT_TRUE(applyFirstLibrary());
    ASSERT_TRUE(saveResult(strByWindow));
    EXPECT_EQ(rowNames(), (QStringList{"UMX1", "UMX2"}));

    const QString strByCommand = copyOf(simulated::sequence({"--size", "128"}), "by command");
    runSpum({"unmix", strByCommand, "--library", library("painted spectra"), "--save", "SPUM_001"});
    EXPECT_EQ(savedDocument(strByWindow).toStdString(), savedDocument(strByCommand).toStdString());
}

TEST_F(SpectraByHandTest, ALibraryOfTheCommandLineUnmixesInTheWindowAlike)
{
    const QString strByWindow = copyOf(simulated::sequence({"--size", "128"}), "by window");
    startProgram({strByWindow});
    ASSERT_TRUE(chooseMethod("Library"));
    ASSERT_TRUE(program().waitFor("SpUnmixSpectrumLibraryWnd"));
    program().click("m_pCloseBtn");
    runSpum({"library", "save", "dyes", "--sequence", strByWindow, "--region", "Tissue=60,40,8,8", "--region",
             "Dye=48,70,6,6"},
            {{"XDG_DATA_HOME", program().homePath("data")}});
    ASSERT_TRUE(QFile::exists(library("dyes")));
    ASSERT_TRUE(chooseMethod("Library"));
    ASSERT_TRUE(applyFirstLibrary());
    ASSERT_TRUE(saveResult(strByWindow));
    program().picture("end_to_end/library_tiles.png");
    EXPECT_EQ(rowNames(), (QStringList{"Tissue", "Dye"}));

    const QString strByCommand = copyOf(simulated::sequence({"--size", "128"}), "by command");
    runSpum({"unmix", strByCommand, "--library", library("dyes"), "--save", "SPUM_001"});
    EXPECT_EQ(savedDocument(strByWindow).toStdString(), savedDocument(strByCommand).toStdString());
}

TEST_F(SpectraByHandTest, ABackgroundThatIsMarkedIsRemovedBeforeTheRun)
{
    startProgram({simulated::sequence({"--size", "128"})});
    ASSERT_TRUE(chooseMethod("Guided"));
    ASSERT_TRUE(program().waitFor("SpumKyvoConsoleWnd"));
    EXPECT_EQ(text("m_pSelectLabel").toStdString(), "Background");
    program().click("m_pAddSpectrum");
    paint(0);
    program().click("m_pAddSpectrum");
    paint(90);
    ASSERT_TRUE(program().waitUntilEnabled("m_pUnmixBtn"));
    program().picture("end_to_end/guided.png");
    program().click("m_pUnmixBtn");
    ASSERT_TRUE(program().waitFor("DistributionView", 60000));
    EXPECT_NE(text("m_pSelectLabel").toStdString(), "Background");
    program().picture("end_to_end/guided_tiles.png");
}

TEST_F(SpectraByHandTest, AfterAnAutomaticRunTheEditedSpectraAreSolvedWithoutANewResolution)
{
    startProgram({simulated::sequence({"--size", "128"})});
    ASSERT_TRUE(openWizard());
    ASSERT_TRUE(finishWizard());
    const auto method = [this] {
        for (const QJsonValue& row : program().state("m_pSPUnResultsLV")["rows"].toArray()) {
            if (row.toArray()[0] == "Method") {
                return row.toArray()[1].toString();
            }
        }
        return QString();
    };
    EXPECT_EQ(method().toStdString(), "Automatic");
    const int nRows = rowNames().size();
    // The first change asks about the result, and then is made.
    program().click("m_pGBSpectrumList/.QCheckBox@1");
    ASSERT_TRUE(program().waitFor(".QMessageBox"));
    program().click(".QMessageBox/.QPushButton[No]");
    program().click("m_pGBSpectrumList/.QCheckBox@2");
    program().click("m_pRemoveSpectrum");
    ASSERT_TRUE(program().waitUntil([&] { return rowNames().size() < nRows; }));
    EXPECT_TRUE(program().state("m_pGBSpectrumList/.QCheckBox@0")["checked"].toBool()) << "the first that remains";
    EXPECT_FALSE(isEnabled("m_pUnmixBtn")) << "too few are ticked";
    program().click("m_pGBSpectrumList/.QCheckBox@1");
    ASSERT_TRUE(program().waitUntilEnabled("m_pUnmixBtn"));
    program().click("m_pUnmixBtn");
    if (program().waitFor(".QMessageBox", 2000)) {
        program().click(".QMessageBox/.QPushButton[No]");
    }
    EXPECT_TRUE(program().waitUntil([&] { return method() == "Manual"; })) << method().toStdString();
}

} // namespace
