// SPDX-License-Identifier: GPL-3.0-or-later
// From a sequence to maps, spectra and a composite, by clicks and keys.
#include "end_to_end/WorkbenchFixture.h"
#include "end_to_end/savedDocument.h"
#include "support/simulated.h"

#include <QFile>

namespace {

struct Kind
{
    const char* name;
    QStringList options;
};

std::ostream& operator<<(std::ostream& out, const Kind& kind)
{
    return out << kind.name;
}

class EveryKindTest : public WorkbenchFixture, public ::testing::WithParamInterface<Kind>
{
};

QJsonArray rowsOf(const QJsonObject& state)
{
    return state["rows"].toArray();
}

TEST_P(EveryKindTest, GoesFromASequenceToMapsSpectraAndAComposite)
{
    startProgram({simulated::sequence(GetParam().options)});
    ASSERT_TRUE(openWizard());
    const QString strName = GetParam().name;
    program().picture("end_to_end/" + strName + "_wizard.png");
    const int nComponents = text("m_pNCompLabel").toInt();
    EXPECT_GE(nComponents, 2);
    ASSERT_TRUE(finishWizard());
    program().picture("end_to_end/" + strName + "_tiles.png");
    EXPECT_EQ(rowNames().size(), nComponents);
    EXPECT_GT(rowsOf(program().state("m_pSPUnResultsLV")).size(), 5);
    EXPECT_EQ(text("tabWidget1").toStdString(), "Results");

    EXPECT_TRUE(openComposite());
    EXPECT_EQ(rowsOf(program().state("m_pImageList")).size(), nComponents + 1);
    program().picture("end_to_end/" + strName + "_composite.png");
    EXPECT_TRUE(openCube());
    program().picture("end_to_end/" + strName + "_cube.png");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, EveryKindTest,
    ::testing::Values(Kind{"epi", {"--size", "128"}}, Kind{"luminescent", {"--kind", "luminescent", "--size", "128"}},
                      Kind{"scan", {"--kind", "transillumination", "--size", "128", "--spots", "9"}},
                      Kind{"temporal", {"--kind", "temporal", "--size", "128"}},
                      Kind{"cherenkov", {"--kind", "cherenkov", "--size", "128"}}),
    [](const auto& each) { return std::string(each.param.name); });

class ImportedTest : public WorkbenchFixture
{
};

TEST_F(ImportedTest, AFolderOfImagesIsImportedAndUnmixed)
{
    const QString strImages = copyOf(QStringLiteral(ORV_SOURCE_DIR "/tests/images/cells"), "images of cells");
    startProgram({strImages});
    ASSERT_TRUE(program().waitFor("ImportDialog"));
    EXPECT_EQ(text("m_pSummaryLabel").toStdString(), "12 images: fluorescence, 3 excitations, 7 emissions");
    program().picture("end_to_end/import.png");
    const QString strSequence = text("m_pOutputEdit");
    EXPECT_EQ(strSequence.toStdString(), strImages.toStdString() + "_sequence");
    ASSERT_TRUE(program().click("m_pImportButton"));
    ASSERT_TRUE(program().waitFor("m_pWaveLengthTable/.QCheckBox"));
    EXPECT_TRUE(QFile::exists(strSequence + "/SequenceInfo.txt"));
    ASSERT_TRUE(openWizard());
    EXPECT_EQ(text("m_pProbeTable/.QComboBox").toStdString(), "Unknown") << "nobody says what is in the cells";
    program().click("m_pAddProbeTB");
    EXPECT_EQ(text("m_pNCompLabel").toStdString(), "3");
    ASSERT_TRUE(finishWizard());
    program().picture("end_to_end/import_tiles.png");
    EXPECT_EQ(rowNames(), (QStringList{"UMX1", "UMX2", "UMX3"}));
    EXPECT_TRUE(openComposite());
}

class WholeRoadTest : public WorkbenchFixture
{
};

TEST_F(WholeRoadTest, ASavedResultOfTheWindowIsThatOfTheCommandLine)
{
    const QString strByWindow = copyOf(simulated::sequence({"--size", "128"}), "by window");
    startProgram({strByWindow});
    ASSERT_TRUE(openWizard());
    program().click("m_pFoodAFCB");
    ASSERT_TRUE(finishWizard());
    const QString strComponents = rowNames().join(',');
    ASSERT_TRUE(program().click("m_pSaveButton"));
    ASSERT_TRUE(program().waitUntil([&] { return !savedDocument(strByWindow).isEmpty(); }));

    const QString strByCommand = copyOf(simulated::sequence({"--size", "128"}), "by command");
    runSpum({"unmix", strByCommand, "--components", strComponents, "--save", "SPUM_001"});
    EXPECT_FALSE(savedDocument(strByCommand).isEmpty());
    EXPECT_EQ(savedDocument(strByWindow).toStdString(), savedDocument(strByCommand).toStdString());
}

TEST_F(WholeRoadTest, CancelByEscapeClosesTheWizardAndKeepsThePaletteUsable)
{
    startProgram({simulated::sequence({"--size", "128"})});
    ASSERT_TRUE(openWizard());
    program().click("m_pProbeTable");
    program().key("Esc");
    EXPECT_TRUE(program().waitUntil([&] { return !program().isVisible("SpUnmixWizardWnd"); }));
    EXPECT_TRUE(isEnabled("m_pUnmixSpectraButton"));
    ASSERT_TRUE(openWizard());
}

TEST_F(WholeRoadTest, FinishFollowsTheNumberOfComponentsAndTheMask)
{
    startProgram({simulated::sequence({"--size", "128"})});
    ASSERT_TRUE(openWizard());
    const auto finish = [this] { return isEnabled("qt_wizard_finish"); };
    EXPECT_TRUE(finish());
    while (text("m_pNCompLabel").toInt() > 1) {
        program().click("m_pRemoveProbeTB");
        if (!isEnabled("m_pRemoveProbeTB")) {
            break;
        }
    }
    program().click("m_pTissueAFCB");
    EXPECT_FALSE(finish());
    EXPECT_EQ(text("m_pWarningLabel").toStdString(), "Please select 2-6 components to unmix!");
    program().click("m_pTissueAFCB");
    program().click("m_pFoodAFCB");
    EXPECT_TRUE(finish());
    for (int i = 0; i < 6; ++i) {
        program().click("m_pAddProbeTB");
    }
    EXPECT_EQ(text("m_pNCompLabel").toStdString(), "6");
    EXPECT_FALSE(isEnabled("m_pAddProbeTB"));
    EXPECT_TRUE(finish());
    program().click("m_pDrawMaskRB");
    EXPECT_TRUE(program().waitUntil([&] { return !finish(); }));
    const QJsonArray place = program().state("SimpleImageView")["place"].toArray();
    const int nMiddleX = place[2].toInt() / 2;
    const int nMiddleY = place[3].toInt() / 2;
    program().call({{"do", "drag"},
                    {"widget", "SimpleImageView"},
                    {"from", QJsonArray{nMiddleX - 60, nMiddleY - 60}},
                    {"to", QJsonArray{nMiddleX + 60, nMiddleY + 60}}});
    EXPECT_TRUE(program().waitUntil(finish));
}

TEST_F(WholeRoadTest, ASequenceLeftAndComeBackToIsAsItWas)
{
    startProgram({simulated::sequence({"--size", "128"}), simulated::sequence({"--size", "64", "--bands", "9"})});
    program().waitFor("m_pWaveLengthTable/.QCheckBox");
    // The last that was opened is current; its neighbour comes by the menu of windows.
    const auto showSequence = [this](const QString& strFolder) {
        program().call({{"do", "menu"}, {"text", "Window"}});
        program().waitFor(".QMenu");
        const QString strTitle = QDir(strFolder).dirName();
        for (const QJsonValue& entry : program().state(".QMenu")["entries"].toArray()) {
            const QString strText = entry.toObject()["text"].toString();
            if (strText.contains(strTitle)) {
                return program().call({{"do", "menu"}, {"text", QString(strText).remove('&')}})["ok"].toBool();
            }
        }
        return false;
    };
    ASSERT_TRUE(showSequence(simulated::sequence({"--size", "128"})));
    ASSERT_TRUE(program().waitUntil([&] { return rowsOf(program().state("m_pWaveLengthTable")).size() > 9; }));
    program().click("m_pWaveLengthTable/.QCheckBox@1");
    ASSERT_TRUE(openWizard());
    ASSERT_TRUE(finishWizard());
    const QJsonArray results = rowsOf(program().state("m_pSPUnResultsLV"));
    const QStringList names = rowNames();
    ASSERT_TRUE(showSequence(simulated::sequence({"--size", "64", "--bands", "9"})));
    if (program().waitFor(".QMessageBox", 3000)) {
        program().click(".QMessageBox/.QPushButton[No]");
    }
    ASSERT_TRUE(openWizard());
    ASSERT_TRUE(finishWizard());
    ASSERT_TRUE(showSequence(simulated::sequence({"--size", "128"})));
    if (program().waitFor(".QMessageBox", 3000)) {
        program().click(".QMessageBox/.QPushButton[No]");
    }
    program().waitUntil([&] { return rowNames() == names; }, 10000);
    ASSERT_EQ(rowNames().join(", ").toStdString(), names.join(", ").toStdString());
    program().call({{"do", "tab"}, {"widget", "tabWidget1"}, {"text", "Analyze"}});
    ASSERT_TRUE(program().waitFor("m_pWaveLengthTable/.QCheckBox"));
    EXPECT_FALSE(program().state("m_pWaveLengthTable/.QCheckBox@1")["checked"].toBool());
    program().picture("end_to_end/come_back.png");
    ASSERT_TRUE(openWizard());
    ASSERT_TRUE(finishWizard());
    EXPECT_EQ(rowsOf(program().state("m_pSPUnResultsLV")), results);
}

TEST_F(WholeRoadTest, TheKeyboardAloneGoesTheWholeRoad)
{
    startProgram({simulated::sequence({"--size", "64"})});
    ASSERT_TRUE(program().waitFor("m_pWaveLengthTable/.QCheckBox"));
    const auto focus = [this](const QString& strWidget) {
        for (int i = 0; i < 80; ++i) {
            if (program().state(strWidget)["focus"].toBool()) {
                return true;
            }
            program().key("Tab");
        }
        return false;
    };
    program().key("F6"); // from the work area to the panel
    ASSERT_TRUE(focus("m_pUnmixingMethodsCMB"));
    program().key("A");
    EXPECT_TRUE(program().waitUntil([&] { return text("m_pUnmixingMethodsCMB") == "Automatic"; }, 5000));
    ASSERT_TRUE(focus("m_pUnmixSpectraButton"));
    program().key("Space");
    ASSERT_TRUE(program().waitFor("SpUnmixWizardWnd"));
    program().key("F6");
    ASSERT_TRUE(focus("m_pFoodAFCB"));
    program().key("Space");
    EXPECT_TRUE(program().state("m_pFoodAFCB")["checked"].toBool());
    ASSERT_TRUE(focus("qt_wizard_finish"));
    program().key("Space");
    ASSERT_TRUE(program().waitFor("DistributionView", 60000));
    EXPECT_TRUE(program().waitFor("m_pSPUnResultsLV"));
}

} // namespace
