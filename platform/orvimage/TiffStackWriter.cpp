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

// Pixels in memory, row by row.
struct TiffStackWriter::Page
{
    long width = 0;
    long height = 0;
    ORVDataTypes type = ORVTYPE_NONE; // of a sample
    int samples = 1;                  // 3: red, green and blue
    const unsigned char* rows = nullptr;
    std::size_t stride = 0; // bytes from a row to the next
    int dotsPerMeter = 0;   // 0: not told

    std::size_t rowBytes() const
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(samples) * CILImage::bytesPerPixel(type);
    }
    // How many rows make up a strip.
    std::size_t rowsPerStrip() const { return std::max<std::size_t>(1, kStripBytes / rowBytes()); }
    bool isEmpty() const { return width <= 0 || height <= 0; }
    bool isFloat() const { return type == ORVTYPE_FLOAT || type == ORVTYPE_DOUBLE; }
    int sampleFormat() const
    {
        return isFloat() ? SAMPLEFORMAT_IEEEFP : type == ORVTYPE_INT ? SAMPLEFORMAT_INT : SAMPLEFORMAT_UINT;
    }
    void setFields(TIFF* tiff, const TiffWriteOptions& options) const;
    bool writeStrips(TIFF* tiff) const;

    // Bytes of a strip before compression.
    static constexpr std::size_t kStripBytes = std::size_t{256} << 10;
};

namespace {

// A classic TIFF's offsets have 32 bits; compressed data can be a little longer than the pixels.
constexpr std::uint64_t kMaxClassicBytes = std::uint64_t{3900} << 20;

} // namespace

void TiffStackWriter::Page::setFields(TIFF* tiff, const TiffWriteOptions& options) const
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(width));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(height));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, static_cast<int>(8 * CILImage::bytesPerPixel(type)));
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, sampleFormat());
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, samples == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(rowsPerStrip()));
    if (dotsPerMeter > 0) {
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, dotsPerMeter / 100.0);
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, dotsPerMeter / 100.0);
    }
    TIFFSetField(tiff, TIFFTAG_SOFTWARE, "orvimage");
    if (!options.description.isEmpty()) {
        TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, options.description.toUtf8().constData());
    }
    if (!options.pageName.isEmpty()) {
        TIFFSetField(tiff, TIFFTAG_PAGENAME, options.pageName.toUtf8().constData());
    }
    if (options.compression == TiffWriteOptions::Compression::Deflate) {
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, isFloat() ? PREDICTOR_FLOATINGPOINT : PREDICTOR_HORIZONTAL);
    } else {
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    }
}

bool TiffStackWriter::Page::writeStrips(TIFF* tiff) const
{
    const auto count = static_cast<std::size_t>(height);
    const std::size_t perStrip = rowsPerStrip();
    std::vector<unsigned char> strip; // a copy: predictors work in place
    for (std::size_t row = 0; row < count; row += perStrip) {
        strip.clear();
        for (std::size_t i = row; i < std::min(row + perStrip, count); ++i) {
            strip.insert(strip.end(), rows + i * stride, rows + i * stride + rowBytes());
        }
        const auto number = static_cast<std::uint32_t>(row / perStrip);
        if (TIFFWriteEncodedStrip(tiff, number, strip.data(), static_cast<tmsize_t>(strip.size())) < 0) {
            return false;
        }
    }
    return TIFFWriteDirectory(tiff) == 1 && TIFFFlush(tiff) == 1;
}

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
        return addPage({}, options, error);
    }
    Page page{image.m_lWidth, image.m_lHeight, image.dataType(), 1, image.bytes(), 0, 0};
    page.stride = page.rowBytes();
    return addPage(page, options, error);
}

bool TiffStackWriter::add(const QImage& picture, const TiffWriteOptions& options, QString* error)
{
    const QImage pixels = picture.convertToFormat(QImage::Format_RGB888);
    return addPage({pixels.width(), pixels.height(), ORVTYPE_BYTE, 3, pixels.constBits(),
                    static_cast<std::size_t>(pixels.bytesPerLine()), pixels.dotsPerMeterX()},
                   options, error);
}

bool TiffStackWriter::addPage(const Page& page, const TiffWriteOptions& options, QString* error)
{
    if (page.isEmpty()) {
        return fail(m_strPath + QStringLiteral(": an empty image cannot be written"), error);
    }
    if (m_pOutput == nullptr) {
        return fail(m_strPath + QStringLiteral(": the file is not being written"), error);
    }
    orvimage::TiffFile& file = m_pOutput->file;
    page.setFields(file.handle(), options);
    if (!page.writeStrips(file.handle())) {
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

namespace {

template <typename Pixels>
bool writeOnePage(const QString& path, const Pixels& pixels, bool empty, std::uint64_t bytes,
                  const TiffWriteOptions& options, QString* error)
{
    if (empty) {
        if (error != nullptr) {
            *error = path + QStringLiteral(": an empty image cannot be written");
        }
        return false;
    }
    TiffStackWriter writer;
    return writer.begin(path, bytes, error) && writer.add(pixels, options, error) && writer.finish(error);
}

} // namespace

bool writeTiff(const QString& path, const CILImage& image, const TiffWriteOptions& options, QString* error)
{
    const std::uint64_t bytes = image.pixelCount() * CILImage::bytesPerPixel(image.dataType());
    return writeOnePage(path, image, image.isEmpty(), bytes, options, error);
}

bool writeTiff(const QString& path, const QImage& picture, const TiffWriteOptions& options, QString* error)
{
    const std::uint64_t bytes =
        3 * static_cast<std::uint64_t>(picture.width()) * static_cast<std::uint64_t>(picture.height());
    return writeOnePage(path, picture, picture.isNull(), bytes, options, error);
}
