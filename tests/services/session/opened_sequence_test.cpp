// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/OpenedSequence.h"
#include "services/support/CliFixture.h"
#include "services/support/SmallSequence.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVSequenceDataset.h"

#include <QDir>
#include <QFile>

namespace {

class OpenedSequenceTest : public CliFixture
{
protected:
    OpenedSequenceTest()
    {
        const auto one = [](int) { return 1.0F; };
        m_sequence.addBands({one, one, one});
    }
    QString reason()
    {
        m_sequence.writeTo(path("seq"));
        const OpenedSequence opened(path("seq"));
        EXPECT_FALSE(opened.canBeAnalysed());
        return opened.reasonAgainst();
    }
    SmallSequence m_sequence;
};

} // namespace

TEST_F(OpenedSequenceTest, ASequenceIsOpenedWithItsEngine)
{
    m_sequence.writeTo(path("seq"));
    OpenedSequence opened(path("seq"));
    EXPECT_TRUE(opened.canBeAnalysed());
    EXPECT_EQ(opened.reasonAgainst(), "");
    EXPECT_TRUE(opened.warnings().isEmpty());
    EXPECT_EQ(opened.engine().getAllKeyPairs().size(), 3);
    EXPECT_EQ(QDir(opened.folder()), QDir(path("seq")));
    EXPECT_TRUE(opened.folder().endsWith('/'));
}

TEST_F(OpenedSequenceTest, AFolderThatIsNoSequenceIsRefusedByName)
{
    EXPECT_TRUE(failureOf([&] { OpenedSequence opened(path("absent")); }).startsWith(path("absent") + ": "));
    ASSERT_TRUE(QDir().mkpath(path("empty")));
    EXPECT_TRUE(failureOf([&] { OpenedSequence opened(path("empty")); }).contains(path("empty")));
}

TEST_F(OpenedSequenceTest, ABrokenDatasetIsToldAndTheRestOpens)
{
    m_sequence.writeTo(path("seq"));
    write("seq/SMALL-001/luminescent.TIF", "cut");
    OpenedSequence opened(path("seq"));
    EXPECT_TRUE(opened.canBeAnalysed());
    EXPECT_EQ(opened.engine().getAllKeyPairs().size(), 2);
    ASSERT_EQ(opened.warnings().size(), 1);
    EXPECT_TRUE(opened.warnings()[0].contains("SMALL-001"));
}

TEST_F(OpenedSequenceTest, WithoutAPhotographThereIsNoAnalysis)
{
    m_sequence.photograph = false;
    EXPECT_EQ(reason(), "there is no photograph");
}

TEST_F(OpenedSequenceTest, OneWavelengthIsNotEnough)
{
    m_sequence.images.erase(m_sequence.images.begin() + 1, m_sequence.images.end());
    EXPECT_EQ(reason(), "it takes images at two wavelengths at least, given by three digits in their filter texts");
}

TEST_F(OpenedSequenceTest, OneTimePointIsNotEnough)
{
    m_sequence.temporal = true;
    m_sequence.images.erase(m_sequence.images.begin() + 1, m_sequence.images.end());
    m_sequence.images[0].kyvoTime = "5";
    m_sequence.images[0].kyvoInterval = "1";
    EXPECT_EQ(reason(), "it takes images at two time points at least");
}

TEST_F(OpenedSequenceTest, TheTruthIsFoundByItsUnit)
{
    m_sequence.truthFolder = "truth";
    m_sequence.writeTo(path("seq"));
    ASSERT_TRUE(QDir().mkpath(path("seq/truth/radiant-efficiency")));
    const OpenedSequence opened(path("seq"));
    EXPECT_EQ(opened.truthFolder(DISPLAYUNIT_RADIANT_EFFICIENCY), path("seq") + "/truth/radiant-efficiency/");
    EXPECT_EQ(opened.truthFolder(DISPLAYUNIT_COUNTS), "");
}

TEST_F(OpenedSequenceTest, DataCorrectedForDecayHaveTheirOwnTruth)
{
    m_sequence.truthFolder = "truth";
    m_sequence.writeTo(path("seq"));
    ASSERT_TRUE(QDir().mkpath(path("seq/truth/counts")));
    ASSERT_TRUE(QDir().mkpath(path("seq/truth/radiance")));
    ASSERT_TRUE(QDir().mkpath(path("seq/truth/radiance-decay-corrected")));
    const OpenedSequence opened(path("seq"));
    EXPECT_EQ(opened.truthFolder(DISPLAYUNIT_RADIANCE, true), path("seq") + "/truth/radiance-decay-corrected/");
    EXPECT_EQ(opened.truthFolder(DISPLAYUNIT_RADIANCE), path("seq") + "/truth/radiance/");
    EXPECT_EQ(opened.truthFolder(DISPLAYUNIT_COUNTS, true), "");
}

TEST_F(OpenedSequenceTest, ATruthOutsideTheSequenceIsToldAndNotRead)
{
    ASSERT_TRUE(QDir().mkpath(path("seq-other/radiant-efficiency")));
    for (const QString& name : {QStringLiteral("../seq-other"), path("seq-other")}) {
        m_sequence.truthFolder = name;
        const QString folder = path(QDir::isAbsolutePath(name) ? "absolute" : "seq");
        m_sequence.writeTo(folder);
        const OpenedSequence opened(folder);
        EXPECT_EQ(opened.truthFolder(DISPLAYUNIT_RADIANT_EFFICIENCY), "");
        EXPECT_TRUE(
            opened.warnings().contains("the truth folder " + name + " lies outside the sequence and is not read"))
            << qPrintable(opened.warnings().join('\n'));
    }
}

TEST_F(OpenedSequenceTest, WithoutATruthThereIsNone)
{
    m_sequence.writeTo(path("seq"));
    const OpenedSequence opened(path("seq"));
    EXPECT_EQ(opened.truthFolder(DISPLAYUNIT_RADIANT_EFFICIENCY), "");
}
