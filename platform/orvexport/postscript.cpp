// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvexport/postscript.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <new>

namespace orvexport {

namespace {

constexpr int lineLength = 75;
constexpr int groupBytes = 4;

// Red, green, blue of every pixel, compressed.
QByteArray compressedPixels(const QImage& picture)
{
    QByteArray pixels(3 * picture.width() * picture.height(), Qt::Uninitialized);
    char* pOut = pixels.data();
    for (int y = 0; y < picture.height(); ++y) {
        const auto* pRow = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            *pOut++ = static_cast<char>(qRed(pRow[x]));
            *pOut++ = static_cast<char>(qGreen(pRow[x]));
            *pOut++ = static_cast<char>(qBlue(pRow[x]));
        }
    }
    constexpr int qtHeader = 4; // the length, before the zlib stream
    const QByteArray compressed = qCompress(pixels);
    if (compressed.size() <= qtHeader) {
        throw std::bad_alloc();
    }
    return compressed.mid(qtHeader);
}

// Up to four bytes as one character more than there are; four zeros as one.
QByteArray group(const char* pBytes, int nCount)
{
    std::array<char, groupBytes> padded{};
    std::copy_n(pBytes, nCount, padded.begin());
    auto nValue = qFromBigEndian<quint32>(padded.data());
    if (nValue == 0 && nCount == groupBytes) {
        return QByteArrayLiteral("z");
    }
    QByteArray digits(groupBytes + 1, Qt::Uninitialized);
    for (int i = groupBytes; i >= 0; --i) {
        digits[i] = static_cast<char>('!' + nValue % 85);
        nValue /= 85;
    }
    return digits.left(nCount + 1);
}

} // namespace

QByteArray ascii85(const QByteArray& bytes)
{
    QByteArray text;
    text.reserve(bytes.size() / groupBytes * (groupBytes + 1) + bytes.size() / lineLength * 2 + 16);
    int nInLine = 0;
    const auto put = [&text, &nInLine](const QByteArray& characters) {
        for (const char c : characters) {
            if (nInLine == lineLength) {
                text.append('\n');
                nInLine = 0;
            }
            if (nInLine == 0 && c == '%') {
                text.append(' '); // blanks between the characters mean nothing
                ++nInLine;
            }
            text.append(c);
            ++nInLine;
        }
    };
    for (int i = 0; i < bytes.size(); i += groupBytes) {
        put(group(bytes.constData() + i, qMin(groupBytes, bytes.size() - i)));
    }
    return text + (nInLine + 2 > lineLength ? "\n~>" : "~>");
}

QByteArray postscriptBytes(const QImage& picture)
{
    const QByteArray width = QByteArray::number(picture.width());
    const QByteArray height = QByteArray::number(picture.height());
    return "%!PS-Adobe-3.0 EPSF-3.0\n"
           "%%BoundingBox: 0 0 " +
           width + ' ' + height +
           "\n"
           "%%LanguageLevel: 3\n"
           "%%EndComments\n"
           "gsave\n" +
           width + ' ' + height +
           " scale\n"
           "/DeviceRGB setcolorspace\n"
           "<< /ImageType 1 /Width " +
           width + " /Height " + height +
           " /BitsPerComponent 8 /Decode [0 1 0 1 0 1]\n"
           "/ImageMatrix [" +
           width + " 0 0 -" + height + " 0 " + height +
           "]\n"
           "/DataSource currentfile /ASCII85Decode filter /FlateDecode filter >> image\n" +
           ascii85(compressedPixels(picture)) +
           "\n"
           "grestore\n"
           "%%EOF\n";
}

} // namespace orvexport
