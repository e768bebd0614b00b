// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvparser/SectionSupport.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "support/ForkedChild.h"

namespace {

class ClickInfoTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        CPLSection number("ClickNumber", "Click");
        number.addKeyValue("ClickNumber", "AB20240131235959");
        CPLSection image("luminescent image", "Luminescent image");
        image.addKeyValue("Exposure Time Sec", "12.5");
        image.addKeyValue("Comment", "two\nlines");
        image.addKeyValue("Folder", "C:\\data\\100% new");
        m_info.addSection(&number);
        m_info.addSection(&image);
    }
    // Parses; 0 on success.
    int parse(const QByteArray& text)
    {
        m_warnings.clear();
        return m_info.parse(text, "dir/click.txt", &m_warnings);
    }
    int sectionCount() const
    {
        int count = -1;
        EXPECT_EQ(m_info.getSectionCount(&count), 0);
        return count;
    }

    CPLClickInfo m_info;
    QStringList m_warnings;
    QTemporaryDir m_folder;
    QString m_strPath = m_folder.filePath("Click Info.txt");
};

TEST_F(ClickInfoTest, SectionIsFoundByItsKeyOrNull)
{
    EXPECT_EQ(valueOf(m_info["luminescent image"], "Exposure Time Sec"), "12.5");
    EXPECT_EQ(m_info["none"], nullptr);
    const CPLClickInfo& constant = m_info;
    EXPECT_EQ(constant["ClickNumber"], m_info["ClickNumber"]);
    EXPECT_EQ(m_info.section(-1), nullptr);
    EXPECT_EQ(m_info.section(2), nullptr);
    EXPECT_EQ(m_info.section(1), m_info["luminescent image"]);
}

TEST_F(ClickInfoTest, ClickNumberIsThatOfItsSection)
{
    QString number;
    EXPECT_EQ(m_info.getClickNumber(&number), 0);
    EXPECT_EQ(number, "AB20240131235959");
    m_info["ClickNumber"]->removeKey("ClickNumber");
    number = "old";
    EXPECT_NE(m_info.getClickNumber(&number), 0);
    m_info.removeSection("ClickNumber");
    EXPECT_NE(m_info.getClickNumber(&number), 0);
    EXPECT_EQ(number, "old");
}

TEST_F(ClickInfoTest, AddingTakesACopyAndRefusesNull)
{
    CPLSection section("s");
    EXPECT_EQ(m_info.addSection(&section), 0);
    section.addKeyValue("late", "1");
    EXPECT_EQ(m_info["s"]->count(), 0);
    EXPECT_NE(m_info.addSection(nullptr), 0);
    EXPECT_EQ(sectionCount(), 3);
}

TEST_F(ClickInfoTest, RemoveTakesTheFirstOfTheKey)
{
    CPLSection twin("ClickNumber", "second");
    m_info.addSection(&twin);
    EXPECT_EQ(m_info.removeSection("ClickNumber"), 0);
    EXPECT_EQ(sectionCount(), 2);
    EXPECT_EQ(contentOf(*m_info["ClickNumber"]).m_strName, "second");
    EXPECT_NE(m_info.removeSection("none"), 0);
}

TEST_F(ClickInfoTest, CopiesShareNothing)
{
    CPLClickInfo copy(m_info);
    copy["ClickNumber"]->setValue("ClickNumber", "other");
    EXPECT_EQ(valueOf(m_info["ClickNumber"], "ClickNumber"), "AB20240131235959");
    const auto before = contentOf(m_info);
    copy = m_info;
    m_info["ClickNumber"]->setValue("ClickNumber", "third");
    EXPECT_EQ(contentOf(copy), before);
    const CPLClickInfo& self = copy;
    copy = self;
    EXPECT_EQ(contentOf(copy), before);
}

TEST_F(ClickInfoTest, SavedFileIsReadBackTheSame)
{
    ASSERT_EQ(m_info.saveClickInfo(m_strPath), 0);
    CPLClickInfo other;
    EXPECT_EQ(other.loadClickInfo(m_strPath, &m_warnings), 0);
    EXPECT_EQ(contentOf(other), contentOf(m_info));
    EXPECT_TRUE(m_warnings.isEmpty());
}

TEST_F(ClickInfoTest, OrdinaryTextsStandAsTheyAre)
{
    EXPECT_EQ(m_info.toText(), "# Orvia sections 1\n"
                               "\n[ClickNumber] Click\nClickNumber: AB20240131235959\n"
                               "\n[luminescent image] Luminescent image\nExposure Time Sec: 12.5\n"
                               "Comment: \"two\\nlines\"\nFolder: C:\\data\\100% new\n"
                               "\n# end\n");
}

TEST_F(ClickInfoTest, EmptyInfoIsReadBackEmpty)
{
    const CPLClickInfo empty;
    EXPECT_EQ(parse(empty.toText()), 0);
    EXPECT_EQ(sectionCount(), 0);
}

TEST_F(ClickInfoTest, FileWrittenByHandNeedsNoFrame)
{
    ASSERT_EQ(parse("# a comment\n[a] A name\n  key one :  value: with colon  \n\nempty:\n[b]\nk:v"), 0);
    EXPECT_TRUE(m_warnings.isEmpty());
    EXPECT_EQ(contentOf(*m_info["a"]).m_strName, "A name");
    EXPECT_EQ(valueOf(m_info["a"], "key one"), "value: with colon");
    EXPECT_EQ(valueOf(m_info["a"], "empty"), QString());
    EXPECT_EQ(valueOf(m_info["b"], "k"), "v");
}

TEST_F(ClickInfoTest, AnyEndOfLineAndAByteOrderMarkAreTaken)
{
    for (const QByteArray text :
         {"[a] n\nk: v\nl: w\n", "[a] n\r\nk: v\r\nl: w\r\n", "[a] n\rk: v\rl: w\r", "\xef\xbb\xbf[a] n\nk: v\nl: w"}) {
        ASSERT_EQ(parse(text), 0);
        EXPECT_TRUE(m_warnings.isEmpty()) << m_warnings.join('\n').toStdString();
        ASSERT_EQ(sectionCount(), 1);
        EXPECT_TRUE(contentOf(*m_info.section(0)) == (SectionContent{"a", "n", {"k", "l"}, {"v", "w"}}));
    }
}

TEST_F(ClickInfoTest, LineThatIsNotUtf8IsLatin1WithAWarningAndOthersStayUtf8)
{
    ASSERT_EQ(parse("[a]\nk: M\xe4us\nl: M\xc3\xa4us\n"), 0);
    EXPECT_EQ(valueOf(m_info["a"], "k"), QString::fromUtf8("M\xc3\xa4us"));
    EXPECT_EQ(valueOf(m_info["a"], "l"), QString::fromUtf8("M\xc3\xa4us"));
    EXPECT_EQ(m_warnings, QStringList{"dir/click.txt:2: not UTF-8, read as Latin-1"});
}

TEST_F(ClickInfoTest, UnreadableLineIsSkippedAndToldWithItsPlace)
{
    ASSERT_EQ(parse("stray: 1\n[a]\nno colon here\nk: v\n"), 0);
    EXPECT_EQ(m_warnings,
              QStringList({"dir/click.txt:1: an entry before the first section, the line is skipped",
                           "dir/click.txt:3: neither \"[section]\" nor \"key: value\", the line is skipped"}));
    ASSERT_EQ(sectionCount(), 1);
    EXPECT_EQ(m_info.section(0)->count(), 1);
}

TEST_F(ClickInfoTest, SectionThatIsNotClosedKeepsItsEntriesFromTheSectionAbove)
{
    ASSERT_EQ(parse("[a]\nk: 1\n[b\nk: 2\n"), 0);
    EXPECT_EQ(m_warnings, QStringList{"dir/click.txt:3: the section's key is not closed by \"]\""});
    EXPECT_EQ(valueOf(m_info["a"], "k"), "1");
    EXPECT_EQ(m_info["a"]->count(), 1);
    EXPECT_EQ(valueOf(m_info["b"], "k"), "2");
}

TEST_F(ClickInfoTest, QuoteThatIsNotWholeIsTakenAsItStands)
{
    ASSERT_EQ(parse("[a]\n\"open: 1\nk: \"v\" and w\nl: \"\\q\"\nm: \"\\u12\"\nn: \"\\u00e4\"\n\"p:q\" : \"r\"\n"), 0);
    EXPECT_TRUE(m_warnings.isEmpty());
    EXPECT_EQ(valueOf(m_info["a"], "\"open"), "1");
    EXPECT_EQ(valueOf(m_info["a"], "k"), "\"v\" and w");
    EXPECT_EQ(valueOf(m_info["a"], "l"), "\"\\q\"");
    EXPECT_EQ(valueOf(m_info["a"], "m"), "\"\\u12\"");
    EXPECT_EQ(valueOf(m_info["a"], "n"), QString::fromUtf8("\xc3\xa4"));
    EXPECT_EQ(valueOf(m_info["a"], "p:q"), "r");
}

TEST_F(ClickInfoTest, EmptyOrForeignFileIsRefused)
{
    for (const QByteArray text :
         {"", "\n\n", "# only a comment\n", "just some prose\n", "key: value\n", "{\"a\": 1}"}) {
        EXPECT_NE(parse(text), 0) << text.toStdString();
        EXPECT_EQ(sectionCount(), 0);
        ASSERT_FALSE(m_warnings.isEmpty());
        EXPECT_TRUE(m_warnings.last().startsWith("dir/click.txt:"));
        EXPECT_TRUE(m_warnings.last().endsWith("no section, a line \"[key] name\", in the file"));
    }
}

TEST_F(ClickInfoTest, ZeroByteIsRefusedWithItsLine)
{
    EXPECT_NE(parse(QByteArray("[a]\nk: v\nl: \0w\n", 15)), 0);
    EXPECT_EQ(m_warnings, QStringList{"dir/click.txt:3: a zero byte, this is no text"});
    EXPECT_EQ(sectionCount(), 0);
}

TEST_F(ClickInfoTest, RefusedFileLeavesNoSections)
{
    EXPECT_NE(m_info.loadClickInfo(m_folder.filePath("none.txt"), &m_warnings), 0);
    EXPECT_EQ(sectionCount(), 0);
    EXPECT_EQ(m_warnings, QStringList{m_folder.filePath("none.txt") + ": cannot be read: no such file"});
    EXPECT_NE(m_info.loadClickInfo(m_folder.filePath("none.txt")), 0);
}

TEST_F(ClickInfoTest, FolderAndDeviceAreRefused)
{
    EXPECT_NE(m_info.loadClickInfo(m_folder.path(), &m_warnings), 0);
    EXPECT_NE(m_info.loadClickInfo("/dev/zero", &m_warnings), 0);
    EXPECT_EQ(m_warnings,
              QStringList({m_folder.path() + ": cannot be read: not a file", "/dev/zero: cannot be read: not a file"}));
}

TEST_F(ClickInfoTest, FileThatMayNotBeReadIsRefused)
{
    ASSERT_TRUE(putBytes(m_strPath, "[a]\n"));
    ASSERT_EQ(::chmod(QFile::encodeName(m_folder.path()), 0755), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(m_strPath), 0000), 0);
    const int status = inForkedChild([this] {
        if (!becomePlainUser()) {
            return 1;
        }
        const bool read = m_info.loadClickInfo(m_strPath, &m_warnings) == 0;
        return !read && m_warnings.size() == 1 && m_warnings[0].startsWith(m_strPath) ? 0 : 2;
    });
    EXPECT_EQ(status, 0);
}

TEST_F(ClickInfoTest, FileCutOffAnywhereIsRefused)
{
    const QByteArray text = m_info.toText();
    for (int tenth = 0; tenth < 10; ++tenth) {
        ASSERT_NE(parse(text.left(text.size() * tenth / 10)), 0) << tenth;
        EXPECT_EQ(sectionCount(), 0);
        EXPECT_TRUE(m_warnings.last().startsWith("dir/click.txt"));
    }
    for (int size = 0; size < text.size() - 1; ++size) {
        ASSERT_NE(parse(text.left(size)), 0) << size;
    }
    // Only the last end of line is missing.
    EXPECT_EQ(parse(text.left(text.size() - 1)), 0);
}

TEST_F(ClickInfoTest, FileCutOffTellsWhereItEnds)
{
    const QByteArray text = m_info.toText();
    EXPECT_NE(parse(text.left(text.indexOf("Comment"))), 0);
    EXPECT_EQ(m_warnings, QStringList{"dir/click.txt:7: the file is cut off here, its last line \"# end\" is missing"});
}

TEST_F(ClickInfoTest, GarbledBytesAnywhereNeitherCrashNorHideWhatTheyDid)
{
    const QByteArray text = m_info.toText();
    const auto whole = contentOf(m_info);
    for (const char garbage : {'\0', '\xff', ':', '[', '\n', '"'}) {
        for (int tenth = 0; tenth < 10; ++tenth) {
            QByteArray garbled = text;
            garbled[text.size() * tenth / 10] = garbage;
            if (parse(garbled) == 0 && garbage == '\xff') {
                EXPECT_FALSE(m_warnings.isEmpty());
            }
            if (garbage == '\0') {
                EXPECT_EQ(sectionCount(), 0);
                EXPECT_EQ(m_warnings.size(), 1);
            }
        }
    }
    ASSERT_EQ(parse(text), 0);
    EXPECT_EQ(contentOf(m_info), whole);
}

TEST_F(ClickInfoTest, WarningsOfOneFileAreLimited)
{
    QByteArray text = "[a]\n";
    for (int i = 0; i < 1000; ++i) {
        text += "garbage\n";
    }
    ASSERT_EQ(parse(text), 0);
    EXPECT_EQ(m_warnings.size(), 51);
    EXPECT_EQ(m_warnings.last(), "dir/click.txt: 950 more warnings");
}

TEST_F(ClickInfoTest, LargeFilesAreRefusedByBytesAndByLines)
{
    QByteArray text = "[a]\n" + QByteArray(16 * 1024 * 1024, 'x');
    EXPECT_NE(parse(text), 0);
    EXPECT_EQ(m_warnings, QStringList{"dir/click.txt: more than 16 MiB, no text of keys is that large"});
    ASSERT_TRUE(putBytes(m_strPath, text));
    m_warnings.clear();
    EXPECT_NE(m_info.loadClickInfo(m_strPath, &m_warnings), 0);
    EXPECT_EQ(m_warnings, QStringList{m_strPath + ": cannot be read: more than 16 MiB, no text of keys is that large"});

    text = "[a]\n" + QByteArray("k:\n").repeated(200000);
    EXPECT_NE(parse(text), 0);
    EXPECT_EQ(m_warnings, QStringList{"dir/click.txt:200001: more than 200000 lines"});
    text.chop(3);
    EXPECT_EQ(parse(text), 0);
    EXPECT_EQ(m_info.section(0)->count(), 199999);
}

TEST_F(ClickInfoTest, WhatCouldNotBeReadBackIsNotWritten)
{
    ASSERT_TRUE(putBytes(m_strPath, "old"));
    m_info["ClickNumber"]->setValue("big", QString(17 * 1024 * 1024, 'x'));
    EXPECT_NE(m_info.saveClickInfo(m_strPath), 0);
    EXPECT_EQ(bytesOf(m_strPath), "old");
}

TEST_F(ClickInfoTest, FileInTheFoldersPlaceMakesSavingFail)
{
    ASSERT_TRUE(putBytes(m_strPath, "old"));
    EXPECT_NE(m_info.saveClickInfo(m_strPath + "/ClickInfo.txt"), 0);
    EXPECT_EQ(bytesOf(m_strPath), "old");
}

TEST_F(ClickInfoTest, ReadOnlyFolderAndFullDiskKeepTheEarlierFile)
{
    ASSERT_TRUE(putBytes(m_strPath, "old"));
    ASSERT_EQ(::chmod(QFile::encodeName(m_folder.path()), 0555), 0);
    EXPECT_EQ(inForkedChild([this] {
                  if (!becomePlainUser()) {
                      return 1;
                  }
                  return m_info.saveClickInfo(m_strPath) == 0 ? 2 : 0;
              }),
              0);
    ASSERT_EQ(::chmod(QFile::encodeName(m_folder.path()), 0755), 0);
    EXPECT_EQ(
        inForkedChild([this] { return !limitFileSize(100) ? 1 : (m_info.saveClickInfo(m_strPath) == 0 ? 2 : 0); }), 0);
    m_info["ClickNumber"]->setValue("long", QString(100000, 'x'));
    EXPECT_EQ(
        inForkedChild([this] { return !limitFileSize(50000) ? 1 : (m_info.saveClickInfo(m_strPath) == 0 ? 2 : 0); }),
        0);
    EXPECT_EQ(bytesOf(m_strPath), "old");
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
}

} // namespace
