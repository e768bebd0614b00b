// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvimage/TiffStackWriter.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

// A folder of its own for each test, whose name has a blank and letters beyond ASCII, and files to put there.
class ImporterFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_folder.isValid());
        m_root = m_folder.filePath(QString::fromUtf8("Mäuse und Zellen"));
        ASSERT_TRUE(QDir().mkpath(m_root));
    }

    QString path(const QString& name) const { return m_root + '/' + name; }

    QString write(const QString& name, const QByteArray& bytes) const
    {
        QDir().mkpath(QFileInfo(path(name)).path());
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path(name));
        file.write(bytes);
        return path(name);
    }

    static CILImage makeImage(ORVDataTypes type, long w, long h, const std::function<double(long, long)>& value)
    {
        CILImage image;
        EXPECT_EQ(image.InitWithType(type, w, h), EIL_SUCCESS);
        for (long y = 0; y < h; ++y) {
            for (long x = 0; x < w; ++x) {
                image.setValue(static_cast<std::size_t>(y * w + x), value(x, y));
            }
        }
        return image;
    }

    QString writeTiffFile(const QString& name, const CILImage& image) const
    {
        QDir().mkpath(QFileInfo(path(name)).path());
        QString error;
        EXPECT_TRUE(writeTiff(path(name), image, TiffWriteOptions(), &error)) << qPrintable(error);
        return path(name);
    }

    // Pages with a description of the first and names.
    void writeStack(const QString& name, const QString& description, const QStringList& pageNames) const
    {
        QDir().mkpath(QFileInfo(path(name)).path());
        TiffStackWriter writer;
        QString error;
        ASSERT_TRUE(writer.begin(path(name), 0, &error)) << qPrintable(error);
        for (int i = 0; i < pageNames.size(); ++i) {
            TiffWriteOptions options;
            options.description = i == 0 ? description : QString();
            options.pageName = pageNames.at(i);
            ASSERT_TRUE(writer.add(makeImage(ORVTYPE_BYTE, 4, 3, [](long x, long) { return x; }), options, &error));
        }
        ASSERT_TRUE(writer.finish(&error)) << qPrintable(error);
    }

    // A grey ramp that tells images apart by `base`.
    QString writeRamp(const QString& name, double base, long w = 4, long h = 3) const
    {
        return writeTiffFile(name, makeImage(ORVTYPE_USHORT, w, h,
                                             [=](long x, long y) { return base + static_cast<double>(10 * y + x); }));
    }

    // Pages of 16 bit pixels, little endian, uncompressed, one after the other.
    QString writePages(const QString& name, int pages, int w = 4, int h = 3) const;

private:
    QTemporaryDir m_folder;
    QString m_root;
};

inline QString ImporterFixture::writePages(const QString& name, int pages, int w, int h) const
{
    QByteArray file("II*\0", 4);
    const auto put = [&file](quint32 value, int bytes) {
        for (int i = 0; i < bytes; ++i) {
            file.append(static_cast<char>(value >> (8 * i)));
        }
    };
    constexpr int entries = 9;
    constexpr int directoryBytes = 2 + entries * 12 + 4;
    const int pixelBytes = w * h * 2;
    put(8, 4);
    for (int page = 0; page < pages; ++page) {
        const int directory = 8 + page * (directoryBytes + pixelBytes);
        const auto entry = [&put](quint32 tag, quint32 type, quint32 value) {
            put(tag, 2);
            put(type, 2);
            put(1, 4);
            put(value, 4);
        };
        constexpr quint32 typeShort = 3;
        constexpr quint32 typeLong = 4;
        put(entries, 2);
        entry(256, typeShort, static_cast<quint32>(w));
        entry(257, typeShort, static_cast<quint32>(h));
        entry(258, typeShort, 16);
        entry(259, typeShort, 1);
        entry(262, typeShort, 1);
        entry(273, typeLong, static_cast<quint32>(directory + directoryBytes));
        entry(277, typeShort, 1);
        entry(278, typeShort, static_cast<quint32>(h));
        entry(279, typeLong, static_cast<quint32>(pixelBytes));
        put(page + 1 < pages ? static_cast<quint32>(directory + directoryBytes + pixelBytes) : 0, 4);
        for (int i = 0; i < w * h; ++i) {
            put(static_cast<quint32>(100 * (page + 1) + i), 2);
        }
    }
    return write(name, file);
}
