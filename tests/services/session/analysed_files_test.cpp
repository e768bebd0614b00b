// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/AnalysedFiles.h"

#include "services/basis/fileHash.h"
#include "services/session/OpenedSequence.h"
#include "services/support/CliFixture.h"
#include "services/support/SmallSequence.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"

#include <QDir>

#include <algorithm>

namespace {

class AnalysedFilesTest : public CliFixture
{
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        SmallSequence sequence;
        const auto one = [](int) { return 1.0F; };
        sequence.addBands({one, one, one});
        sequence.writeTo(path("seq"));
    }
    static QStringList namesOf(const QList<AnalysedFile>& files)
    {
        QStringList names;
        for (const AnalysedFile& file : files) {
            names.append(file.name);
        }
        return names;
    }
    // Of the second and third image, by their folder.
    QList<AnalysedFile> filesOfTwo()
    {
        OpenedSequence opened(path("seq"));
        const auto datasets = opened.sequence().getDatasets();
        m_first = QDir(opened.folder()).relativeFilePath(datasets[0]->folderPath());
        m_second = QDir(opened.folder()).relativeFilePath(datasets[1]->folderPath());
        return analysedFiles(opened.sequence(), {datasets[1]->getClickNumber(), datasets[2]->getClickNumber()});
    }
    QString m_first;
    QString m_second;
};

} // namespace

TEST_F(AnalysedFilesTest, AreThoseOfTheSelectedImagesAndThePhotographsOfAll)
{
    write("seq/notes.csv", "of nobody");
    const QList<AnalysedFile> files = filesOfTwo();
    const QStringList names = namesOf(files);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_TRUE(names.contains("SequenceInfo.txt"));
    EXPECT_FALSE(names.contains("notes.csv"));
    EXPECT_TRUE(names.contains(QDir::cleanPath(m_second + "/ClickInfo.txt"))) << names.join(' ').toStdString();
    EXPECT_FALSE(names.contains(QDir::cleanPath(m_first + "/ClickInfo.txt")));
    const auto ofFirst = [this](const AnalysedFile& file) { return file.name.startsWith(m_first); };
    ASSERT_EQ(std::count_if(files.begin(), files.end(), ofFirst), 1);
    EXPECT_TRUE(std::find_if(files.begin(), files.end(), ofFirst)->name.contains("hotograph", Qt::CaseInsensitive));
    for (const AnalysedFile& file : files) {
        EXPECT_EQ(file.image.isEmpty(), file.name == "SequenceInfo.txt") << qPrintable(file.name);
        EXPECT_TRUE(file.sha1.isEmpty());
    }
}

// They decide about the mask.
TEST_F(AnalysedFilesTest, ThePixelsThatHaveAValueAreAmongThem)
{
    write("seq/valid.tif", "some");
    EXPECT_TRUE(namesOf(filesOfTwo()).contains("valid.tif"));
}

TEST_F(AnalysedFilesTest, HashesAreThoseOfTheirBytesAndEmptyForWhatIsMissing)
{
    write("seq/valid.tif", "some");
    const QList<AnalysedFile> hashed =
        hashedFiles(path("seq"), {{QString(), "valid.tif", QString()}, {QString(), "gone.tif", QString()}});
    ASSERT_EQ(hashed.size(), 2);
    EXPECT_EQ(hashed[0].sha1, "eb875812858d27b22cb2b75f992dffadc1b05c66");
    EXPECT_EQ(hashed[0].sha1, fileHash(path("seq/valid.tif")));
    EXPECT_EQ(hashed[1].sha1, "");
    EXPECT_EQ(hashedFiles(path("seq"), hashed, [] { return false; })[0].sha1, "");
}
