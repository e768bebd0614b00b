// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddCase.h"
#include "odd_inputs/OddTiff.h"

#include <QBuffer>
#include <QImage>

#include <cstdint>
#include <limits>

namespace {

using C = OddCase;
using T = OddTiff;

constexpr int side = 32;

// Noise, so that every format takes as many bytes as it may.
QByteArray picture(const char* format)
{
    QImage image(side, side, QImage::Format_RGB32);
    std::uint32_t state = 1;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            state = state * 1664525U + 1013904223U;
            image.setPixel(x, y, state >> 8);
        }
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return buffer.data();
}

std::uint32_t checksum(const QByteArray& bytes)
{
    std::uint32_t sum = 0xffffffffU;
    for (const char byte : bytes) {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum >> 1) ^ ((sum & 1U) != 0 ? 0xedb88320U : 0U);
        }
    }
    return ~sum;
}

QByteArray bigEndian(std::uint32_t value, int width)
{
    QByteArray bytes;
    for (int i = width - 1; i >= 0; --i) {
        bytes.append(static_cast<char>(value >> (8 * i) & 0xffU));
    }
    return bytes;
}

QByteArray littleEndian(std::uint32_t value)
{
    QByteArray bytes;
    for (int i = 0; i < 4; ++i) {
        bytes.append(static_cast<char>(value >> (8 * i) & 0xffU));
    }
    return bytes;
}

// Its header chunk claims another size, with a sound checksum.
QByteArray pngOf(std::uint32_t width, std::uint32_t height)
{
    QByteArray bytes = picture("PNG");
    bytes.replace(16, 8, bigEndian(width, 4) + bigEndian(height, 4));
    return bytes.replace(29, 4, bigEndian(checksum(bytes.mid(12, 17)), 4));
}

QByteArray jpegOf(std::uint32_t width, std::uint32_t height)
{
    QByteArray bytes = picture("JPG");
    const int frame = bytes.indexOf("\xff\xc0");
    return bytes.replace(frame + 5, 4, bigEndian(height, 2) + bigEndian(width, 2));
}

QByteArray bmpOf(std::uint32_t width, std::uint32_t height)
{
    return picture("BMP").replace(18, 8, littleEndian(width) + littleEndian(height));
}

OddCase photograph(const QByteArray& name, const QString& file, const std::function<QByteArray()>& bytes,
                   OddCase::Outcome outcome, const QString& says)
{
    return {"Photograph" + name,
            OddReaders::photograph(),
            file,
            [bytes](const QString& path) { putFile(path, bytes()); },
            outcome,
            says};
}

OddTiff floats(float value)
{
    QByteArray strip;
    for (int i = 0; i < side * side; ++i) {
        strip.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    return OddTiff()
        .set(T::Bits, T::Short, {32})
        .set(T::SampleFormat, T::Short, {3})
        .set(T::RowsPerStrip, T::Short, {side})
        .setBlocks({strip});
}

OddCases photographs()
{
    const QString tooLarge =
        QStringLiteral("{path}: the header claims {n} x {n} pixels, more than a file of {n} bytes can hold");
    return {
        photograph(
            "Empty", "photo.png", [] { return QByteArray(); }, C::Refused, "{path}: the file is empty"),
        photograph(
            "OfZeroBytes", "photo.png", [] { return QByteArray(512, '\0'); }, C::Refused,
            "{path}: this is no picture of a known format"),
        photograph(
            "ThatIsText", "photo.jpg", [] { return QByteArray("no picture at all"); }, C::Refused,
            "{path}: this is no picture of a known format"),
        photograph(
            "PngNamedJpg", "photo.jpg", [] { return picture("PNG"); }, C::Silent, "32 x 32, {...}"),
        photograph(
            "OfHugeSize", "photo.png", [] { return pngOf(30000, 30000); }, C::Refused, tooLarge),
        photograph(
            "OfEndlessSize", "photo.png", [] { return pngOf(0x7fffffff, 0x7fffffff); }, C::Refused,
            "{path}: the picture is broken or cut short (Unable to read image data)"),
        photograph(
            "OfNoSize", "photo.png", [] { return pngOf(0, 32); }, C::Refused,
            "{path}: the picture is broken or cut short (Unable to read image data)"),
        photograph(
            "JpegOfHugeSize", "photo.jpg", [] { return jpegOf(65500, 65500); }, C::Refused, tooLarge),
        photograph(
            "BmpOfHugeSize", "photo.bmp", [] { return bmpOf(30000, 30000); }, C::Refused,
            "{path}: the picture is broken or cut short (Unable to read image data)"),
        photograph(
            "BmpOfNegativeSize", "photo.bmp", [] { return bmpOf(0xffffffe0, 32); }, C::Refused,
            "{path}: the picture is broken or cut short (Unable to read image data)"),
        photograph(
            "ThatIsADrawing", "photo.svg",
            [] { return QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"90000\" height=\"90000\"/>"); },
            C::Refused, "{path}: this is no picture of a known format"),
        photograph(
            "OfNoNumbers", "photo.tif", [] { return floats(std::numeric_limits<float>::quiet_NaN()).bytes(); },
            C::Refused, "{path}: the photograph has pixels that are not finite"),
        photograph(
            "OfOneRow", "photo.tif",
            [] {
                return OddTiff()
                    .set(T::Height, T::Short, {1})
                    .set(T::RowsPerStrip, T::Short, {1})
                    .setBlocks({QByteArray(64, 'a')})
                    .bytes();
            },
            C::Warned, "{path} has 32 x 1 pixels and is squeezed into the shape of the images, 32 x 32"),
    };
}

OddCases photographCuts()
{
    const QString broken = QStringLiteral("{path}: the picture is broken or cut short{...}");
    OddCases cases;
    for (const char* format : {"PNG", "JPG", "BMP", "PPM", "GIF"}) {
        const QByteArray bytes = picture(format);
        if (bytes.isEmpty()) {
            continue; // not every format can be written
        }
        const OddCases more = cutAtEachTenth("Photograph" + QByteArray(format), OddReaders::photograph(),
                                             QStringLiteral("photo.") + QString(format).toLower(), bytes,
                                             std::vector<QString>(9, broken));
        cases.insert(cases.end(), more.begin(), more.end());
    }
    return cases;
}

OddCase correction(const QByteArray& name, const OddReader& read, const std::function<QByteArray()>& bytes,
                   const QString& says)
{
    return {
        name,       read, QStringLiteral("correction.tif"), [bytes](const QString& path) { putFile(path, bytes()); },
        C::Refused, says};
}

OddCases corrections()
{
    const auto small = [] {
        return OddTiff()
            .set(T::Height, T::Short, {4})
            .set(T::RowsPerStrip, T::Short, {4})
            .setBlocks({QByteArray(256, 'a')})
            .bytes();
    };
    const QString broken = QStringLiteral(
        "{path}: the header claims 32 x 32 x 1 samples of 32 bits, more than a file of {n} bytes can hold");
    OddCases cases{
        correction("DarkOfAnotherSize", OddReaders::dark(), small,
                   "{path}: the dark image has 32 x 4 pixels where image.tif has 32 x 32"),
        correction(
            "DarkInACircleOfPages", OddReaders::dark(), [] { return floats(1.0F).next(8).bytes(); }, "{path}: {...}"),
        correction(
            "DarkThatIsAPicture", OddReaders::dark(), [] { return picture("PNG"); },
            "{path}: not a readable TIFF file ({...})"),
        correction(
            "DarkOfNoNumbers", OddReaders::dark(),
            [] { return floats(std::numeric_limits<float>::quiet_NaN()).bytes(); },
            "{path}: the pixel in column 0, row 0 is not finite or too large"),
        correction("FlatOfAnotherSize", OddReaders::flat(), small,
                   "{path}: the flat field has 32 x 4 pixels where the images have 32 x 32"),
        correction(
            "FlatWithZero", OddReaders::flat(), [] { return OddTiff().bytes(); },
            "{path}: the flat field is not above 0 in column 0, row 0"),
        correction(
            "FlatBelowZero", OddReaders::flat(), [] { return floats(-1.0F).bytes(); },
            "{path}: the flat field is not above 0 in column 0, row 0"),
        correction("MaskOfAnotherSize", OddReaders::mask(), small,
                   "{path}: the mask has 32 x 4 pixels; the analysis needs 32 x 32 or a multiple of it"),
        correction(
            "MaskOfNothing", OddReaders::mask(), [] { return floats(0.0F).bytes(); },
            "{path}: the mask has no pixel above 0"),
        correction(
            "MaskOfNoNumbers", OddReaders::mask(),
            [] { return floats(std::numeric_limits<float>::quiet_NaN()).bytes(); },
            "{path}: the mask has no pixel above 0"),
        correction(
            "MaskThatIsAPhotograph", OddReaders::mask(), [] { return picture("JPG"); },
            "{path}: not a readable TIFF file ({...})"),
        correction(
            "MaskThatIsAPictureCut", OddReaders::mask(), [] { return picture("PNG").left(60); }, "{path}: {...}"),
    };
    cases.push_back({"MaskThatIsAPicture", OddReaders::mask(), QStringLiteral("mask.png"),
                     [](const QString& path) { putFile(path, picture("PNG")); }, C::Silent, "32 x 32, 1 to 1"});
    const QByteArray sound = floats(1.0F).bytes();
    cases.push_back({"FlatInACircleOfPages", OddReaders::flat(), QStringLiteral("flat.tif"),
                     [](const QString& path) { putFile(path, floats(1.0F).next(8).bytes()); }, C::Silent, "loaded"});
    for (const auto& [name, read] :
         {std::make_pair("Dark", OddReaders::dark()), std::make_pair("Flat", OddReaders::flat()),
          std::make_pair("Mask", OddReaders::mask())}) {
        const OddCases more =
            cutAtEachTenth(name, read, QStringLiteral("correction.tif"), sound, std::vector<QString>(9, broken));
        cases.insert(cases.end(), more.begin(), more.end());
    }
    return cases;
}

} // namespace

OddCases pictureCases()
{
    OddCases cases = photographs();
    for (const OddCases& more : {photographCuts(), corrections()}) {
        cases.insert(cases.end(), more.begin(), more.end());
    }
    return cases;
}
