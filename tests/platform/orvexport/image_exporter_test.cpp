// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVImageExporter.h"

#include "platform/orvexport/PictureReaders.h"
#include "platform/orvexport/postscript.h"

#include <QLinearGradient>
#include <QPainter>

#include <tuple>

namespace {

using readers::Format;

// Colours that change slowly, which JPEG keeps.
QImage smoothPicture(const QSize& size)
{
    QImage picture(size, QImage::Format_RGB32);
    QLinearGradient gradient(0.0, 0.0, qMax(100, size.width()), qMax(100, size.height()));
    gradient.setColorAt(0.0, QColor(20, 40, 200));
    gradient.setColorAt(1.0, QColor(250, 120, 30));
    QPainter(&picture).fillRect(picture.rect(), gradient);
    return picture;
}

class ImageExporterTest : public ::testing::Test
{
protected:
    QString path(const QString& strName) const { return m_folder.filePath(strName); }
    QStringList entries() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    QTemporaryDir m_folder;
    QString m_strError;
};

class ReadBackTest : public ImageExporterTest, public ::testing::WithParamInterface<std::tuple<Format, QSize>>
{
};

TEST_P(ReadBackTest, AnotherProgramReadsTheSamePixels)
{
    const auto [format, size] = GetParam();
    const QString strFile = path(QStringLiteral("picture.") + QLatin1String(format.suffix));
    const QImage picture =
        format.tolerance > 0 ? smoothPicture(size) : readers::testPicture(size.width(), size.height());
    ASSERT_TRUE(CORVImageExporter::saveImage(picture, strFile, &m_strError)) << m_strError.toStdString();
    EXPECT_EQ(m_strError, "");
    const QImage back = format.read(strFile);
    ASSERT_EQ(back.size(), size);
    EXPECT_LE(readers::difference(picture, back), format.tolerance);
    EXPECT_EQ(entries().size(), 1) << "nothing is left beside the file";
}

INSTANTIATE_TEST_SUITE_P(Formats, ReadBackTest,
                         ::testing::Combine(::testing::ValuesIn(readers::formats),
                                            ::testing::Values(QSize(1, 1), QSize(2, 1), QSize(1, 3), QSize(3, 2),
                                                              QSize(5, 7), QSize(641, 480), QSize(1923, 1440),
                                                              QSize(4096, 3), QSize(4096, 1025), QSize(3, 4097))),
                         [](const auto& named) {
                             const QSize size = std::get<1>(named.param);
                             return std::string(std::get<0>(named.param).suffix) + "_" + std::to_string(size.width()) +
                                    "x" + std::to_string(size.height());
                         });

TEST_F(ImageExporterTest, KnowsItsFormats)
{
    EXPECT_EQ(CORVImageExporter::suffixes(),
              QStringList({"bmp", "jpg", "jpeg", "png", "wmf", "emf", "eps", "tiff", "tif", "dcm"}));
}

TEST_F(ImageExporterTest, MetafileIsDrawnAtItsOwnSize)
{
    const QImage picture = readers::testPicture(300, 200);
    ASSERT_TRUE(CORVImageExporter::saveImage(picture, path("a.wmf")));
    readers::run("wmf2gd", {"-t", "png", "-o", path("drawn.png"), path("a.wmf")});
    const QImage drawn = readers::pictureOf(path("drawn.png"), "png");
    EXPECT_EQ(drawn.size(), picture.size());
    // It smooths, but up is up and left is left.
    EXPECT_LE(readers::difference(picture.copy(0, 0, 1, 1), drawn.copy(0, 0, 1, 1)), 8);
    EXPECT_LE(readers::difference(picture.copy(150, 20, 1, 1), drawn.copy(150, 20, 1, 1)), 20);
}

TEST_F(ImageExporterTest, MetafileHeaderChecksItself)
{
    ASSERT_TRUE(CORVImageExporter::saveImage(readers::testPicture(641, 480), path("a.wmf")));
    const QByteArray bytes = readers::bytesOf(path("a.wmf"));
    quint16 nCheck = 0;
    for (int i = 0; i < 22; i += 2) {
        nCheck ^= qFromLittleEndian<quint16>(bytes.constData() + i);
    }
    EXPECT_EQ(nCheck, 0);
    EXPECT_EQ(qFromLittleEndian<quint32>(bytes.constData() + 28) * 2 + 22, static_cast<quint32>(bytes.size()));
    EXPECT_EQ(bytes.right(6), QByteArray("\3\0\0\0\0\0", 6));
}

TEST_F(ImageExporterTest, EpsHasItsBoundingBox)
{
    ASSERT_TRUE(CORVImageExporter::saveImage(readers::testPicture(641, 480), path("a.eps")));
    const QByteArray bytes = readers::bytesOf(path("a.eps"));
    EXPECT_TRUE(bytes.startsWith("%!PS-Adobe-3.0 EPSF-3.0\n"));
    EXPECT_TRUE(bytes.contains("%%BoundingBox: 0 0 641 480\n"));
    // Comments stand at the head and at the end alone, and lines are short.
    const QList<QByteArray> lines = bytes.split('\n');
    for (int i = 4; i < lines.size() - 2; ++i) {
        EXPECT_FALSE(lines[i].startsWith('%')) << i;
        EXPECT_LE(lines[i].size(), 120) << i;
    }
}

TEST(Ascii85Test, TextsAreThoseOfTheReference)
{
    EXPECT_EQ(orvexport::ascii85(""), "~>");
    EXPECT_EQ(orvexport::ascii85("Man "), "9jqo^~>");
    EXPECT_EQ(orvexport::ascii85("Man"), "9jqo~>");
    EXPECT_EQ(orvexport::ascii85(QByteArray(4, '\0')), "z~>");
    EXPECT_EQ(orvexport::ascii85(QByteArray(3, '\0')), "!!!!~>");
    EXPECT_EQ(orvexport::ascii85(QByteArray(4, '\xff')), "s8W-!~>");
}

TEST(Ascii85Test, NoLineBeginsAsACommentDoes)
{
    // These bytes begin with a percent sign.
    const QByteArray percent = QByteArray::fromHex("0CC5E8D3");
    ASSERT_TRUE(orvexport::ascii85(percent).trimmed().startsWith('%'));
    for (const QByteArray& line : orvexport::ascii85(percent.repeated(500)).split('\n')) {
        EXPECT_FALSE(line.startsWith('%'));
        EXPECT_LE(line.size(), 76);
    }
}

class LettersOfSuffixTest : public ImageExporterTest, public ::testing::WithParamInterface<Format>
{
};

INSTANTIATE_TEST_SUITE_P(Formats, LettersOfSuffixTest, ::testing::ValuesIn(readers::formats),
                         [](const auto& named) { return std::string(named.param.suffix); });

TEST_P(LettersOfSuffixTest, CapitalsBlanksUmlautsAndDotsInTheNameDoNotMatter)
{
    const QString strFile =
        path(QString::fromUtf8("Maus ä 1.5 µm (größer).") + QString::fromLatin1(GetParam().suffix).toUpper());
    const QImage picture = smoothPicture({33, 21});
    ASSERT_TRUE(CORVImageExporter::saveImage(picture, strFile, &m_strError)) << m_strError.toStdString();
    ASSERT_EQ(entries().size(), 1);
    EXPECT_LE(readers::difference(picture, GetParam().read(strFile)), GetParam().tolerance);
}

TEST_P(LettersOfSuffixTest, AnEarlierFileIsReplaced)
{
    const QString strFile = path(QStringLiteral("a.") + QLatin1String(GetParam().suffix));
    ASSERT_TRUE(CORVImageExporter::saveImage(smoothPicture({64, 64}), strFile));
    const QImage picture = smoothPicture({9, 5});
    ASSERT_TRUE(CORVImageExporter::saveImage(picture, strFile));
    EXPECT_LE(readers::difference(picture, GetParam().read(strFile)), GetParam().tolerance);
    EXPECT_EQ(entries().size(), 1);
}

TEST_P(LettersOfSuffixTest, WhatShinesThroughIsWhite)
{
    QImage picture(16, 16, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter(&picture).fillRect(0, 8, 16, 8, QColor(255, 0, 0, 128));
    const QString strFile = path(QStringLiteral("a.") + QLatin1String(GetParam().suffix));
    ASSERT_TRUE(CORVImageExporter::saveImage(picture, strFile, &m_strError)) << m_strError.toStdString();
    if (GetParam().suffix == std::string("png")) {
        const QImage back = QImage(strFile);
        EXPECT_EQ(back.pixelColor(3, 2).alpha(), 0);
        EXPECT_EQ(back.pixelColor(3, 14), QColor(255, 0, 0, 128));
        return;
    }
    const QImage back = GetParam().read(strFile);
    EXPECT_LE(readers::difference(back.copy(0, 0, 16, 7),
                                  [] {
                                      QImage white(16, 7, QImage::Format_RGB32);
                                      white.fill(Qt::white);
                                      return white;
                                  }()),
              GetParam().tolerance);
    EXPECT_NEAR(qGreen(back.pixel(8, 14)), 127, 1 + GetParam().tolerance);
}

TEST_P(LettersOfSuffixTest, APictureOfAFineScreenHasAllItsPixels)
{
    QImage picture = smoothPicture({40, 30});
    picture.setDevicePixelRatio(2.0);
    const QString strFile = path(QStringLiteral("a.") + QLatin1String(GetParam().suffix));
    ASSERT_TRUE(CORVImageExporter::saveImage(picture, strFile, &m_strError)) << m_strError.toStdString();
    EXPECT_LE(readers::difference(smoothPicture({40, 30}), GetParam().read(strFile)), GetParam().tolerance);
}

TEST_P(LettersOfSuffixTest, GreyAndIndexedPicturesAreWrittenToo)
{
    for (const QImage::Format eFormat : {QImage::Format_Grayscale8, QImage::Format_Indexed8, QImage::Format_RGB888,
                                         QImage::Format_ARGB32, QImage::Format_RGB16}) {
        const QImage picture = smoothPicture({31, 17}).convertToFormat(eFormat);
        const QString strFile = path(QStringLiteral("a.") + QLatin1String(GetParam().suffix));
        ASSERT_TRUE(CORVImageExporter::saveImage(picture, strFile, &m_strError)) << m_strError.toStdString();
        EXPECT_LE(readers::difference(picture.convertToFormat(QImage::Format_RGB32), GetParam().read(strFile)),
                  2 * GetParam().tolerance)
            << eFormat;
    }
}

TEST_F(ImageExporterTest, LettersStayLegible)
{
    QImage picture(420, 120, QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.setPen(Qt::white);
    painter.setFont(QFont(QStringLiteral("DejaVu Sans"), 12));
    painter.drawText(20, 40, QStringLiteral("Radiant Efficiency  2.5e+08"));
    painter.setPen(Qt::red);
    painter.drawText(20, 80, QStringLiteral("Component 1, TissueAF"));
    painter.end();
    const QString strKept = QStringLiteral(ORV_BINARY_DIR "/pictures/orvexport/");
    ASSERT_TRUE(QDir().mkpath(strKept));
    for (const Format& format : readers::formats) {
        const QString strFile = path(QStringLiteral("letters.") + QLatin1String(format.suffix));
        ASSERT_TRUE(CORVImageExporter::saveImage(picture, strFile, &m_strError)) << m_strError.toStdString();
        const QImage back = format.read(strFile);
        ASSERT_EQ(back.size(), picture.size());
        back.save(strKept + QLatin1String(format.suffix) + QStringLiteral(".png"));
        // The mean over all pixels: a letter that is smeared changes many of them.
        double dSum = 0.0;
        for (int y = 0; y < back.height(); ++y) {
            for (int x = 0; x < back.width(); ++x) {
                dSum += qAbs(qGray(back.pixel(x, y)) - qGray(picture.pixel(x, y)));
            }
        }
        EXPECT_LE(dSum / (back.width() * back.height()), format.tolerance > 0 ? 2.0 : 0.0) << format.suffix;
    }
}

} // namespace
