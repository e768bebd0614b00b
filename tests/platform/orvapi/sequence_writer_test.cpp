// SPDX-License-Identifier: GPL-3.0-or-later
#include "SequenceFolders.h"

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace sequencefolders;

namespace {

class SequenceWriterTest : public SequenceFolderTest
{
protected:
    bool begin(bool bForce = false) { return m_writer.begin(m_strTarget, named("SEQ"), bForce, &m_strError); }
    bool add(const QString& strClick, const SequenceWriter::Images& images)
    {
        return m_writer.addDataset(fullClick(strClick), images, &m_strError);
    }
    bool add(const QString& strClick) { return add(strClick, {{IMAGETYPE_LUMINESCENT, &m_data}}); }

    SequenceWriter m_writer;
    CILImage m_data = flatImage(3, 2, 340.0, 4.0F);
};

// Runs `body` in a child and gives its exit status, so that a lowered limit or right harms no other test.
template <typename Body>
int statusOfChild(Body body)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(body());
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000;
}

TEST_F(SequenceWriterTest, NothingIsSeenBeforeFinishAndNothingIsLeftBeside)
{
    ASSERT_TRUE(begin()) << m_strError.toStdString();
    ASSERT_TRUE(add("C1")) << m_strError.toStdString();
    EXPECT_FALSE(QFile::exists(m_strTarget));
    ASSERT_TRUE(m_writer.finish(&m_strError)) << m_strError.toStdString();
    EXPECT_EQ(entries(m_home.path()), QStringList{QDir(m_strTarget).dirName()});
    EXPECT_EQ(entries(m_strTarget), (QStringList{".written.json", "C1", "SequenceInfo.txt"}));
}

TEST_F(SequenceWriterTest, UnfinishedWriterLeavesNothing)
{
    {
        SequenceWriter writer;
        ASSERT_TRUE(writer.begin(m_strTarget, named("SEQ"), false));
        ASSERT_TRUE(writer.addDataset(fullClick("C1"), {{IMAGETYPE_LUMINESCENT, &m_data}}));
        ASSERT_FALSE(writer.extraFolder("truth").isEmpty());
    }
    EXPECT_TRUE(entries(m_home.path()).isEmpty());
}

TEST_F(SequenceWriterTest, ExistingTargetIsRefusedWithoutForce)
{
    writeThreeClicks();
    EXPECT_FALSE(begin());
    EXPECT_TRUE(m_strError.contains(m_strTarget)) << m_strError.toStdString();
    EXPECT_FALSE(add("C1"));
    EXPECT_FALSE(m_writer.finish());
    EXPECT_EQ(entries(m_strTarget).size(), 5);
}

TEST_F(SequenceWriterTest, TargetThatAppearsMeanwhileIsNotReplaced)
{
    ASSERT_TRUE(begin());
    ASSERT_TRUE(add("C1"));
    overwrite(m_strTarget, "someone's file");
    EXPECT_FALSE(m_writer.finish(&m_strError));
    EXPECT_EQ(contentOf(m_strTarget), "someone's file");
}

TEST_F(SequenceWriterTest, ForceReplacesASequenceOnlyAtFinish)
{
    writeThreeClicks();
    {
        SequenceWriter aborted;
        ASSERT_TRUE(aborted.begin(m_strTarget, named("NEW"), true));
        ASSERT_TRUE(aborted.addDataset(fullClick("N1"), {{IMAGETYPE_LUMINESCENT, &m_data}}));
        EXPECT_EQ(entries(m_strTarget).size(), 5);
    }
    EXPECT_EQ(entries(m_strTarget), (QStringList{".written.json", "C1", "C2", "C3", "SequenceInfo.txt"}));
    ASSERT_TRUE(begin(true)) << m_strError.toStdString();
    ASSERT_TRUE(add("N1"));
    ASSERT_TRUE(m_writer.finish(&m_strError)) << m_strError.toStdString();
    EXPECT_EQ(entries(m_strTarget), (QStringList{".written.json", "N1", "SequenceInfo.txt"}));
    EXPECT_EQ(entries(m_home.path()).size(), 1);
}

TEST_F(SequenceWriterTest, ForceSparesWhatIsPutThereMeanwhile)
{
    writeThreeClicks();
    ASSERT_TRUE(begin(true)) << m_strError.toStdString();
    ASSERT_TRUE(add("N1"));
    overwrite(m_strTarget + "/C1/note.txt", "mine");
    EXPECT_FALSE(m_writer.finish(&m_strError));
    EXPECT_TRUE(m_strError.contains(" would be lost: C1/note.txt; ")) << m_strError.toStdString();
    EXPECT_EQ(contentOf(m_strTarget + "/C1/note.txt"), "mine");
}

TEST_F(SequenceWriterTest, ForceSparesFoldersThatAreNoSequence)
{
    ASSERT_TRUE(QDir().mkdir(m_strTarget));
    overwrite(inTarget("thesis.tex"), "years of work");
    EXPECT_FALSE(begin(true));
    EXPECT_TRUE(QFile::exists(inTarget("thesis.tex")));
}

TEST_F(SequenceWriterTest, MissingParentAndFileInTheParentsPlaceAreRefused)
{
    EXPECT_FALSE(m_writer.begin(m_home.filePath("no/seq"), named("SEQ"), false, &m_strError));
    EXPECT_TRUE(m_strError.contains(m_home.filePath("no"))) << m_strError.toStdString();
    overwrite(m_home.filePath("file"), "x");
    SequenceWriter writer;
    EXPECT_FALSE(writer.begin(m_home.filePath("file/seq"), named("SEQ"), false, &m_strError));
    EXPECT_EQ(entries(m_home.path()), QStringList{"file"});
}

TEST_F(SequenceWriterTest, ReadOnlyFolderIsRefused)
{
    const QByteArray home = QFile::encodeName(m_home.path());
    ASSERT_EQ(chmod(home.constData(), 0555), 0);
    const int status = statusOfChild([&] {
        if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) {
            return 9;
        }
        SequenceWriter writer;
        QString error;
        return !writer.begin(m_strTarget, named("SEQ"), false, &error) && error.contains(m_strTarget) ? 0 : 1;
    });
    ASSERT_EQ(chmod(home.constData(), 0755), 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(entries(m_home.path()).isEmpty());
}

TEST_F(SequenceWriterTest, FullDiskFailsWithTheFileAndLeavesNothing)
{
    for (const rlim_t limit : {rlim_t{16}, rlim_t{5000}, rlim_t{40000}}) {
        const int status = statusOfChild([&] {
            const struct rlimit size = {limit, limit};
            if (signal(SIGXFSZ, SIG_IGN) == SIG_ERR || setrlimit(RLIMIT_FSIZE, &size) != 0) {
                return 9;
            }
            const CILImage large = flatImage(200, 200, 1.0);
            SequenceWriter writer;
            QString error;
            if (!writer.begin(m_strTarget, named("SEQ"), false, &error)) {
                return 8;
            }
            if (writer.addDataset(fullClick("C1"), {{IMAGETYPE_LUMINESCENT, &large}}, &error)) {
                return 7;
            }
            if (!error.contains(inTarget("C1/luminescent.TIF")) || writer.finish(&error)) {
                return 6;
            }
            return 0;
        });
        EXPECT_EQ(status, 0) << "limit " << limit;
        EXPECT_TRUE(entries(m_home.path()).size() <= 1); // the child ended without its destructors
        EXPECT_FALSE(QFile::exists(m_strTarget));
        for (const QString& left : entries(m_home.path())) {
            QDir(m_home.filePath(left)).removeRecursively();
        }
    }
}

TEST_F(SequenceWriterTest, DiskFullAtTheClickInfoFailsToo)
{
    const int status = statusOfChild([&] {
        const struct rlimit size = {700, 700};
        if (signal(SIGXFSZ, SIG_IGN) == SIG_ERR || setrlimit(RLIMIT_FSIZE, &size) != 0) {
            return 9;
        }
        int result = 0;
        {
            DatasetDescription click = fullClick("C1");
            setKey(click.info, "User Input", "Label", QString(2000, 'x'));
            SequenceWriter writer;
            QString error;
            if (!writer.begin(m_strTarget, named("SEQ"), false, &error)) {
                return 8;
            }
            if (writer.addDataset(click, {{IMAGETYPE_LUMINESCENT, &m_data}}, &error) ||
                !error.contains("ClickInfo.txt")) {
                result = 7;
            }
        }
        return result;
    });
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(entries(m_home.path()).isEmpty());
}

TEST_F(SequenceWriterTest, SecondClickNumberIsRefusedAndEndsTheWriting)
{
    ASSERT_TRUE(begin());
    ASSERT_TRUE(add("C1"));
    EXPECT_FALSE(add("C1"));
    EXPECT_TRUE(m_strError.contains("C1"));
    EXPECT_FALSE(m_writer.finish(&m_strError));
    EXPECT_FALSE(QFile::exists(m_strTarget));
}

TEST_F(SequenceWriterTest, UnusableDatasetsAreRefused)
{
    const CILImage empty;
    const QList<QPair<QString, SequenceWriter::Images>> wrong{
        {"", {{IMAGETYPE_LUMINESCENT, &m_data}}},
        {" C1", {{IMAGETYPE_LUMINESCENT, &m_data}}},
        {"C\n1", {{IMAGETYPE_LUMINESCENT, &m_data}}},
        {"C1", {{IMAGETYPE_LUMINESCENT, &empty}}},
        {"C1", {{IMAGETYPE_LUMINESCENT, nullptr}}},
        {"C1", {{IMAGETYPE_LUMINESCENT, &m_data}, {IMAGETYPE_LUMINESCENT, &m_data}}},
        {"C1", {{static_cast<tag_eimagetype>(3), &m_data}}}};
    for (const auto& [click, images] : wrong) {
        SequenceWriter writer;
        ASSERT_TRUE(writer.begin(m_strTarget, named("SEQ"), false));
        EXPECT_FALSE(writer.addDataset(fullClick(click), images, &m_strError)) << click.toStdString();
        EXPECT_TRUE(m_strError.contains(m_strTarget)) << m_strError.toStdString();
    }
    EXPECT_TRUE(entries(m_home.path()).isEmpty());
}

TEST_F(SequenceWriterTest, SequenceWithoutDatasetOrIdIsRefused)
{
    ASSERT_TRUE(begin());
    EXPECT_FALSE(m_writer.finish(&m_strError));
    EXPECT_FALSE(m_strError.isEmpty());
    SequenceWriter nameless;
    EXPECT_FALSE(nameless.begin(m_strTarget, named(""), false, &m_strError));
    SequenceWriter idle;
    EXPECT_FALSE(idle.finish());
    EXPECT_TRUE(idle.extraFolder("truth").isEmpty());
    EXPECT_FALSE(QFile::exists(m_strTarget));
}

TEST_F(SequenceWriterTest, ClickNumbersOfAnyKindBecomeFoldersOfTheirOwn)
{
    const QStringList clicks{"a/b",
                             "a_b",
                             "A_B",
                             "..",
                             ".hidden",
                             "truth",
                             "SequenceInfo.txt",
                             QString(300, 'x'),
                             QString::fromUtf8("Gr\xC3\xBC\xC3\x9F"
                                               "e 1"),
                             "a:b?*\"|"};
    ASSERT_TRUE(begin());
    const QString truth = m_writer.extraFolder("truth");
    ASSERT_FALSE(truth.isEmpty());
    EXPECT_EQ(m_writer.extraFolder("truth"), truth);
    overwrite(truth + "map.csv", "1,2");
    for (const QString& click : clicks) {
        ASSERT_TRUE(add(click)) << click.toStdString() << ": " << m_strError.toStdString();
    }
    ASSERT_TRUE(m_writer.finish(&m_strError)) << m_strError.toStdString();
    EXPECT_TRUE(QFile::exists(inTarget("truth/map.csv")));
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(m_strTarget, &m_strError, &m_warnings), ESTATUS_SUCCESS) << m_strError.toStdString();
    EXPECT_EQ(clickNumbers(sequence), clicks) << m_warnings.join("\n").toStdString();
}

TEST_F(SequenceWriterTest, ExtraFolderTakesPlainNamesAlone)
{
    ASSERT_TRUE(begin());
    ASSERT_TRUE(add("C1"));
    for (const char* pName : {"", ".", "..", "a/b", "../a", ".a", "C1"}) {
        EXPECT_TRUE(m_writer.extraFolder(pName).isEmpty()) << pName;
    }
}

TEST_F(SequenceWriterTest, OriginOfThePhotographAndTruthFolderAreWritten)
{
    SequenceDescription description;
    description.id = "T1";
    description.photographOrigin = "mean image";
    description.truthFolder = "truth";
    writeThreeClicks(description);
    CPLClickInfo info;
    ASSERT_EQ(info.loadClickInfo(inTarget("SequenceInfo.txt")), 0);
    QString value;
    EXPECT_EQ(info[SequenceKeys::kSequence]->getValue(SequenceKeys::kPhotographOrigin, &value), 0);
    EXPECT_EQ(value, "mean image");
    EXPECT_EQ(info[SequenceKeys::kSequence]->getValue(SequenceKeys::kTruthFolder, &value), 0);
    EXPECT_EQ(value, "truth");
    EXPECT_EQ(info[SequenceKeys::kSequence]->getValue(SequenceKeys::kName, &value), 0);
    EXPECT_EQ(value, "T1"); // the id serves as name
}

TEST_F(SequenceWriterTest, BinningOfEachImageIsWrittenUnlessItIsThere)
{
    const CILImage photo = flatImage(4, 4, 9.0, 2.0F);
    ASSERT_TRUE(begin());
    ASSERT_TRUE(add("C1", {{IMAGETYPE_LUMINESCENT, &m_data}, {IMAGETYPE_PHOTOGRAPH, &photo}}));
    ASSERT_TRUE(m_writer.finish());
    CORVDataset dataset;
    ASSERT_EQ(dataset.open(inTarget("C1")), ESTATUS_SUCCESS);
    EXPECT_FLOAT_EQ(dataset.getBinningForImage(IMAGETYPE_PHOTOGRAPH), 2.0F);
    EXPECT_FLOAT_EQ(dataset.getBinningForImage(IMAGETYPE_LUMINESCENT), 4.0F);
}

TEST_F(SequenceWriterTest, PixelsComeBackAsTheyWere)
{
    CILImage data = flatImage(5, 7, 0.0, 2.0F);
    for (std::size_t i = 0; i < data.pixelCount(); ++i) {
        data.setValue(i, 0.1 * static_cast<double>(i) - 1.5);
    }
    ASSERT_TRUE(begin());
    ASSERT_TRUE(add("C1", {{IMAGETYPE_LUMINESCENT, &data}}));
    ASSERT_TRUE(m_writer.finish());
    CORVDataset dataset;
    ASSERT_EQ(dataset.open(inTarget("C1")), ESTATUS_SUCCESS);
    CILImage* pRead = dataset.getCoreImage(IMAGETYPE_LUMINESCENT);
    ASSERT_NE(pRead, nullptr);
    ASSERT_EQ(pRead->dataType(), ORVTYPE_FLOAT);
    for (std::size_t i = 0; i < data.pixelCount(); ++i) {
        ASSERT_EQ(pRead->floats()[i], data.floats()[i]);
    }
}

} // namespace
