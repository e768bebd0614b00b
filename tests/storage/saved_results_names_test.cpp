// SPDX-License-Identifier: GPL-3.0-or-later
// Names of results as users type them: each is saved, listed, overwritten, loaded, renamed and deleted under what it
// says, and never becomes a path.
#include "storage/saved_fixture.h"

#include <QDirIterator>

namespace {

struct Name
{
    const char* test;
    QString text;
};

const Name typedNames[] = {
    {"TwoWords", "two words"},
    {"BlanksAround", "  both sides "},
    {"Umlauts", QString::fromUtf8("M\xC3\xA4use, gro\xC3\x9F, 3 \xC2\xB5m")},
    {"OtherLetters", QString::fromUtf8("\xE5\xB0\x8F\xE9\xBC\xA0")},
    {"Slash", "left/right"},
    {"FolderAbove", "../../up"},
    {"Backslash", "left\\right"},
    {"LongestOfAFile", QString(185, 'n')},
    {"LongerThanAFile", QString(186, 'n')},
    {"VeryLong", QString(2000, 'n')},
    {"Section", "[SPUM]"},
    {"Entry", "FileName: SpecUnmix/other.xml"},
    {"Comment", "# not a comment"},
    {"Quotes", "\"quoted\" and 'so'"},
    {"PlaceOfAText", "100 % of %1 %2"},
    {"Markup", "<b>bold</b> & more"},
    {"MarkWithin", "a(new)b"},
};

void PrintTo(const Name& name, std::ostream* pStream)
{
    *pStream << name.test;
}

class NamesTest : public SavedFixture, public ::testing::WithParamInterface<Name>
{
protected:
    // Everything below the sequence's folder, and beside it.
    QStringList paths() const
    {
        QStringList found;
        QDirIterator entries(m_folder.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            found << QDir(m_folder.path()).relativeFilePath(entries.next());
        }
        found.sort();
        return found;
    }
};

TEST_P(NamesTest, GoesThroughEveryOperation)
{
    const QString& strName = GetParam().text;
    const QStringList before = paths();
    ASSERT_EQ(save(strName), SaveOutcome::Saved);
    EXPECT_EQ(names(), QStringList(strName));
    EXPECT_EQ(noteOf(strName), "note of " + strName);
    EXPECT_EQ(m_list.getSavedMenuNames(), QStringList(strName));
    EXPECT_EQ(files().size(), 1);
    EXPECT_EQ(paths().size(), before.size() + 2); // the list and the document

    // Overwritten, but not without a Yes.
    m_moment = m_moment.addSecs(1);
    EXPECT_EQ(save(strName), SaveOutcome::Declined);
    EXPECT_EQ(m_boxes.shown, QStringList(overwriteQuestion(strName)));
    m_boxes.answer = CORVMessageBox::YesButton;
    EXPECT_EQ(save(strName), SaveOutcome::Saved);
    EXPECT_EQ(names(), QStringList(strName));

    m_list.setCurrentText(strName);
    m_boxes.shown.clear();
    m_results.onClickLoadResults();
    // It is found; the plain sequence has no images to show it with.
    EXPECT_TRUE(m_boxes.shown.isEmpty());
    EXPECT_FALSE(m_log.has("No results exists with this name.", 3));

    ASSERT_TRUE(m_list.choose(strName));
    m_results.onChangeResultsName(strName);
    m_list.setCurrentText(strName + " again");
    m_results.onKeyPressed(Qt::Key_Return);
    EXPECT_EQ(names(), QStringList(strName + " again"));
    EXPECT_TRUE(m_list.choose(strName + " again"));
    m_list.setCurrentText(strName);
    m_results.onChangeResultsName(strName);
    m_results.onKeyPressed(Qt::Key_Escape);
    EXPECT_EQ(m_list.currentText(), strName + " again");

    m_boxes.shown.clear();
    EXPECT_TRUE(m_results.onClickDeleteResults());
    EXPECT_EQ(m_boxes.shown,
              QStringList(asked("Are you sure you want to delete the results for " + strName + " again?")));
    EXPECT_EQ(names(), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Names, NamesTest, ::testing::ValuesIn(typedNames),
                         [](const ::testing::TestParamInfo<Name>& tested) { return std::string(tested.param.test); });

TEST_F(SavedFixture, NamesThatSayNothingAreNotSaved)
{
    for (const char* pName : {"", "(new)", "(new)(new)"}) {
        EXPECT_EQ(save(pName), SaveOutcome::NotSaved) << pName;
        EXPECT_EQ(names(), QStringList()) << pName;
    }
    EXPECT_EQ(m_boxes.shown.size(), 3);
}

} // namespace
