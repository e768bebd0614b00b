// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvexport/metafiles.h"

#include "platform/orvexport/LittleEndianBytes.h"

namespace orvexport {

namespace {

constexpr int dotsPerInch = 72;
constexpr int dotsPerMeter = 2835;
constexpr quint32 copySource = 0x00CC0020; // the raster operation
constexpr int trueColours = 0;             // no table of colours
constexpr int dropPixels = 3;              // where a program shrinks the picture

// BITMAPINFOHEADER: 24 bits a pixel, not compressed, rows from the bottom up.
QByteArray bitmapHeader(const QSize& size, int nPixelBytes)
{
    LittleEndianBytes header;
    header.doubleWords(40, size.width(), size.height()).words(1, 24);
    header.doubleWords(0, nPixelBytes, dotsPerMeter, dotsPerMeter, 0, 0);
    return header.bytes();
}

// Blue, green, red of every pixel, each row filled up with zeros to whole double words.
QByteArray bitmapPixels(const QImage& picture)
{
    const int nStride = (3 * picture.width() + 3) / 4 * 4;
    QByteArray pixels(nStride * picture.height(), '\0');
    char* pOut = pixels.data();
    for (int y = picture.height() - 1; y >= 0; --y, pOut += nStride) {
        const auto* pRow = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            pOut[3 * x] = static_cast<char>(qBlue(pRow[x]));
            pOut[3 * x + 1] = static_cast<char>(qGreen(pRow[x]));
            pOut[3 * x + 2] = static_cast<char>(qRed(pRow[x]));
        }
    }
    return pixels;
}

// A record of a metafile: its length in words, its function, its parameters.
QByteArray record(int nFunction, const LittleEndianBytes& parameters)
{
    LittleEndianBytes bytes;
    bytes.doubleWords(3 + parameters.bytes().size() / 2).words(nFunction).raw(parameters.bytes());
    return bytes.bytes();
}

// The header that gives a metafile its size. Its check is the exclusive or of the words before it.
QByteArray placeableHeader(const QSize& size)
{
    LittleEndianBytes header;
    header.doubleWords(0x9AC6CDD7U).words(0, 0, 0, size.width(), size.height(), dotsPerInch).doubleWords(0);
    quint16 nCheck = 0;
    for (int i = 0; i < header.bytes().size(); i += 2) {
        nCheck ^= qFromLittleEndian<quint16>(header.bytes().constData() + i);
    }
    return header.words(nCheck).bytes();
}

} // namespace

QByteArray metafileBytes(const QImage& picture)
{
    constexpr int setMapMode = 0x0103;
    constexpr int setWindowOrigin = 0x020B;
    constexpr int setWindowExtent = 0x020C;
    constexpr int setStretchMode = 0x0107;
    constexpr int stretchBitmap = 0x0F43;
    constexpr int anisotropic = 8;
    const int w = picture.width();
    const int h = picture.height();
    const QByteArray pixels = bitmapPixels(picture);

    LittleEndianBytes drawn;
    // Heights stand before widths, and y before x.
    drawn.doubleWords(copySource).words(trueColours, h, w, 0, 0, h, w, 0, 0);
    drawn.raw(bitmapHeader(picture.size(), pixels.size())).raw(pixels);
    const QByteArray largest = record(stretchBitmap, drawn);
    const QByteArray records = record(setMapMode, LittleEndianBytes().words(anisotropic)) +
                               record(setWindowOrigin, LittleEndianBytes().words(0, 0)) +
                               record(setWindowExtent, LittleEndianBytes().words(h, w)) +
                               record(setStretchMode, LittleEndianBytes().words(dropPixels)) + largest +
                               record(0, LittleEndianBytes());

    constexpr int headerWords = 9;
    LittleEndianBytes header;
    header.words(1, headerWords, 0x0300).doubleWords(headerWords + records.size() / 2);
    header.words(0).doubleWords(largest.size() / 2).words(0);
    return placeableHeader(picture.size()) + header.bytes() + records;
}

QByteArray enhancedMetafileBytes(const QImage& picture)
{
    constexpr int headerRecord = 1;
    constexpr int setStretchModeRecord = 21;
    constexpr int stretchBitmapRecord = 81;
    constexpr int endRecord = 14;
    constexpr int headerBytes = 108;
    constexpr int stretchBytes = 80;
    constexpr int bitmapHeaderBytes = 40;
    constexpr int recordCount = 4;
    // The device to which pixels and lengths refer, with 72 dots an inch exactly.
    constexpr QSize devicePixels(7200, 3600);
    constexpr QSize deviceMillimeters(2540, 1270);
    const int w = picture.width();
    const int h = picture.height();
    const QByteArray pixels = bitmapPixels(picture);
    const auto hundredths = [](int nPixels) { return qRound(nPixels * 2540.0 / dotsPerInch); };

    LittleEndianBytes records;
    records.doubleWords(setStretchModeRecord, 12, dropPixels);
    records.doubleWords(stretchBitmapRecord, stretchBytes + bitmapHeaderBytes + pixels.size());
    records.doubleWords(0, 0, w - 1, h - 1, 0, 0, 0, 0, w, h);
    records.doubleWords(stretchBytes, bitmapHeaderBytes, stretchBytes + bitmapHeaderBytes, pixels.size());
    records.doubleWords(trueColours, copySource, w, h);
    records.raw(bitmapHeader(picture.size(), pixels.size())).raw(pixels);
    records.doubleWords(endRecord, 20, 0, 16, 20);

    LittleEndianBytes header;
    header.doubleWords(headerRecord, headerBytes);
    // Bounds in pixels, both ends included; frame in hundredths of a millimeter.
    header.doubleWords(0, 0, w - 1, h - 1, 0, 0, hundredths(w), hundredths(h));
    header.doubleWords(0x464D4520, 0x00010000, headerBytes + records.bytes().size(), recordCount);
    // One handle, which stands for the file; no description, no palette.
    header.words(1, 0).doubleWords(0, 0, 0);
    header.doubleWords(devicePixels.width(), devicePixels.height());
    header.doubleWords(deviceMillimeters.width(), deviceMillimeters.height());
    // No pixel format, no OpenGL, micrometers.
    header.doubleWords(0, 0, 0, 1000 * deviceMillimeters.width(), 1000 * deviceMillimeters.height());
    return header.bytes() + records.bytes();
}

} // namespace orvexport
