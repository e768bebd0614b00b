// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <tiffio.h>

#include <cstdint>

namespace orvimage {

// An open TIFF file whose messages stay with it: libtiff's errors are kept (the first one), its warnings dropped.
class TiffFile
{
public:
    TiffFile() = default;
    TiffFile(const TiffFile&) = delete;
    TiffFile& operator=(const TiffFile&) = delete;
    ~TiffFile() { close(); }

    // Opens a file for reading, without mapping it, so that a file cut short meanwhile is a read error.
    bool openForReading(const QString& path);
    // Takes an open descriptor, which it closes, also when it fails.
    bool openForWriting(int descriptor, const QString& path, bool big);
    void close();

    // Goes to a page of the file that is open for reading, at once where it is the present page or the next one. False
    // when there is no such page or its directory cannot be read; the present page is then not defined.
    bool goToPage(int page);

    TIFF* handle() const { return m_tiff; }
    std::uint64_t fileSize() const { return m_fileSize; }
    // The first error since opening, without the file's name; empty when all went well.
    const QString& reason() const { return m_reason; }
    // Keeps a reason unless there is an earlier one; always false.
    bool fail(const QString& reason);
    // What could not be done, with the reason kept so far behind it; always false.
    bool failFor(const QString& what);

private:
    bool open(int descriptor, const QString& path, const char* mode, std::int64_t maxAllocation);
    static int onError(TIFF*, void* self, const char* module, const char* format, va_list arguments);
    static int onWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

    TIFF* m_tiff = nullptr;
    int m_page = 0;
    std::uint64_t m_fileSize = 0;
    QString m_path;
    QString m_reason;
};

} // namespace orvimage
