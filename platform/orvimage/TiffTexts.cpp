// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/TiffTexts.h"

#include "platform/orvimage/TiffFile.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <vector>

using orvimage::TiffFile;

namespace {

constexpr std::size_t kMaxTextBytes = std::size_t{16} << 20;
constexpr int kMaxLaterText = 4096;
// ImageJ's private tags: the sizes of the blocks, and the blocks.
constexpr std::uint32_t kBlockSizesTag = 50838;
constexpr std::uint32_t kBlocksTag = 50839;

// A field that the library knows from this file alone: its elements, none when it is absent or of another type.
template <typename Element>
std::vector<Element> privateField(TIFF* tiff, std::uint32_t tag, TIFFDataType type)
{
    const TIFFField* field = TIFFFindField(tiff, tag, TIFF_ANY);
    if (field == nullptr || TIFFFieldDataType(field) != type || TIFFFieldPassCount(field) == 0 ||
        TIFFFieldReadCount(field) != TIFF_VARIABLE2) {
        return {};
    }
    std::uint32_t count = 0;
    const Element* elements = nullptr;
    if (TIFFGetField(tiff, tag, &count, &elements) != 1 || elements == nullptr || count > kMaxTextBytes) {
        return {};
    }
    return std::vector<Element>(elements, elements + count);
}

template <typename Number>
Number loadNumber(const unsigned char* from, bool big)
{
    return big ? qFromBigEndian<Number>(from) : qFromLittleEndian<Number>(from);
}

QString utf16Text(const unsigned char* from, std::size_t bytes, bool big)
{
    QString text;
    for (std::size_t i = 0; i + 1 < bytes; i += 2) {
        text.append(QChar(loadNumber<quint16>(from + i, big)));
    }
    return text;
}

// The first block is a table of (kind, number of blocks of that kind) behind a magic number; then the blocks follow.
QStringList readLabels(TIFF* tiff)
{
    constexpr quint32 magic = 0x494a494a;     // "IJIJ"
    constexpr quint32 labelKind = 0x6c61626c; // "labl"
    constexpr std::size_t entryBytes = 8;
    const std::vector<std::uint32_t> sizes = privateField<std::uint32_t>(tiff, kBlockSizesTag, TIFF_LONG);
    const std::vector<unsigned char> blocks = privateField<unsigned char>(tiff, kBlocksTag, TIFF_BYTE);
    const bool big = TIFFIsBigEndian(tiff) != 0;
    if (sizes.empty() || sizes[0] < 4 + entryBytes || sizes[0] > blocks.size() ||
        loadNumber<quint32>(blocks.data(), big) != magic) {
        return {};
    }
    QStringList labels;
    std::size_t block = 1;
    std::size_t at = sizes[0];
    for (std::size_t entry = 4; entry + entryBytes <= sizes[0]; entry += entryBytes) {
        const auto kind = loadNumber<quint32>(blocks.data() + entry, big);
        const auto count = loadNumber<quint32>(blocks.data() + entry + 4, big);
        for (quint32 i = 0; i < count; ++i, ++block) {
            if (block >= sizes.size() || sizes[block] > blocks.size() - at) {
                return labels;
            }
            if (kind == labelKind) {
                labels.append(utf16Text(blocks.data() + at, sizes[block], big));
            }
            at += sizes[block];
        }
    }
    return labels;
}

bool readText(TiffFile& file, std::uint32_t tag, QString* text)
{
    const char* characters = nullptr;
    if (TIFFGetField(file.handle(), tag, &characters) != 1 || characters == nullptr) {
        return true;
    }
    const std::size_t length = std::strlen(characters);
    if (length > kMaxTextBytes) {
        return file.fail(QStringLiteral("a text of %1 bytes is too large").arg(length));
    }
    *text = QString::fromUtf8(characters, static_cast<int>(length));
    return true;
}

bool readPages(TiffFile& file, TiffTexts& read)
{
    for (;;) {
        TiffTexts::Page page;
        if (!readText(file, TIFFTAG_IMAGEDESCRIPTION, &page.description) ||
            !readText(file, TIFFTAG_PAGENAME, &page.pageName)) {
            return false;
        }
        if (read.pages.isEmpty()) {
            read.labels = readLabels(file.handle());
        } else {
            page.description.truncate(kMaxLaterText);
            page.pageName.truncate(kMaxLaterText);
        }
        read.pages.append(page);
        if (TIFFLastDirectory(file.handle()) != 0) {
            return true;
        }
        if (TIFFReadDirectory(file.handle()) != 1) {
            return file.failFor(QStringLiteral("page %1 cannot be read").arg(read.pages.size()));
        }
    }
}

} // namespace

bool readTiffTexts(const QString& path, TiffTexts* texts, QString* error)
{
    TiffFile file;
    TiffTexts read;
    if (file.openForReading(path) && readPages(file, read)) {
        *texts = read;
        return true;
    }
    if (error != nullptr) {
        *error = path + QStringLiteral(": ") + file.reason();
    }
    return false;
}
