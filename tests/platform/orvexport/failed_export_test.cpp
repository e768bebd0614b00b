// SPDX-License-Identifier: GPL-3.0-or-later
// Exports that cannot be done: what was there stays, and somebody is told why.
#include "host/CDicomExporter.h"
#include "host/CORVImageExporter.h"

#include "faults/faults.h"
#include "platform/orvexport/PictureReaders.h"
#include "support/ForkedChild.h"

#include "platform/orvutils/LogSinks.h"

namespace {

// Colours that no compression makes small. Not larger than what Qt converts without its threads, which a forked child
// does not have.
QImage noise()
{
    QImage picture(120, 130, QImage::Format_RGB32);
    quint32 nState = 1;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            nState = nState * 1664525U + 1013904223U;
            picture.setPixel(x, y, nState >> 8);
        }
    }
    return picture;
}

class FailedExportTest : public ::testing::TestWithParam<readers::Format>
{
protected:
    void SetUp() override
    {
        QFile file(m_strFile);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("what was there");
    }
    // 0 when the export fails with a sentence that names the file.
    int failure(const QImage& picture)
    {
        QString strError;
        if (CORVImageExporter::saveImage(picture, m_strFile, &strError)) {
            return 2;
        }
        const QString strHead = m_strFile + QStringLiteral(": cannot be written: ");
        return strError.startsWith(strHead) && strError.size() > strHead.size() ? 0 : 3;
    }
    void expectUntouched() const
    {
        EXPECT_EQ(readers::bytesOf(m_strFile), "what was there");
        EXPECT_EQ(
            QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name).size(),
            1);
    }

    QTemporaryDir m_folder;
    QString m_strFile = m_folder.filePath(QStringLiteral("a.") + QLatin1String(GetParam().suffix));
};

INSTANTIATE_TEST_SUITE_P(Formats, FailedExportTest, ::testing::ValuesIn(readers::formats),
                         [](const auto& named) { return std::string(named.param.suffix); });

TEST_P(FailedExportTest, AFullDiskKeepsWhatWasThere)
{
    const QImage picture = noise();
    for (const int nLimit : {0, 500, 10000}) {
        EXPECT_EQ(inForkedChild([&] { return limitFileSize(static_cast<rlim_t>(nLimit)) ? failure(picture) : 1; }), 0)
            << nLimit;
        expectUntouched();
    }
}

TEST_P(FailedExportTest, AFolderThatMayNotBeWrittenToKeepsWhatWasThere)
{
    const QByteArray folder = QFile::encodeName(m_folder.path());
    ASSERT_EQ(::chmod(folder.constData(), 0555), 0);
    EXPECT_EQ(inForkedChild([this] { return becomePlainUser() ? failure(readers::testPicture(9, 9)) : 1; }), 0);
    ASSERT_EQ(::chmod(folder.constData(), 0755), 0);
    expectUntouched();
}

TEST_P(FailedExportTest, EveryWriteThatFailsKeepsWhatWasThere)
{
    const QByteArray folder = QFile::encodeName(m_folder.path());
    for (const char* pRules : {"open@1=EACCES", "write@1=ENOSPC", "write@1=EDQUOT", "sync@1=EIO", "rename@1=EACCES"}) {
        ASSERT_TRUE(armFaults(pRules, folder.constData(), nullptr)) << pRules;
        const int nStatus = failure(noise());
        const int nCalls = countedCalls();
        armFaults(nullptr, nullptr, nullptr);
        EXPECT_EQ(nStatus, 0) << pRules;
        EXPECT_GE(nCalls, 1) << pRules;
        expectUntouched();
    }
}

TEST_P(FailedExportTest, NoFileIsWrittenElsewhere)
{
    // A folder for temporary files that is full is no reason to fail.
    const QTemporaryDir folder;
    const QByteArray calls = QFile::encodeName(folder.filePath("calls"));
    ASSERT_TRUE(armFaults(nullptr, nullptr, calls.constData()));
    const bool bWritten = CORVImageExporter::saveImage(noise(), m_strFile);
    armFaults(nullptr, nullptr, nullptr);
    EXPECT_TRUE(bWritten);
    int nOpened = 0;
    for (const QByteArray& line : readers::bytesOf(QFile::decodeName(calls)).split('\n')) {
        if (line.startsWith("open\t")) {
            ++nOpened;
            EXPECT_TRUE(line.mid(5).startsWith(QFile::encodeName(m_folder.path()))) << line.toStdString();
        }
    }
    EXPECT_GE(nOpened, 1);
}

TEST_P(FailedExportTest, TheLogTellsItOnceAsAnError)
{
    QStringList lines;
    const int nSink = orv::addLogSink([&lines](const orv::LogRecord& record) {
        lines.append(QStringLiteral("%1 %2").arg(record.m_nLevel).arg(record.m_strMessage));
    });
    QString strError;
    EXPECT_FALSE(CORVImageExporter::saveImage(QImage(), m_strFile, &strError));
    orv::removeLogSink(nSink);
    EXPECT_EQ(lines, QStringList{"3 " + strError});
}

TEST_P(FailedExportTest, AMissingFolderIsTold)
{
    m_strFile = m_folder.filePath(QStringLiteral("none/a.") + QLatin1String(GetParam().suffix));
    EXPECT_EQ(failure(readers::testPicture(3, 3)), 0);
}

TEST_P(FailedExportTest, AFolderInTheFilesPlaceIsTold)
{
    ASSERT_TRUE(QFile::remove(m_strFile));
    ASSERT_TRUE(QDir().mkdir(m_strFile));
    EXPECT_EQ(failure(readers::testPicture(3, 3)), 0);
    EXPECT_TRUE(QFileInfo(m_strFile).isDir());
}

TEST_P(FailedExportTest, AnEmptyPictureIsTold)
{
    QString strError;
    EXPECT_FALSE(CORVImageExporter::saveImage(QImage(), m_strFile, &strError));
    EXPECT_EQ(strError, m_strFile + ": cannot be written: an empty picture cannot be written");
    expectUntouched();
}

// A row of pixels that is longer than the format can tell.
struct Longest
{
    const char* suffix;
    int pixels;
};

std::ostream& operator<<(std::ostream& stream, const Longest& longest)
{
    return stream << longest.suffix << ' ' << longest.pixels;
}

class LongestSideTest : public ::testing::TestWithParam<Longest>
{
};

INSTANTIATE_TEST_SUITE_P(Formats, LongestSideTest,
                         ::testing::Values(Longest{"jpg", 65500}, Longest{"jpeg", 65500}, Longest{"wmf", 32767},
                                           Longest{"dcm", 65535}),
                         [](const auto& named) { return std::string(named.param.suffix); });

TEST_P(LongestSideTest, IsWrittenAndOnePixelMoreIsRefused)
{
    const QTemporaryDir folder;
    const QString strFile = folder.filePath(QStringLiteral("a.") + QLatin1String(GetParam().suffix));
    QString strError;
    EXPECT_TRUE(CORVImageExporter::saveImage(QImage(GetParam().pixels, 1, QImage::Format_RGB32), strFile, &strError))
        << strError.toStdString();
    EXPECT_TRUE(QFile::remove(strFile));
    const int nMore = GetParam().pixels + 1;
    EXPECT_FALSE(CORVImageExporter::saveImage(QImage(nMore, 1, QImage::Format_RGB32), strFile, &strError));
    EXPECT_EQ(strError, QStringLiteral("%1: cannot be written: a picture of %2 x 1 pixels is too large for this "
                                       "format, which holds %3 a side")
                            .arg(strFile)
                            .arg(nMore)
                            .arg(GetParam().pixels));
    EXPECT_FALSE(CORVImageExporter::saveImage(QImage(1, nMore, QImage::Format_RGB32), strFile));
    EXPECT_FALSE(QFileInfo::exists(strFile));
}

TEST(FailedExportNameTest, AnUnknownEndingIsToldWithThoseThatAreKnown)
{
    const QTemporaryDir folder;
    const QImage picture = readers::testPicture(4, 4);
    for (const char* pName : {"picture.gif", "picture", "mouse 1.5", "picture.", "picture.pngx", ".png/picture"}) {
        const QString strFile = folder.filePath(QString::fromLatin1(pName));
        QString strError;
        EXPECT_FALSE(CORVImageExporter::saveImage(picture, strFile, &strError)) << pName;
        EXPECT_EQ(strError, strFile + ": cannot be written: the name's ending is no format of pictures. Give the name "
                                      "one of these endings: bmp, jpg, jpeg, png, wmf, emf, eps, tiff, tif, dcm");
    }
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST(FailedExportNameTest, ADicomExporterWritesWhateverTheNameAndTellsFailures)
{
    const QTemporaryDir folder;
    const QImage picture = readers::testPicture(4, 4);
    EXPECT_TRUE(CDicomExporter(folder.filePath("picture.DCM")).writeDicomGraphics(picture));
    EXPECT_EQ(readers::byDcm2pnm(folder.filePath("picture.DCM")), picture);
    QString strError;
    EXPECT_FALSE(CDicomExporter(folder.filePath("none/a.dcm")).writeDicomGraphics(picture, &strError));
    EXPECT_TRUE(strError.startsWith(folder.filePath("none/a.dcm: cannot be written: "))) << strError.toStdString();
    EXPECT_FALSE(CDicomExporter(folder.filePath("a.dcm")).writeDicomGraphics(QImage()));
}

} // namespace
