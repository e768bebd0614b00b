// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CILImage.h"
#include "host/CORVMdiSubWindow.h"
#include "host/CORVResultsTabControl.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "host/CPLSettingsFileWrapper.h"
#include "platform/orvapi/SequenceWriter.h"
#include "platform/orvwidgets/savedNames.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMainWindow>
#include <QMdiArea>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

using orv::SavedNames;
using orv::updatedNames;

struct NamesCase
{
    SavedNames before;
    QStringList saved;
    const char* fresh;
    int current;
    const char* text;
    int entries;
};

class SavedNamesTest : public ::testing::TestWithParam<NamesCase>
{
};

TEST_P(SavedNamesTest, ChoosesTheNewOneElseTheSameElseThePlace)
{
    const NamesCase& c = GetParam();
    const SavedNames now = updatedNames(c.before, c.saved, QString::fromLatin1(c.fresh));
    EXPECT_EQ(now.m_nCurrent, c.current);
    EXPECT_EQ(now.m_strText.toStdString(), c.text);
    EXPECT_EQ(now.m_entries.size(), c.entries);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SavedNamesTest,
    ::testing::Values(NamesCase{{{}, -1, ""}, {}, "", -1, "", 0}, NamesCase{{{}, -1, "typed"}, {}, "", -1, "", 0},
                      NamesCase{{{}, -1, ""}, {"a", "b"}, "", 0, "a", 2},
                      NamesCase{{{}, 1, "b"}, {"a", "b"}, "", 1, "b", 2},
                      NamesCase{{{}, 2, "c"}, {"a", "b"}, "", 1, "b", 2},
                      NamesCase{{{}, 0, "a"}, {"b", "c"}, "", 0, "b", 2},
                      NamesCase{{{}, 0, "b"}, {"a", "b"}, "", 1, "b", 2},
                      // What was new is saved now.
                      NamesCase{{{}, 1, "SPUM_002(new)"}, {"SPUM_001", "SPUM_002"}, "", 1, "SPUM_002", 2},
                      NamesCase{{{}, 0, "a"}, {"a", "b"}, "SPUM_001", 2, "SPUM_001(new)", 3},
                      NamesCase{{{}, 0, "a"}, {}, "SPUM_001", 0, "SPUM_001(new)", 1}));

class ResultsTabTest : public ::testing::Test
{
protected:
    ResultsTabTest()
    {
        m_control.setTags("SPUM_", "SPUM");
        m_control.setSettingFileName("XML/SPUM.txt");
    }

    // A sequence on disk whose list of results holds these names. Its id is that of the folder's info file.
    std::unique_ptr<CORVSequenceDataset> sequence(const QString& strId, const QString& strName,
                                                  const QStringList& names)
    {
        const QString folder = m_home.filePath(strId);
        SequenceDescription description;
        description.id = strId;
        DatasetDescription dataset;
        dataset.clickNumber = strId + "_C1";
        CILImage image;
        EXPECT_EQ(image.InitWithType(ORVTYPE_USHORT, 2, 2), EIL_SUCCESS);
        SequenceWriter writer;
        QString error;
        EXPECT_TRUE(writer.begin(folder, description, false, &error)) << error.toStdString();
        EXPECT_TRUE(writer.addDataset(dataset, {{IMAGETYPE_LUMINESCENT, &image}}, &error)) << error.toStdString();
        EXPECT_TRUE(writer.finish(&error)) << error.toStdString();
        EXPECT_TRUE(QDir().mkpath(folder + "/XML"));
        auto pSequence = std::make_unique<CORVSequenceDataset>();
        EXPECT_EQ(pSequence->open(folder, &error), ESTATUS_SUCCESS) << error.toStdString();
        pSequence->setSequenceName(strName);
        save(*pSequence, names);
        return pSequence;
    }

    static void save(const CORVSequenceDataset& sequence, const QStringList& names)
    {
        const QString path = sequence.getSequenceInfoPath() + "XML/SPUM.txt";
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.close();
        CPLSettingsFileWrapper index;
        index.setMenuNameTag("MenuName");
        index.setFileNameTag("FileName");
        index.setAutoMenuNameTag("SPUM_");
        EXPECT_TRUE(index.load(path));
        for (const QString& name : names) {
            EXPECT_TRUE(index.addSection("SPUM", name, "SpecUnmix/" + name + ".xml"));
        }
        EXPECT_TRUE(index.save());
    }

    QStringList entries() const
    {
        QStringList all;
        for (int i = 0; i < m_combo.count(); ++i) {
            all.append(m_combo.itemText(i));
        }
        return all;
    }
    QString buttons() const
    {
        return QString(m_delete.isEnabled() ? "D" : "-") + (m_load.isEnabled() ? "L" : "-") +
               (m_save.isEnabled() ? "S" : "-");
    }

    QTemporaryDir m_home;
    QWidget m_palette;
    QComboBox m_combo;
    QPushButton m_delete;
    QPushButton m_load;
    QPushButton m_save;
    CORVResultsTabControl m_control{&m_palette, &m_combo, &m_delete, &m_load, &m_save};
};

TEST_F(ResultsTabTest, ListsTheSavedNamesOfTheSequence)
{
    const auto pSequence = sequence("S1", "mouse", {"first", "second"});
    QSignalSpy edited(&m_combo, SIGNAL(editTextChanged(QString)));
    m_control.updateSavedResultsForSelSeqId("S1");
    EXPECT_EQ(entries(), (QStringList{"first", "second"}));
    EXPECT_EQ(m_control.getSavedMenuNames(), (QStringList{"first", "second"}));
    EXPECT_EQ(m_combo.currentText(), "first");
    // The user has not typed.
    EXPECT_EQ(edited.size(), 0);
    EXPECT_EQ(buttons(), "DL-");
}

TEST_F(ResultsTabTest, ANewResultIsOfferedUnderTheNextAutomaticName)
{
    const auto pSequence = sequence("S1", "mouse", {"SPUM_001"});
    m_control.m_bResultModified = true;
    m_control.updateSavedResultsForSelSeqId("S1");
    EXPECT_EQ(entries(), (QStringList{"SPUM_001", "SPUM_002(new)"}));
    EXPECT_EQ(m_combo.currentText(), "SPUM_002(new)");
    EXPECT_EQ(m_control.getSavedMenuNames(), QStringList{"SPUM_001"});
    EXPECT_EQ(buttons(), "--S");
    save(*pSequence, {"SPUM_001", "SPUM_002"});
    m_control.m_bResultModified = false;
    m_control.updateSavedResultsForSelSeqId("S1");
    EXPECT_EQ(m_combo.currentText(), "SPUM_002");
    EXPECT_EQ(buttons(), "DL-");
}

TEST_F(ResultsTabTest, DeleteAndLoadNeedASavedNameInAnyCase)
{
    const auto pSequence = sequence("S1", "mouse", {"First"});
    m_control.updateSavedResultsForSelSeqId("S1");
    m_combo.setEditText("Fir");
    EXPECT_EQ(buttons(), "---");
    m_combo.setEditText("FIRST");
    EXPECT_EQ(buttons(), "DL-");
}

TEST_F(ResultsTabTest, SaveNeedsAResult)
{
    const auto pSequence = sequence("S1", "mouse", {"first"});
    m_control.updateSavedResultsForSelSeqId("S1");
    EXPECT_EQ(buttons(), "DL-");
    m_control.setHasResult(true);
    EXPECT_EQ(buttons(), "DLS");
    m_control.setHasResult(false);
    EXPECT_EQ(buttons(), "DL-");
}

TEST_F(ResultsTabTest, ButtonsThatMayNotBePressedComeBackWithTheNextUpdate)
{
    const auto pSequence = sequence("S1", "mouse", {"first"});
    m_control.updateSavedResultsForSelSeqId("S1");
    m_control.setHasResult(true);
    m_control.setStatusOfButtons(true, true, false);
    EXPECT_EQ(buttons(), "DL-");
    m_control.setStatusOfButtons(false, true, true);
    EXPECT_EQ(buttons(), "-LS");
    m_control.setStatusOfButtons(true, false, true);
    EXPECT_EQ(buttons(), "D-S");
    m_control.updateSavedResultsForSelSeqId("S1");
    EXPECT_EQ(buttons(), "DLS");
    // None of them makes up for a name that is not saved.
    m_combo.setEditText("nobody");
    m_control.setStatusOfButtons(true, true, true);
    EXPECT_EQ(buttons(), "--S");
}

TEST_F(ResultsTabTest, TheIdComesBeforeTheName)
{
    const auto pFirst = sequence("S1", "mouse", {"of S1"});
    const auto pSecond = sequence("mouse", "other", {"of mouse"});
    m_control.updateSavedResultsForSelSeqId("mouse");
    EXPECT_EQ(entries(), QStringList{"of mouse"});
    m_control.updateSavedResultsForSelSeqId("other");
    EXPECT_EQ(entries(), QStringList{"of mouse"});
}

TEST_F(ResultsTabTest, OfSeveralWithTheNameTheCurrentOneCounts)
{
    const auto pFirst = sequence("S1", "mouse", {"of S1"});
    const auto pSecond = sequence("S2", "mouse", {"of S2"});
    m_control.updateSavedResultsForSelSeqId("S2");
    m_control.updateSavedResultsForSelSeqId("mouse");
    EXPECT_EQ(entries(), QStringList{"of S2"});
    QMainWindow main;
    auto* pArea = new QMdiArea(&main);
    main.setCentralWidget(pArea);
    CORVChildWindow::setMainWindow(&main);
    main.show();
    auto* pFrame = new CORVMdiSubWindow;
    pFrame->setWidget(new CORVSequenceWindow(pFirst.get()));
    pArea->addSubWindow(pFrame);
    pFrame->showWindow();
    m_control.updateSavedResultsForSelSeqId("mouse");
    EXPECT_EQ(entries(), QStringList{"of S1"});
}

TEST_F(ResultsTabTest, ASequenceWithoutAListHasNoSavedNames)
{
    const auto pSequence = sequence("S1", "mouse", {"first"});
    m_control.updateSavedResultsForSelSeqId("S1");
    m_control.updateSavedResultsForSelSeqId("nobody");
    EXPECT_TRUE(entries().isEmpty());
    EXPECT_TRUE(m_control.getSavedMenuNames().isEmpty());
    EXPECT_EQ(m_combo.currentText(), "");
    EXPECT_EQ(buttons(), "---");
    CORVSequenceDataset homeless;
    homeless.setSequenceID("S9");
    m_control.m_bResultModified = true;
    m_control.updateSavedResultsForSelSeqId("S9");
    EXPECT_EQ(entries(), QStringList{"SPUM_001(new)"});
}

TEST_F(ResultsTabTest, TypingNeitherAddsNorCompletesNames)
{
    const auto pSequence = sequence("S1", "mouse", {"SPUM_001"});
    m_control.updateSavedResultsForSelSeqId("S1");
    m_combo.show();
    m_combo.lineEdit()->selectAll();
    QTest::keyClicks(m_combo.lineEdit(), "spum_00");
    QTest::keyClick(m_combo.lineEdit(), Qt::Key_Return);
    EXPECT_EQ(m_combo.currentText(), "spum_00");
    EXPECT_EQ(m_combo.count(), 1);
}

TEST_F(ResultsTabTest, OutlivesItsWidgets)
{
    QComboBox* pCombo = new QComboBox;
    auto* pButton = new QPushButton;
    CORVResultsTabControl control(nullptr, pCombo, pButton, pButton, pButton);
    delete pCombo;
    delete pButton;
    control.updateSavedResultsForSelSeqId("S1");
    control.setStatusOfButtons(true, true, true);
}

} // namespace
