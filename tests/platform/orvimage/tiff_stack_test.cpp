// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/TiffPageReader.h"
#include "platform/orvimage/TiffStackWriter.h"
#include "platform/orvimage/TiffTexts.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>
#include <tiffio.h>

#include <vector>

namespace {

class TiffStackTest : public ::testing::Test
{
protected:
    QString path(const QString& name) const { return m_folder.filePath(QString::fromUtf8("ä b ") + name); }
    QStringList entries() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    static CILImage ramp(float base)
    {
        CILImage image;
        EXPECT_EQ(image.InitWithType(ORVTYPE_FLOAT, 5, 3), EIL_SUCCESS);
        for (int i = 0; i < 15; ++i) {
            image.floats()[i] = base + static_cast<float>(i) / 3.0F;
        }
        return image;
    }
    // Pages named "page 0" and so on, the first with a description.
    void writePages(const QString& name, int pages)
    {
        TiffStackWriter writer;
        QString error;
        ASSERT_TRUE(writer.begin(path(name), 0, &error)) << qPrintable(error);
        for (int i = 0; i < pages; ++i) {
            TiffWriteOptions options;
            options.pageName = QStringLiteral("page %1").arg(i);
            options.description = i == 0 ? QString::fromUtf8("10 µm") : QString();
            ASSERT_TRUE(writer.add(ramp(static_cast<float>(100 * i)), options, &error)) << qPrintable(error);
        }
        ASSERT_TRUE(writer.finish(&error)) << qPrintable(error);
    }

    QTemporaryDir m_folder;
};

// ImageJ's private tags, as libtiff must be told of them to write them.
const TIFFFieldInfo imageJFields[] = {
    {50838, TIFF_VARIABLE2, TIFF_VARIABLE2, TIFF_LONG, FIELD_CUSTOM, 1, 1, const_cast<char*>("sizes")},
    {50839, TIFF_VARIABLE2, TIFF_VARIABLE2, TIFF_BYTE, FIELD_CUSTOM, 1, 1, const_cast<char*>("blocks")}};

void appendNumber(std::vector<unsigned char>& bytes, quint32 value, bool big)
{
    unsigned char number[4];
    big ? qToBigEndian(value, number) : qToLittleEndian(value, number);
    bytes.insert(bytes.end(), number, number + 4);
}

std::vector<unsigned char> utf16(const QString& text, bool big)
{
    std::vector<unsigned char> bytes;
    for (const QChar c : text) {
        const auto low = static_cast<unsigned char>(c.unicode() & 0xffU);
        const auto high = static_cast<unsigned char>(c.unicode() >> 8U);
        bytes.push_back(big ? high : low);
        bytes.push_back(big ? low : high);
    }
    return bytes;
}

// A pixel, and labels as ImageJ keeps them behind a block of another kind; `lie` is added to the first label's size.
void writeLabels(const QString& path, const QStringList& labels, bool big, std::uint32_t lie = 0)
{
    std::vector<unsigned char> blocks;
    appendNumber(blocks, 0x494a494a, big);
    appendNumber(blocks, 0x696e666f, big); // "info"
    appendNumber(blocks, 1, big);
    appendNumber(blocks, 0x6c61626c, big); // "labl"
    appendNumber(blocks, static_cast<quint32>(labels.size()), big);
    std::vector<std::uint32_t> sizes{static_cast<std::uint32_t>(blocks.size()), 4};
    appendNumber(blocks, 0x41004200, big);
    for (const auto& label : labels) {
        const auto text = utf16(label, big);
        sizes.push_back(static_cast<std::uint32_t>(text.size()) + (sizes.size() == 2 ? lie : 0));
        blocks.insert(blocks.end(), text.begin(), text.end());
    }
    TIFF* tiff = TIFFOpen(QFile::encodeName(path).constData(), big ? "wb" : "wl");
    ASSERT_NE(tiff, nullptr);
    TIFFMergeFieldInfo(tiff, imageJFields, 2);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 1);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, 50838, static_cast<std::uint32_t>(sizes.size()), sizes.data());
    TIFFSetField(tiff, 50839, static_cast<std::uint32_t>(blocks.size()), blocks.data());
    unsigned char pixel = 7;
    EXPECT_EQ(TIFFWriteEncodedStrip(tiff, 0, &pixel, 1), 1);
    TIFFClose(tiff);
}

} // namespace

TEST_F(TiffStackTest, EveryPageComesBack)
{
    writePages("stack.tif", 4);
    QString error;
    EXPECT_EQ(tiffPageCount(path("stack.tif"), &error), 4);
    for (int page = 0; page < 4; ++page) {
        CILImage image;
        ASSERT_TRUE(readTiff(path("stack.tif"), page, image, &error)) << qPrintable(error);
        const CILImage expected = ramp(static_cast<float>(100 * page));
        ASSERT_EQ(image.dataType(), ORVTYPE_FLOAT);
        for (std::size_t i = 0; i < 15; ++i) {
            EXPECT_EQ(image.floats()[i], expected.floats()[i]);
        }
    }
    EXPECT_EQ(entries().size(), 1);
}

TEST_F(TiffStackTest, AnOpenFileGivesItsPagesInAnyOrder)
{
    writePages("stack.tif", 4);
    writePages("other.tif", 1);
    TiffPageReader reader;
    QString error;
    for (const int page : {0, 1, 1, 3, 2, 3, 0}) {
        CILImage image;
        ASSERT_TRUE(reader.read(path("stack.tif"), page, TiffReadOptions(), image, &error)) << qPrintable(error);
        EXPECT_EQ(image.floats()[0], static_cast<float>(100 * page));
        TiffInfo info;
        ASSERT_TRUE(reader.readHeader(path("stack.tif"), page, &info, &error)) << qPrintable(error);
        EXPECT_EQ(info.description.isEmpty(), page > 0);
    }
    for (const int page : {4, -1}) {
        CILImage image;
        EXPECT_FALSE(reader.read(path("stack.tif"), page, TiffReadOptions(), image, &error));
        EXPECT_TRUE(error.startsWith(path("stack.tif") + ": there is no page")) << qPrintable(error);
        // A failure does not stay with the file.
        EXPECT_TRUE(reader.read(path("stack.tif"), 3, TiffReadOptions(), image, &error)) << qPrintable(error);
        EXPECT_FALSE(reader.read(path("absent.tif"), 0, TiffReadOptions(), image, &error));
        EXPECT_TRUE(reader.read(path("other.tif"), 0, TiffReadOptions(), image, &error)) << qPrintable(error);
    }
}

TEST_F(TiffStackTest, TextsOfAllPagesAreRead)
{
    writePages("stack.tif", 3);
    TiffTexts texts;
    QString error;
    ASSERT_TRUE(readTiffTexts(path("stack.tif"), &texts, &error)) << qPrintable(error);
    ASSERT_EQ(texts.pages.size(), 3);
    EXPECT_EQ(texts.pages[0].description, QString::fromUtf8("10 µm"));
    EXPECT_EQ(texts.pages[1].description, QString());
    EXPECT_EQ(texts.pages[2].pageName, "page 2");
    EXPECT_TRUE(texts.labels.isEmpty());
}

TEST_F(TiffStackTest, WithoutAFinishTheTargetStaysAsItWas)
{
    QFile file(path("old.tif"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("old");
    file.close();
    {
        TiffStackWriter writer;
        QString error;
        ASSERT_TRUE(writer.begin(path("old.tif"), 0, &error));
        ASSERT_TRUE(writer.add(ramp(1), TiffWriteOptions(), &error));
    }
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "old");
    EXPECT_EQ(entries().size(), 1);
}

TEST_F(TiffStackTest, AnEmptyImageEndsTheFile)
{
    TiffStackWriter writer;
    QString error;
    ASSERT_TRUE(writer.begin(path("a.tif"), 0, &error));
    EXPECT_FALSE(writer.add(CILImage(), TiffWriteOptions(), &error));
    EXPECT_EQ(error, path("a.tif") + ": an empty image cannot be written");
    EXPECT_FALSE(writer.add(ramp(1), TiffWriteOptions(), &error));
    EXPECT_EQ(error, path("a.tif") + ": the file is not being written");
    EXPECT_FALSE(writer.finish(&error));
    EXPECT_TRUE(entries().isEmpty());
}

TEST_F(TiffStackTest, NoFolderNoFile)
{
    TiffStackWriter writer;
    QString error;
    EXPECT_FALSE(writer.begin(path("nowhere/a.tif"), 0, &error));
    EXPECT_TRUE(error.startsWith(path("nowhere/a.tif"))) << qPrintable(error);
    EXPECT_FALSE(writer.finish(nullptr));
}

TEST_F(TiffStackTest, LabelsAreReadInEitherByteOrder)
{
    for (const bool big : {false, true}) {
        const QStringList labels{"ex640_em700", QString(), QString::fromUtf8("Größe µ")};
        writeLabels(path("labels.tif"), labels, big);
        TiffTexts texts;
        QString error;
        ASSERT_TRUE(readTiffTexts(path("labels.tif"), &texts, &error)) << qPrintable(error);
        EXPECT_EQ(texts.labels, labels) << big;
    }
}

TEST_F(TiffStackTest, LabelsBeyondTheirBlocksCountAsNone)
{
    for (const std::uint32_t lie : {1000U, 0xffffff00U}) {
        writeLabels(path("labels.tif"), {"ex640_em700", "ex640_em720"}, false, lie);
        TiffTexts texts;
        QString error;
        ASSERT_TRUE(readTiffTexts(path("labels.tif"), &texts, &error)) << qPrintable(error);
        EXPECT_TRUE(texts.labels.isEmpty()) << lie;
    }
}

TEST_F(TiffStackTest, BrokenFilesAreRefusedByName)
{
    writePages("stack.tif", 3);
    QFile whole(path("stack.tif"));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    for (int tenth = 0; tenth < 10; ++tenth) {
        QFile cut(path("cut.tif"));
        ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
        cut.write(bytes.left(bytes.size() * tenth / 10));
        cut.close();
        TiffTexts texts;
        texts.labels = QStringList("as before");
        QString error;
        EXPECT_FALSE(readTiffTexts(path("cut.tif"), &texts, &error)) << tenth;
        EXPECT_TRUE(error.startsWith(path("cut.tif") + ": ")) << qPrintable(error);
        EXPECT_EQ(texts.labels, QStringList("as before"));
    }
    EXPECT_FALSE(readTiffTexts(path("absent.tif"), nullptr, nullptr));
}
