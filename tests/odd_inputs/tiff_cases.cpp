// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddCase.h"
#include "odd_inputs/OddTexts.h"
#include "odd_inputs/OddTiff.h"

namespace {

using C = OddCase;
using T = OddTiff;

const QString file = QStringLiteral("image.tif");
const QString soundGist = QStringLiteral("32 x 32, 0 to 1023");

OddCase tiff(const QByteArray& name, const std::function<QByteArray()>& bytes, OddCase::Outcome outcome,
             const QString& says)
{
    return {"Tiff" + name, OddReaders::tiff(), file, [bytes](const QString& path) { putFile(path, bytes()); }, outcome,
            says};
}

OddCase pages(const QByteArray& name, const std::function<QByteArray()>& bytes, OddCase::Outcome outcome,
              const QString& says)
{
    return {"TiffPages" + name,
            OddReaders::lastPage(),
            file,
            [bytes](const QString& path) { putFile(path, bytes()); },
            outcome,
            says};
}

// What the library of TIFF files has to say stands between the brackets, and changes with its releases.
const QString unreadable = QStringLiteral("{path}: not a readable TIFF file ({...})");

QString tooMuch(const QString& claim)
{
    return QStringLiteral("{path}: the header claims %1, more than a file of {n} bytes can hold").arg(claim);
}

OddCases cut()
{
    OddCases cases;
    const auto add = [&cases](const QByteArray& name, const OddTiff& image, const std::vector<QString>& says) {
        const OddCases more = cutAtEachTenth("Tiff" + name, OddReaders::tiff(), file, image.bytes(), says);
        cases.insert(cases.end(), more.begin(), more.end());
    };
    const QString lacks = tooMuch("32 x 32 x 1 samples of 16 bits");
    const QString row = QStringLiteral("{path}: the pixels from row {n} on cannot be read ({...})");
    add("InStrips", OddTiff(), {lacks, lacks, lacks, lacks, lacks, lacks, lacks, lacks, lacks});
    add("WithDirectoryLast", OddTiff().directoryLast(), std::vector<QString>(9, unreadable));
    add("BigInDeflatedTiles", OddTiff().big().tiled().deflated(), {unreadable, row, row, row, row, row, row, row, row});
    add("OfTheOtherByteOrder", OddTiff().motorola().deflated(), {unreadable, row, row, row, row, row, row, row, row});
    return cases;
}

OddCases headers()
{
    return {
        tiff(
            "Empty", [] { return QByteArray(); }, C::Refused, "{path}: the file is empty"),
        tiff(
            "OfOneByte", [] { return QByteArray("I"); }, C::Refused, unreadable),
        tiff(
            "OfZeroBytes", [] { return QByteArray(4096, '\0'); }, C::Refused, unreadable),
        tiff(
            "ThatIsAPicture", [] { return QByteArray("\x89PNG\r\n\x1a\n"); }, C::Refused, unreadable),
        tiff(
            "ThatIsText", [] { return OddTexts::clickInfo("N1", "500nm"); }, C::Refused, unreadable),
        tiff(
            "OfUnknownVersion", [] { return OddTiff().bytes().replace(2, 1, "\x63"); }, C::Refused, unreadable),
        tiff(
            "WithDirectoryBeyondTheEnd",
            [] { return OddTiff().bytes().replace(4, 4, QByteArray("\xff\xff\xff\x7f", 4)); }, C::Refused, unreadable),
        tiff(
            "WithDirectoryAtItsStart", [] { return OddTiff().bytes().replace(4, 4, QByteArray(4, '\0')); }, C::Refused,
            "{path}: not a TIFF file"),
        tiff(
            "Of65535Entries", [] { return OddTiff().bytes().replace(8, 2, "\xff\xff"); }, C::Refused, unreadable),
        tiff(
            "BigOfEndlessEntries", [] { return OddTiff().big().bytes().replace(16, 8, QByteArray(8, '\xff')); },
            C::Refused, unreadable),
        tiff(
            "WithoutWidth", [] { return OddTiff().remove(T::Width).bytes(); }, C::Refused, unreadable),
        tiff(
            "OfNoWidth", [] { return OddTiff().set(T::Width, T::Long, {0}).bytes(); }, C::Refused, unreadable),
        tiff(
            "OfHugeSize",
            [] { return OddTiff().set(T::Width, T::Long, {0xffffffff}).set(T::Height, T::Long, {0xffffffff}).bytes(); },
            C::Refused, unreadable),
        tiff(
            "OfThousandMillionPixels",
            [] { return OddTiff().set(T::Width, T::Long, {40000}).set(T::Height, T::Long, {25000}).bytes(); },
            C::Refused, tooMuch("40000 x 25000 x 1 samples of 16 bits")),
        tiff(
            "DeflatedOfThousandMillionPixels",
            [] {
                return OddTiff().deflated().set(T::Width, T::Long, {40000}).set(T::Height, T::Long, {25000}).bytes();
            },
            C::Refused, tooMuch("40000 x 25000 x 1 samples of 16 bits")),
        tiff(
            "Of65535Samples", [] { return OddTiff().set(T::Samples, T::Short, {65535}).bytes(); }, C::Refused,
            tooMuch("32 x 32 x 65535 samples of 16 bits")),
        tiff(
            "OfComplexNumbers", [] { return OddTiff().set(T::SampleFormat, T::Short, {5}).bytes(); }, C::Refused,
            "{path}: 16 bit samples of format 5 are not supported"),
        tiff(
            "OfUnknownCompression", [] { return OddTiff().set(T::Compression, T::Short, {54321}).bytes(); }, C::Refused,
            "{path}: the pixels from row 0 on cannot be read ({...})"),
        tiff(
            "WithEightMillionStrips",
            [] {
                return OddTiff()
                    .set(T::Width, T::Long, {1})
                    .set(T::Height, T::Long, {8000000})
                    .deflated()
                    .set(T::RowsPerStrip, T::Short, {1})
                    .bytes();
            },
            C::Refused, unreadable),
        tiff(
            "WithEndlessTableOfStrips", [] { return OddTiff().claim(T::Offsets, T::Long, 0x3fffffff, 8).bytes(); },
            C::Refused, "{path}: the pixels from row {n} on cannot be read ({...})"),
        tiff(
            "BigWithEndlessTableOfStrips",
            [] { return OddTiff().big().claim(T::Offsets, T::Long8, quint64{1} << 61, 16).bytes(); }, C::Refused,
            "{path}: the pixels from row {n} on cannot be read ({...})"),
        tiff(
            "WithNegativeByteCount",
            [] {
                return OddTiff().set(T::ByteCounts, T::Long, {0xffffffff, 256, 256, 256, 256, 256, 256, 256}).bytes();
            },
            C::Silent, soundGist),
        tiff(
            "WithStripsBeyondTheEnd",
            [] { return OddTiff().set(T::Offsets, T::Long, std::vector<quint64>(8, 0x7fffff00)).bytes(); }, C::Refused,
            "{path}: the pixels from row 0 on cannot be read ({...})"),
        tiff(
            "WithTilesOfHugeSize",
            [] {
                return OddTiff()
                    .tiled()
                    .set(T::TileWidth, T::Long, {0x40000000})
                    .set(T::TileHeight, T::Long, {0x40000000})
                    .bytes();
            },
            C::Refused, tooMuch("32 x 32 x 1 samples of 16 bits")),
        tiff(
            "WithTilesOfNoSize", [] { return OddTiff().tiled().set(T::TileWidth, T::Long, {0}).bytes(); }, C::Refused,
            unreadable),
        tiff(
            "WithGarbledDeflate",
            [] { return OddTiff().deflated().setBlocks(std::vector<QByteArray>(8, QByteArray(64, '\x55'))).bytes(); },
            C::Refused, "{path}: the pixels from row 0 on cannot be read ({...})"),
        tiff(
            "WithTextOfFourGigabytes", [] { return OddTiff().claim(T::Description, T::Ascii, 0xfffffff0, 8).bytes(); },
            C::Silent, soundGist),
        tiff(
            "WithDuplicateEntries",
            [] {
                QByteArray bytes = OddTiff().bytes();
                return bytes.replace(10 + 12 * 4, 12, bytes.mid(10, 12)); // the width in place of the photometric entry
            },
            C::Silent, soundGist),
        tiff(
            "SoundBigInTiles", [] { return OddTiff().big().tiled().deflated().bytes(); }, C::Silent, soundGist),
        tiff(
            "SoundOfTheOtherByteOrder", [] { return OddTiff().motorola().bytes(); }, C::Silent, soundGist),
    };
}

// A chain of pages, each with the pixels of the first. `last` is where the last one says that the next lies.
QByteArray chain(int count, quint64 last)
{
    const quint64 begin = OddTiff().directoryOffset();
    QByteArray bytes = OddTiff().bytes();
    const QByteArray first = bytes.mid(static_cast<int>(begin), 2 + 9 * 12);
    const int nextAt = static_cast<int>(begin) + 2 + 9 * 12;
    const auto number = [](quint64 value) {
        QByteArray text;
        for (int i = 0; i < 4; ++i) {
            text.append(static_cast<char>(value >> (8 * i) & 0xff));
        }
        return text;
    };
    const int length = first.size() + 4;
    const int behind = bytes.size();
    bytes.replace(nextAt, 4, number(count > 1 ? static_cast<quint64>(behind) : last));
    for (int i = 1; i < count; ++i) {
        bytes += first + number(i + 1 < count ? static_cast<quint64>(behind + i * length) : last);
    }
    return bytes;
}

OddCases manyPages()
{
    return {
        pages(
            "OneThatLeadsToItself", [] { return chain(1, 8); }, C::Silent, soundGist),
        pages(
            "ThreeInACircle", [] { return chain(3, 8); }, C::Silent, soundGist),
        pages(
            "NextBeyondTheEnd", [] { return chain(2, 0x7fffff00); }, C::Silent, soundGist),
        pages(
            "TwentyThousand", [] { return chain(20000, 0); }, C::Silent, soundGist),
        {"StackOfPagesInACircle", OddReaders::stack(), file, [](const QString& path) { putFile(path, chain(3, 8)); },
         C::Refused, "{path}: page 3 cannot be read"},
        {"StackWithNextPageBeyondTheEnd", OddReaders::stack(), file,
         [](const QString& path) { putFile(path, chain(2, 0x7fffff00)); }, C::Refused,
         "{path}: page 2 cannot be read (Can not read TIFF directory count)"},
        {"StackOfTwentyThousandPages", OddReaders::stack(), file,
         [](const QString& path) { putFile(path, chain(20000, 0)); }, C::Silent, "20000 images, page"},
    };
}

} // namespace

OddCases tiffCases()
{
    OddCases cases = cut();
    for (const OddCases& more : {headers(), manyPages()}) {
        cases.insert(cases.end(), more.begin(), more.end());
    }
    return cases;
}
