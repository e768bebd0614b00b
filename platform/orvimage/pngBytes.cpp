// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/pngBytes.h"

#include "XTNT/xtnt_parallel.h"

#include <QImage>

#include <csetjmp>
#include <new>

#include <png.h>

namespace orvimage {

namespace {

// As QImage::save() has it for a quality of 80.
constexpr int compressionLevel = 1;
// Between two cancellation points: about 5 ms.
constexpr int pixelsAtOnce = 65536;

// The library's part. It ends a call that fails by a jump, over frames that own nothing; pixels and points of
// cancellation are the caller's.
class Packer
{
public:
    explicit Packer(QByteArray* pBytes) : m_pBytes(pBytes)
    {
        m_pFile = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, &Packer::end, &Packer::stayQuiet);
        m_pInfo = m_pFile == nullptr ? nullptr : png_create_info_struct(m_pFile);
        if (m_pInfo == nullptr) {
            png_destroy_write_struct(&m_pFile, nullptr);
            throw std::bad_alloc();
        }
        png_set_write_fn(m_pFile, this, &Packer::take, nullptr);
    }
    ~Packer() { png_destroy_write_struct(&m_pFile, &m_pInfo); }
    Packer(const Packer&) = delete;
    Packer& operator=(const Packer&) = delete;

    bool begin(const QImage& picture, bool bGrey)
    {
        if (setjmp(m_back) != 0) {
            return false;
        }
        png_set_compression_level(m_pFile, compressionLevel);
        png_set_IHDR(m_pFile, m_pInfo, static_cast<png_uint_32>(picture.width()),
                     static_cast<png_uint_32>(picture.height()), 8, bGrey ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB,
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        if (picture.dotsPerMeterX() > 0 || picture.dotsPerMeterY() > 0) {
            png_set_pHYs(m_pFile, m_pInfo, static_cast<png_uint_32>(picture.dotsPerMeterX()),
                         static_cast<png_uint_32>(picture.dotsPerMeterY()), PNG_RESOLUTION_METER);
        }
        png_write_info(m_pFile, m_pInfo);
        return true;
    }

    bool add(const uchar* pRow)
    {
        if (setjmp(m_back) != 0) {
            return false;
        }
        png_write_row(m_pFile, pRow);
        return true;
    }

    bool finish()
    {
        if (setjmp(m_back) != 0) {
            return false;
        }
        png_write_end(m_pFile, m_pInfo);
        return true;
    }

private:
    [[noreturn]] static void end(png_structp pFile, png_const_charp)
    {
        std::longjmp(static_cast<Packer*>(png_get_error_ptr(pFile))->m_back, 1);
    }
    static void stayQuiet(png_structp, png_const_charp) {}
    // No exception may pass through the library.
    static void take(png_structp pFile, png_bytep pBytes, png_size_t nBytes)
    {
        bool taken = true;
        try {
            QByteArray& bytes = *static_cast<Packer*>(png_get_io_ptr(pFile))->m_pBytes;
            bytes.append(reinterpret_cast<const char*>(pBytes), static_cast<int>(nBytes));
        } catch (const std::bad_alloc&) {
            taken = false;
        }
        if (!taken) {
            png_error(pFile, "no memory");
        }
    }

    QByteArray* const m_pBytes;
    png_structp m_pFile = nullptr;
    png_infop m_pInfo = nullptr;
    std::jmp_buf m_back = {};
};

} // namespace

QByteArray pngBytes(const QImage& picture)
{
    QByteArray bytes;
    if (picture.isNull()) {
        return bytes;
    }
    const bool grey = picture.format() == QImage::Format_Grayscale8;
    const QImage pixels = grey ? picture : picture.convertToFormat(QImage::Format_RGB888);
    if (pixels.isNull()) {
        throw std::bad_alloc();
    }
    Packer packer(&bytes);
    bool done = packer.begin(pixels, grey);
    const int rowsAtOnce = qMax(1, pixelsAtOnce / pixels.width());
    for (int y = 0; done && y < pixels.height(); ++y) {
        if (y % rowsAtOnce == 0) {
            XTNT::cancellationPoint();
        }
        done = packer.add(pixels.constScanLine(y));
    }
    if (!done || !packer.finish()) {
        throw std::bad_alloc();
    }
    return bytes;
}

} // namespace orvimage
