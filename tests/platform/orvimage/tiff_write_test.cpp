// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/ImageSupport.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvimage/TiffSupport.h"

#include <QDir>
#include <QTemporaryDir>

#include <rapidcheck/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <csignal>

namespace {

class TiffWriteTest : public testing::Test
{
protected:
    QString path(const QString& name = "image.tif") const { return m_folder.filePath(name); }
    QStringList files() const { return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden); }

    QTemporaryDir m_folder;
};

CILImage bigImage()
{
    CILImage image;
    image.InitWithType(ORVTYPE_DOUBLE, 400, 300);
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        image.setValue(i, std::sin(static_cast<double>(i)));
    }
    return image;
}

// Runs `body` in a child process and gives its exit status.
template <typename Body>
int inChild(Body body)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(body());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

TEST_F(TiffWriteTest, EveryTypeAndCompressionComesBack)
{
    const std::vector<double> values{0, 1, 2, 250, 255, 3};
    for (const ORVDataTypes type : kAllPixelTypes) {
        for (const auto compression : {TiffWriteOptions::Compression::None, TiffWriteOptions::Compression::Deflate}) {
            TiffWriteOptions options;
            options.compression = compression;
            options.description = QString::fromUtf8("unit: µW");
            QString error;
            ASSERT_TRUE(writeTiff(path(), makeImage(type, 3, 2, values), options, &error)) << qPrintable(error);
            CILImage image;
            ASSERT_TRUE(readTiff(path(), 0, image, &error)) << qPrintable(error);
            EXPECT_EQ(type, image.dataType());
            EXPECT_EQ(3, image.m_lWidth);
            EXPECT_EQ(values, valuesOf(image));
            TiffInfo info;
            ASSERT_TRUE(readTiffHeader(path(), 0, &info, &error));
            EXPECT_EQ(options.description, info.description);
        }
    }
    EXPECT_EQ(QStringList{"image.tif"}, files()) << "no temporary file is left";
}

TEST_F(TiffWriteTest, ExtremesAndNaNComeBack)
{
    const double tiny = std::numeric_limits<double>::denorm_min();
    const double huge = std::numeric_limits<double>::max();
    const CILImage image = makeImage(ORVTYPE_DOUBLE, 5, 1, {tiny, -huge, huge, kInfinity, kNaN});
    for (const auto compression : {TiffWriteOptions::Compression::None, TiffWriteOptions::Compression::Deflate}) {
        ASSERT_TRUE(writeTiff(path(), image, {QString(), compression}, nullptr));
        CILImage back;
        ASSERT_TRUE(readTiff(path(), 0, back, nullptr));
        EXPECT_EQ(0, std::memcmp(image.m_pData, back.m_pData, 40));
    }
}

RC_GTEST_PROP(TiffLaws, WhatIsWrittenIsRead, ())
{
    const int w = *rc::gen::inRange(1, 700);
    const int h = *rc::gen::inRange(1, 200);
    const ORVDataTypes type =
        *rc::gen::elementOf(std::vector<ORVDataTypes>(std::begin(kAllPixelTypes), std::end(kAllPixelTypes)));
    const unsigned seed = *rc::gen::arbitrary<unsigned>();
    CILImage image;
    image.InitWithType(type, w, h);
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        image.setValue(i, static_cast<double>((seed + i * 2654435761U) % 70001U));
    }
    const QTemporaryDir folder;
    const auto compression =
        *rc::gen::element(TiffWriteOptions::Compression::None, TiffWriteOptions::Compression::Deflate);
    RC_ASSERT(writeTiff(folder.filePath("a.tif"), image, {QString(), compression}, nullptr));
    CILImage back;
    RC_ASSERT(readTiff(folder.filePath("a.tif"), 0, back, nullptr));
    RC_ASSERT(back.dataType() == type);
    RC_ASSERT(back.m_lWidth == w && back.m_lHeight == h);
    RC_ASSERT(std::memcmp(image.m_pData, back.m_pData, image.pixelCount() * CILImage::bytesPerPixel(type)) == 0);
}

TEST_F(TiffWriteTest, FailuresNameTheFile)
{
    const CILImage image = makeImage(ORVTYPE_BYTE, 1, 1, {5});
    QString error;
    for (const QString& target : {path("none/a.tif"), m_folder.path()}) {
        EXPECT_FALSE(writeTiff(target, image, {}, &error));
        EXPECT_TRUE(error.startsWith(target + ": ")) << qPrintable(error);
    }
    EXPECT_FALSE(writeTiff(path(), CILImage(), {}, &error));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(TiffWriteTest, SaveAsTiffAnswersWithAStatus)
{
    const CILImage image = makeImage(ORVTYPE_INT, 2, 1, {-5, 6});
    EXPECT_EQ(EIL_SUCCESS, image.saveAsTIFF(QFile::encodeName(path()).constData()));
    CILImage back;
    ASSERT_TRUE(readTiff(path(), 0, back, nullptr));
    EXPECT_EQ(valuesOf(image), valuesOf(back));
    EXPECT_NE(EIL_SUCCESS, image.saveAsTIFF(nullptr));
    EXPECT_NE(EIL_SUCCESS, image.saveAsTIFF(""));
    EXPECT_NE(EIL_SUCCESS, image.saveAsTIFF(QFile::encodeName(path("none/a.tif")).constData()));
    EXPECT_NE(EIL_SUCCESS, CILImage().saveAsTIFF(QFile::encodeName(path()).constData()));
}

TEST_F(TiffWriteTest, AFullDiskLeavesTheEarlierFile)
{
    const CILImage image = bigImage();
    const CILImage earlier = makeImage(ORVTYPE_BYTE, 1, 1, {5});
    for (const rlim_t limit : {rlim_t{1000}, rlim_t{100000}, rlim_t{900000}}) {
        ASSERT_TRUE(writeTiff(path(), earlier, {}, nullptr));
        const int status = inChild([&] {
            signal(SIGXFSZ, SIG_IGN);
            const rlimit sizes{limit, limit};
            setrlimit(RLIMIT_FSIZE, &sizes);
            QString error;
            const bool written = writeTiff(path(), image, {}, &error);
            return written ? 1 : error.startsWith(path() + ": ") ? 0 : 2;
        });
        EXPECT_EQ(0, status) << limit;
        CILImage back;
        ASSERT_TRUE(readTiff(path(), 0, back, nullptr));
        EXPECT_EQ(5.0, back.value(0));
        EXPECT_EQ(QStringList{"image.tif"}, files());
    }
}

TEST_F(TiffWriteTest, AReadOnlyFolderIsAnError)
{
    const QByteArray folder = QFile::encodeName(m_folder.path());
    ASSERT_EQ(0, chmod(folder.constData(), 0555));
    const CILImage image = makeImage(ORVTYPE_BYTE, 1, 1, {5});
    const int status = inChild([&] {
        if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) {
            return 3;
        }
        QString error;
        return writeTiff(path(), image, {}, &error) ? 1 : error.startsWith(path() + ": ") ? 0 : 2;
    });
    ASSERT_EQ(0, chmod(folder.constData(), 0755));
    EXPECT_EQ(0, status);
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(TiffWriteTest, ALinkIsFollowedAndRightsStay)
{
    const CILImage image = makeImage(ORVTYPE_BYTE, 1, 1, {5});
    ASSERT_TRUE(writeTiff(path("real.tif"), image, {}, nullptr));
    ASSERT_EQ(0, chmod(QFile::encodeName(path("real.tif")).constData(), 0640));
    ASSERT_TRUE(QFile::link(path("real.tif"), path("link.tif")));
    ASSERT_TRUE(writeTiff(path("link.tif"), makeImage(ORVTYPE_BYTE, 1, 1, {6}), {}, nullptr));
    EXPECT_TRUE(QFileInfo(path("link.tif")).isSymLink());
    CILImage back;
    ASSERT_TRUE(readTiff(path("real.tif"), 0, back, nullptr));
    EXPECT_EQ(6.0, back.value(0));
    struct stat status = {};
    ASSERT_EQ(0, stat(QFile::encodeName(path("real.tif")).constData(), &status));
    EXPECT_EQ(0640U, status.st_mode & 0777U);
}
