// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/sequenceContent.h"

#include "services/basis/fileHash.h"
#include "services/support/CliFixture.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <sys/stat.h>

namespace {

class SequenceContentTest : public CliFixture
{
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        write("seq/SequenceInfo.txt", "info");
        write("seq/C1/ClickInfo.txt", "one");
        write("seq/C1/luminescent.TIF", "pixels");
        write("seq/truth/counts/spectra.csv", "truth");
    }
    QStringList files() const { return contentOfSequence(path("seq")); }
    QString hash() const { return hashOfSequence(path("seq"), files()); }
    // Whether it is another one once that file is there.
    bool changes(const QString& strFile, const QByteArray& bytes) const
    {
        const QString before = hash();
        write(strFile, bytes);
        return hash() != before;
    }
};

} // namespace

TEST_F(SequenceContentTest, IsWhatAnAnalysisMayRead)
{
    const QStringList expected = {"C1/ClickInfo.txt", "C1/luminescent.TIF", "SequenceInfo.txt",
                                  "truth/counts/spectra.csv"};
    EXPECT_EQ(files(), expected);
    EXPECT_EQ(contentOfSequence(path("seq/SequenceInfo.txt")), expected);
    EXPECT_EQ(bytesOfSequence(path("seq"), files()), 4 + 3 + 6 + 5);
    EXPECT_EQ(contentOfSequence(path("nowhere")), QStringList());
}

TEST_F(SequenceContentTest, ChangesWithAnyOfIt)
{
    EXPECT_TRUE(changes("seq/C1/luminescent.TIF", "pixelS"));
    EXPECT_TRUE(changes("seq/C1/ClickInfo.txt", "two"));
    EXPECT_TRUE(changes("seq/C2/ClickInfo.txt", "three"));
    EXPECT_TRUE(changes("seq/truth/counts/spectra.csv", "other"));
    const QString before = hash();
    ASSERT_TRUE(QFile::rename(path("seq/C2/ClickInfo.txt"), path("seq/C2/clickinfo.txt")));
    EXPECT_NE(hash(), before);
    ASSERT_TRUE(QFile::remove(path("seq/C2/clickinfo.txt")));
    EXPECT_NE(hash(), before);
}

// An analysis leaves its results there, and the next look must find the sequence unchanged.
TEST_F(SequenceContentTest, ResultsBesideTheImagesAreNoneOfIt)
{
    EXPECT_FALSE(changes("seq/unmixed-library/summary.json", "{}"));
    EXPECT_FALSE(changes("seq/unmixed-library/01_A.tif", "map"));
    EXPECT_FALSE(changes("seq/pca/pca.json", "{}"));
    EXPECT_FALSE(changes("seq/comparison/comparison.csv", "a"));
    EXPECT_FALSE(changes("seq/XML/SPUM.txt", "index"));
    EXPECT_FALSE(changes("seq/SPUM20240131235959/SPUM.txt", "index"));
    EXPECT_FALSE(changes("seq/.written.json", "{}"));
    EXPECT_FALSE(changes("seq/.hidden/luminescent.TIF", "pixels"));
    EXPECT_FALSE(changes("seq/notes.odt", "notes"));
}

TEST_F(SequenceContentTest, TheSameContentElsewhereIsTheSame)
{
    const QString before = hash();
    ASSERT_TRUE(QDir().rename(path("seq"), path("moved")));
    EXPECT_EQ(hashOfSequence(path("moved"), contentOfSequence(path("moved"))), before);
    ASSERT_TRUE(QFile::link(path("moved"), path("seq")));
    EXPECT_EQ(hash(), before);
}

TEST_F(SequenceContentTest, LinksAreFollowedAndNoneTwice)
{
    write("elsewhere/ClickInfo.txt", "far");
    ASSERT_TRUE(QFile::link(path("elsewhere"), path("seq/C2")));
    ASSERT_TRUE(QFile::link(path("seq"), path("seq/C3")));
    EXPECT_TRUE(files().contains("C2/ClickInfo.txt"));
    EXPECT_EQ(files().size(), 5);
    EXPECT_TRUE(changes("elsewhere/ClickInfo.txt", "near"));
}

// Who waits for a pipe's writer waits for ever.
TEST_F(SequenceContentTest, WhatIsNoFileIsNotWaitedFor)
{
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("seq/C1/photograph.TIF")).constData(), 0600), 0);
    EXPECT_EQ(files().size(), 5);
    EXPECT_EQ(hash().size(), 40);
}

TEST_F(SequenceContentTest, AHashThatIsToStopIsEmpty)
{
    EXPECT_EQ(hashOfSequence(path("seq"), files(), [] { return false; }), QString());
    EXPECT_EQ(hashOfSequence(path("seq"), files(), [] { return true; }), hash());
}

TEST_F(SequenceContentTest, AFileCountsByItsBytesAlone)
{
    EXPECT_EQ(fileHash(write("a.csv", "bytes")), fileHash(write("b.csv", "bytes")));
    EXPECT_NE(fileHash(write("b.csv", "Bytes")), fileHash(path("a.csv")));
    EXPECT_NE(fileHash(path("none.csv")), fileHash(write("empty.csv", "")));
    // As sha1sum tells it.
    EXPECT_EQ(fileHash(path("a.csv")), QCryptographicHash::hash("bytes", QCryptographicHash::Sha1).toHex());
    EXPECT_EQ(fileHash(path("none.csv")), QString());
}
