// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/TiffFile.h"

#include <QFile>
#include <QRegularExpression>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <memory>

namespace orvimage {

namespace {

// Single blocks that libtiff may take for itself when reading: tables of strips, a compressed strip, a codec's state.
constexpr std::int64_t kMinAllocation = std::int64_t{64} << 20;

struct OptionsDeleter
{
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

} // namespace

bool TiffFile::openForReading(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    const int descriptor = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return fail(qt_error_string(errno));
    }
    struct stat status = {};
    QString reason;
    if (::fstat(descriptor, &status) != 0) {
        reason = qt_error_string(errno);
    } else if (S_ISDIR(status.st_mode)) {
        reason = QStringLiteral("is a folder, not a TIFF file");
    } else if (!S_ISREG(status.st_mode)) {
        reason = QStringLiteral("is not a regular file");
    } else if (status.st_size == 0) {
        reason = QStringLiteral("the file is empty");
    }
    if (!reason.isEmpty()) {
        ::close(descriptor);
        return fail(reason);
    }
    m_fileSize = static_cast<std::uint64_t>(status.st_size);
    if (open(descriptor, path, "rm", std::max<std::int64_t>(kMinAllocation, 2 * status.st_size))) {
        return true;
    }
    m_reason = m_reason.isEmpty() ? QStringLiteral("not a TIFF file")
                                  : QStringLiteral("not a readable TIFF file (%1)").arg(m_reason);
    return false;
}

bool TiffFile::openForWriting(int descriptor, const QString& path, bool big)
{
    return open(descriptor, path, big ? "w8" : "w", 0) || fail(QStringLiteral("cannot be written as TIFF"));
}

bool TiffFile::open(int descriptor, const QString& path, const char* mode, std::int64_t maxAllocation)
{
    m_path = path;
    const std::unique_ptr<TIFFOpenOptions, OptionsDeleter> options(TIFFOpenOptionsAlloc());
    if (options) {
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), &TiffFile::onError, this);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), &TiffFile::onWarning, this);
        if (maxAllocation > 0) {
            TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), maxAllocation);
        }
        m_tiff = TIFFFdOpenExt(descriptor, QFile::encodeName(path).constData(), mode, options.get());
    }
    if (m_tiff == nullptr) {
        ::close(descriptor);
    }
    return m_tiff != nullptr;
}

bool TiffFile::goToPage(int page)
{
    const int before = m_page;
    m_page = page;
    if (page == before) {
        return true;
    }
    const bool next = page == before + 1 && TIFFLastDirectory(m_tiff) == 0;
    return page >= 0 && (next ? TIFFReadDirectory(m_tiff) : TIFFSetDirectory(m_tiff, static_cast<tdir_t>(page))) == 1;
}

void TiffFile::close()
{
    if (m_tiff != nullptr) {
        TIFFClose(m_tiff);
    }
    m_tiff = nullptr;
}

bool TiffFile::fail(const QString& reason)
{
    if (m_reason.isEmpty()) {
        m_reason = reason;
    }
    return false;
}

bool TiffFile::failFor(const QString& what)
{
    // The library tells where it was before, which is -1 at first.
    static const QRegularExpression place(QStringLiteral(" at (scanline|row) \\d+(, col \\d+)?(, tile \\d+)?"));
    m_reason.remove(place);
    m_reason = m_reason.isEmpty() ? what : QStringLiteral("%1 (%2)").arg(what, m_reason);
    return false;
}

int TiffFile::onError(TIFF*, void* self, const char* module, const char* format, va_list arguments)
{
    char text[512];
    std::vsnprintf(text, sizeof text, format, arguments);
    QString message = QString::fromLocal8Bit(text).simplified();
    while (message.endsWith(QLatin1Char('.'))) {
        message.chop(1);
    }
    // The module is the name of a function of the library or of the file; neither helps.
    Q_UNUSED(module)
    auto* const file = static_cast<TiffFile*>(self);
    // Some messages begin with the file's name, which is told in front anyway.
    if (message.startsWith(file->m_path + QLatin1String(": "))) {
        message.remove(0, file->m_path.size() + 2);
    }
    file->fail(message);
    return 1; // handled: nothing goes to the process-wide handlers
}

} // namespace orvimage
