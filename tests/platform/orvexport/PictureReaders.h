// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVImageExporter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

// Pictures of tests, and how programs that are not ours read them.
namespace readers {

// No two neighbours alike, no symmetry, and no byte that is always 0.
inline QImage testPicture(int nWidth, int nHeight)
{
    QImage picture(nWidth, nHeight, QImage::Format_RGB32);
    for (int y = 0; y < nHeight; ++y) {
        for (int x = 0; x < nWidth; ++x) {
            picture.setPixel(x, y, qRgb((x * 7 + y * 3 + 5) & 255, (x * 2 + y * 11 + 40) & 255, (x ^ (y + 90)) & 255));
        }
    }
    return picture;
}

inline QByteArray bytesOf(const QString& strFile)
{
    QFile file(strFile);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << strFile.toStdString();
    return file.readAll();
}

// Runs a program to its end, which must be a good one; its standard output.
inline QByteArray run(const QString& strProgram, const QStringList& arguments)
{
    QProcess process;
    process.start(strProgram, arguments);
    EXPECT_TRUE(process.waitForFinished(120000))
        << strProgram.toStdString() << ": " << qPrintable(process.errorString());
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << strProgram.toStdString();
    EXPECT_EQ(process.exitCode(), 0) << strProgram.toStdString() << ": "
                                     << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput();
}

inline QImage pictureOf(const QString& strFile, const char* pFormat)
{
    const QImage picture = QImage::fromData(bytesOf(strFile), pFormat);
    EXPECT_FALSE(picture.isNull()) << strFile.toStdString();
    return picture.convertToFormat(QImage::Format_RGB32);
}

inline QImage byQt(const QString& strFile)
{
    return pictureOf(strFile, QFileInfo(strFile).suffix().toLatin1().constData());
}

inline QImage byDcm2pnm(const QString& strFile)
{
    const QTemporaryDir folder;
    const QString strOut = folder.filePath(QStringLiteral("out.ppm"));
    run(QStringLiteral("dcm2pnm"), {QStringLiteral("--write-raw-pnm"), strFile, strOut});
    return pictureOf(strOut, "ppm");
}

// A pixel for each point of the bounding box.
inline QImage byGhostscript(const QString& strFile)
{
    const QTemporaryDir folder;
    const QString strOut = folder.filePath(QStringLiteral("out.ppm"));
    run(QStringLiteral("gs"),
        {QStringLiteral("-q"), QStringLiteral("-dSAFER"), QStringLiteral("-dNOPAUSE"), QStringLiteral("-dBATCH"),
         QStringLiteral("-dEPSCrop"), QStringLiteral("-sDEVICE=ppmraw"), QStringLiteral("-r72"),
         QStringLiteral("-sOutputFile=") + strOut, strFile});
    return pictureOf(strOut, "ppm");
}

// The size that the metafile asks for, and the bitmap in it. The library's drawing program cannot do with some sizes,
// and smooths; its SVG holds the bitmap as it is in a file of its own.
inline QImage byLibwmf(const QString& strFile)
{
    const QTemporaryDir folder;
    const QString strIn = folder.filePath(QStringLiteral("in.wmf"));
    const QString strSvg = folder.filePath(QStringLiteral("out.svg"));
    EXPECT_TRUE(QFile::copy(strFile, strIn));
    run(QStringLiteral("wmf2svg"),
        {QStringLiteral("--maxwidth=65535"), QStringLiteral("--maxheight=65535"), QStringLiteral("-o"), strSvg, strIn});
    const QImage picture = pictureOf(folder.filePath(QStringLiteral("in-1.png")), "png");
    static const QRegularExpression page(QStringLiteral("<svg width=\"(\\d+)\" height=\"(\\d+)\""));
    const auto size = page.match(QString::fromUtf8(bytesOf(strSvg)));
    EXPECT_EQ(size.captured(1).toInt(), picture.width());
    EXPECT_EQ(size.captured(2).toInt(), picture.height());
    EXPECT_TRUE(bytesOf(strSvg).contains("x=\"0.000000\" y=\"0.000000\"")) << bytesOf(strSvg).toStdString();
    return picture;
}

// Copied by a tool into a single strip without compression, which is then the pixels.
inline QImage byTiffTools(const QString& strFile)
{
    const QTemporaryDir folder;
    const QString strPlain = folder.filePath(QStringLiteral("plain.tiff"));
    const QString strInfo = QString::fromLatin1(run(QStringLiteral("tiffinfo"), {strFile}));
    EXPECT_TRUE(strInfo.contains(QStringLiteral("Photometric Interpretation: RGB color"))) << strInfo.toStdString();
    static const QRegularExpression size(QStringLiteral("Image Width: (\\d+) Image Length: (\\d+)"));
    const int nWidth = size.match(strInfo).captured(1).toInt();
    const int nHeight = size.match(strInfo).captured(2).toInt();
    run(QStringLiteral("tiffcp"), {QStringLiteral("-c"), QStringLiteral("none"), QStringLiteral("-r"),
                                   QString::number(nHeight), strFile, strPlain});
    static const QRegularExpression strip(QStringLiteral("StripOffsets \\(273\\) LONG \\(4\\) 1<(\\d+)>"));
    const auto offset = strip.match(QString::fromLatin1(run(QStringLiteral("tiffdump"), {strPlain})));
    EXPECT_TRUE(offset.hasMatch());
    const QByteArray pixels = bytesOf(strPlain).mid(offset.captured(1).toInt(), 3 * nWidth * nHeight);
    EXPECT_EQ(pixels.size(), 3 * nWidth * nHeight);
    const auto* pPixels = reinterpret_cast<const uchar*>(pixels.constData());
    return QImage(pPixels, nWidth, nHeight, 3 * nWidth, QImage::Format_RGB888).convertToFormat(QImage::Format_RGB32);
}

// No program here reads enhanced metafiles: a walk over the records by their published layout ([MS-EMF]).
inline QImage byEmfWalk(const QString& strFile)
{
    const QByteArray bytes = bytesOf(strFile);
    const auto number = [&bytes](int nOffset) {
        EXPECT_LE(nOffset + 4, bytes.size());
        return qFromLittleEndian<qint32>(bytes.constData() + nOffset);
    };
    EXPECT_EQ(number(0), 1) << "the header comes first";
    EXPECT_EQ(bytes.mid(40, 4), " EMF");
    EXPECT_EQ(number(48), bytes.size());
    QImage picture;
    int nRecords = 0;
    int nLast = 0;
    for (int nAt = 0; nAt < bytes.size(); nAt += number(nAt + 4)) {
        ++nRecords;
        nLast = number(nAt);
        EXPECT_EQ(number(nAt + 4) % 4, 0) << "records are whole double words";
        if (number(nAt + 4) < 8) {
            ADD_FAILURE() << "a record of " << number(nAt + 4) << " bytes";
            return picture;
        }
        if (nLast == 81) {
            const int nHeader = nAt + number(nAt + 48);
            const int nPixels = nAt + number(nAt + 56);
            const int nWidth = number(nHeader + 4);
            const int nHeight = number(nHeader + 8);
            EXPECT_EQ(number(nAt + 4), number(nAt + 56) + number(nAt + 60)) << "the pixels end the record";
            EXPECT_EQ(number(nHeader), 40);
            EXPECT_EQ(number(nHeader + 12), 1 | 24 << 16) << "one plane, 24 bits";
            EXPECT_EQ(number(nAt + 68), 0x00CC0020);
            EXPECT_EQ(QSize(number(nAt + 40), number(nAt + 44)), QSize(nWidth, nHeight)) << "of the source";
            EXPECT_EQ(QSize(number(nAt + 72), number(nAt + 76)), QSize(nWidth, nHeight)) << "on the page";
            EXPECT_EQ(number(nAt + 60), (3 * nWidth + 3) / 4 * 4 * nHeight);
            const auto* pPixels = reinterpret_cast<const uchar*>(bytes.constData() + nPixels);
            picture = QImage(pPixels, nWidth, nHeight, (3 * nWidth + 3) / 4 * 4, QImage::Format_RGB888)
                          .mirrored()
                          .rgbSwapped()
                          .convertToFormat(QImage::Format_RGB32);
        }
    }
    EXPECT_EQ(nLast, 14) << "the end comes last";
    EXPECT_EQ(number(52), nRecords);
    // Bounds include both ends; the frame is in hundredths of a millimeter, 72 pixels an inch.
    EXPECT_EQ(number(16), picture.width() - 1);
    EXPECT_EQ(number(20), picture.height() - 1);
    EXPECT_NEAR(number(32) / 2540.0 * 72.0, picture.width(), 0.02);
    EXPECT_NEAR(number(36) / 2540.0 * 72.0, picture.height(), 0.02);
    EXPECT_NEAR(1.0 * number(72) / number(80), 72.0 / 25.4, 1e-3) << "pixels a millimeter of the device";
    EXPECT_EQ(number(100), 1000 * number(80));
    return picture;
}

struct Format
{
    const char* suffix;
    QImage (*read)(const QString& strFile);
    int tolerance = 0; // of a colour, for a format that loses some
};

inline const Format formats[] = {
    {"bmp", &byQt},      {"png", &byQt},          {"jpg", &byQt, 12},     {"jpeg", &byQt, 12},   {"wmf", &byLibwmf},
    {"emf", &byEmfWalk}, {"eps", &byGhostscript}, {"tiff", &byTiffTools}, {"tif", &byTiffTools}, {"dcm", &byDcm2pnm}};

inline std::ostream& operator<<(std::ostream& stream, const Format& format)
{
    return stream << format.suffix;
}

// The largest difference of a colour, or 256 for pictures of different sizes.
inline int difference(const QImage& one, const QImage& other)
{
    if (one.size() != other.size()) {
        return 256;
    }
    int nLargest = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            for (const int nPart : {qRed(a) - qRed(b), qGreen(a) - qGreen(b), qBlue(a) - qBlue(b)}) {
                nLargest = qMax(nLargest, qAbs(nPart));
            }
        }
    }
    return nLargest;
}

} // namespace readers
