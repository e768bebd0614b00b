// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/TiffStackWriter.h"

#include "files/TemporaryTarget.h"
#include "platform/orvimage/TiffFile.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

namespace {

// Bytes of a strip before compression.
constexpr std::size_t kStripBytes = std::size_t{256} << 10;
// A classic TIFF's offsets have 32 bits; compressed data can be a little longer than the pixels.
constexpr std::uint64_t kMaxClassicBytes = std::uint64_t{3900} << 20;

bool isFloat(ORVDataTypes type)
{
    return type == ORVTYPE_FLOAT || type == ORVTYPE_DOUBLE;
}

int sampleFormat(ORVDataTypes type)
{
    return isFloat(type) ? SAMPLEFORMAT_IEEEFP : type == ORVTYPE_INT ? SAMPLEFORMAT_INT : SAMPLEFORMAT_UINT;
}

void setFields(TIFF* tiff, const CILImage& image, std::size_t rowsPerStrip, const TiffWriteOptions& options)
{
    const ORVDataTypes type = image.dataType();
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(image.m_lWidth));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(image.m_lHeight));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, static_cast<int>(8 * CILImage::bytesPerPixel(type)));
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, sampleFormat(type));
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(rowsPerStrip));
    TIFFSetField(tiff, TIFFTAG_SOFTWARE, "orvimage");
    if (!options.description.isEmpty()) {
        TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, options.description.toUtf8().constData());
    }
    if (!options.pageName.isEmpty()) {
        TIFFSetField(tiff, TIFFTAG_PAGENAME, options.pageName.toUtf8().constData());
    }
    if (options.compression == TiffWriteOptions::Compression::Deflate) {
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, isFloat(type) ? PREDICTOR_FLOATINGPOINT : PREDICTOR_HORIZONTAL);
    } else {
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    }
}

bool writeStrips(TIFF* tiff, const CILImage& image, std::size_t rowBytes, std::size_t rowsPerStrip)
{
    const auto height = static_cast<std::size_t>(image.m_lHeight);
    std::vector<unsigned char> strip; // a copy: predictors work in place
    for (std::size_t row = 0; row < height; row += rowsPerStrip) {
        const std::size_t rows = std::min(rowsPerStrip, height - row);
        const unsigned char* from = image.bytes() + row * rowBytes;
        strip.assign(from, from + rows * rowBytes);
        const auto number = static_cast<std::uint32_t>(row / rowsPerStrip);
        if (TIFFWriteEncodedStrip(tiff, number, strip.data(), static_cast<tmsize_t>(strip.size())) < 0) {
            return false;
        }
    }
    return TIFFWriteDirectory(tiff) == 1 && TIFFFlush(tiff) == 1;
}

} // namespace

// The temporary file and the open TIFF in it.
struct TiffStackWriter::Output
{
    explicit Output(const QString& path) : target(path) {}
    ~Output() { closeDescriptor(); }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    bool open(bool big);
    bool close();
    bool closeDescriptor()
    {
        const int open = second;
        second = -1;
        return open < 0 || ::close(open) == 0;
    }

    orv::TemporaryTarget target;
    orvimage::TiffFile file;
    int second = -1; // libtiff closes its descriptor without a look at the result; the second one tells it
};

// False with a reason in the file.
bool TiffStackWriter::Output::open(bool big)
{
    const int descriptor = ::open(QFile::encodeName(target.path()).constData(), O_RDWR | O_TRUNC | O_CLOEXEC);
    second = descriptor < 0 ? -1 : ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (second >= 0) {
        return file.openForWriting(descriptor, target.path(), big);
    }
    const QString reason = qt_error_string(errno);
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    return file.fail(reason);
}

// False with a reason in the file.
bool TiffStackWriter::Output::close()
{
    file.close();
    if (!closeDescriptor()) {
        file.fail(qt_error_string(errno));
    }
    return file.reason().isEmpty();
}

TiffStackWriter::TiffStackWriter() = default;
TiffStackWriter::~TiffStackWriter() = default;

bool TiffStackWriter::fail(const QString& sentence, QString* error)
{
    m_pOutput.reset();
    if (error != nullptr) {
        *error = sentence;
    }
    return false;
}

bool TiffStackWriter::failWriting(QString* error)
{
    return fail(m_strPath + QStringLiteral(": cannot be written: ") + m_pOutput->file.reason(), error);
}

bool TiffStackWriter::begin(const QString& path, std::uint64_t pixelBytes, QString* error)
{
    m_strPath = path;
    m_pOutput = std::make_unique<Output>(path);
    if (!m_pOutput->target.isValid()) {
        return fail(m_pOutput->target.error(), error);
    }
    return m_pOutput->open(pixelBytes > kMaxClassicBytes) || failWriting(error);
}

bool TiffStackWriter::add(const CILImage& image, const TiffWriteOptions& options, QString* error)
{
    if (image.isEmpty()) {
        return fail(m_strPath + QStringLiteral(": an empty image cannot be written"), error);
    }
    if (m_pOutput == nullptr) {
        return fail(m_strPath + QStringLiteral(": the file is not being written"), error);
    }
    const std::size_t rowBytes = static_cast<std::size_t>(image.m_lWidth) * CILImage::bytesPerPixel(image.dataType());
    const std::size_t rowsPerStrip = std::max<std::size_t>(1, kStripBytes / rowBytes);
    orvimage::TiffFile& file = m_pOutput->file;
    setFields(file.handle(), image, rowsPerStrip, options);
    if (!writeStrips(file.handle(), image, rowBytes, rowsPerStrip)) {
        file.fail(QStringLiteral("the pixels cannot be written"));
    }
    return file.reason().isEmpty() || failWriting(error);
}

bool TiffStackWriter::finish(QString* error)
{
    if (m_pOutput == nullptr) {
        return fail(m_strPath + QStringLiteral(": the file is not being written"), error);
    }
    if (!m_pOutput->close()) {
        return failWriting(error);
    }
    if (!m_pOutput->target.commit()) {
        return fail(m_pOutput->target.error(), error);
    }
    m_pOutput.reset();
    return true;
}

bool writeTiff(const QString& path, const CILImage& image, const TiffWriteOptions& options, QString* error)
{
    if (image.isEmpty()) {
        if (error != nullptr) {
            *error = path + QStringLiteral(": an empty image cannot be written");
        }
        return false;
    }
    const std::uint64_t bytes = image.pixelCount() * CILImage::bytesPerPixel(image.dataType());
    TiffStackWriter writer;
    return writer.begin(path, bytes, error) && writer.add(image, options, error) && writer.finish(error);
}
