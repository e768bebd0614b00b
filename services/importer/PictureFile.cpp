// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/PictureFile.h"

#include "platform/orvutils/InputFile.h"

#include <QFile>
#include <QImageReader>
#include <QtEndian>

#include <algorithm>
#include <cmath>

namespace {

// No format packs photographs better than deflate packs zeros (1032 to 1); twice that is allowed, and a picture of some
// size besides.
constexpr qint64 maxCompression = 2064;
constexpr qint64 allowedPixels = 1 << 20;

bool claimsTooMuch(const QFile& file, const QSize& size)
{
    return static_cast<qint64>(size.width()) * size.height() > file.size() * maxCompression + allowedPixels;
}

// A header of a few bytes can claim any size, and some formats fill in what the file lacks.
bool isCutShort(QFile& file, const QByteArray& format, const QSize& size)
{
    const qint64 place = file.pos();
    bool cut = false;
    if (format == "jpeg") {
        // Behind the last scan stands the end mark; in the scan's data its bytes cannot occur.
        constexpr qint64 tailBytes = 65536;
        file.seek(std::max<qint64>(0, file.size() - tailBytes));
        const QByteArray tail = file.read(tailBytes);
        cut = tail.lastIndexOf("\xff\xd9") <= tail.lastIndexOf("\xff\xda");
    } else if (format == "bmp") {
        constexpr int headerBytes = 34;
        file.seek(0);
        const QByteArray header = file.read(headerBytes);
        const auto word = [&header](int at) { return qFromLittleEndian<quint32>(header.constData() + at); };
        const bool bPlain = header.size() == headerBytes && (word(30) == 0 || word(30) == 3); // else in runs
        const qint64 bits = bPlain ? qFromLittleEndian<quint16>(header.constData() + 28) : 0;
        const qint64 row = (size.width() * bits + 31) / 32 * 4;
        cut = bPlain && word(10) + row * std::abs(size.height()) > file.size();
    }
    file.seek(place);
    return cut;
}

// Opens the file and finds out that it is a picture; the reason otherwise.
QString reasonAgainst(QFile& file, QImageReader& reader)
{
    QString reason;
    if (!orv::openInput(file, &reason)) {
        return reason;
    }
    if (file.size() == 0) {
        return QStringLiteral("the file is empty");
    }
    reader.setDevice(&file);
    const QByteArray format = reader.format();
    if (format.isEmpty() || format.startsWith("svg")) { // a drawing has no size of its own
        return QStringLiteral("this is no picture of a known format");
    }
    const QSize size = reader.size();
    if (size.isValid() && claimsTooMuch(file, size)) {
        return QStringLiteral("the header claims %1 x %2 pixels, more than a file of %3 bytes can hold")
            .arg(size.width())
            .arg(size.height())
            .arg(file.size());
    }
    return QString();
}

bool fail(const QString& path, const QString& reason, QString* pError)
{
    *pError = QStringLiteral("%1: %2").arg(path, reason);
    return false;
}

} // namespace

bool isPictureName(const QString& strName)
{
    return strName.endsWith(QLatin1String(".png"), Qt::CaseInsensitive) ||
           strName.endsWith(QLatin1String(".jpg"), Qt::CaseInsensitive) ||
           strName.endsWith(QLatin1String(".jpeg"), Qt::CaseInsensitive);
}

bool readPictureHeader(const QString& strPath, PictureHeader* pHeader, QString* pError)
{
    QFile file(strPath);
    QImageReader reader;
    const QString reason = reasonAgainst(file, reader);
    if (!reason.isEmpty()) {
        return fail(strPath, reason, pError);
    }
    PictureHeader header;
    header.size = reader.size();
    if (!header.size.isValid() || header.size.isEmpty()) {
        return fail(strPath, QStringLiteral("the header tells no size"), pError);
    }
    if (reader.transformation() & QImageIOHandler::TransformationRotate90) {
        header.size.transpose();
    }
    const QImage::Format format = reader.imageFormat();
    header.isColour = format != QImage::Format_Grayscale8 && format != QImage::Format_Grayscale16 &&
                      format != QImage::Format_Mono && format != QImage::Format_MonoLSB;
    header.isDeep = format == QImage::Format_Grayscale16 || format == QImage::Format_RGBX64 ||
                    format == QImage::Format_RGBA64 || format == QImage::Format_RGBA64_Premultiplied;
    *pHeader = header;
    return true;
}

bool readPictureFile(const QString& strPath, QImage& picture, QString* pError)
{
    picture = QImage();
    QFile file(strPath);
    QImageReader reader;
    const QString reason = reasonAgainst(file, reader);
    if (!reason.isEmpty()) {
        return fail(strPath, reason, pError);
    }
    const QSize size = reader.size();
    if (size.isValid() && isCutShort(file, reader.format(), size)) {
        return fail(strPath, QStringLiteral("the picture is broken or cut short"), pError);
    }
    reader.setAutoTransform(true);
    picture = reader.read();
    return !picture.isNull() ||
           fail(strPath, QStringLiteral("the picture is broken or cut short (%1)").arg(reader.errorString()), pError);
}

qint64 pictureFileMemory(const QString& strPath)
{
    QFile file(strPath);
    QString reason;
    if (!orv::openInput(file, &reason)) {
        return 0;
    }
    const QSize size = QImageReader(&file).size();
    constexpr qint64 bytes = 4 + 1 + 1; // colours, their grey values, the image
    return size.isValid() && !claimsTooMuch(file, size) ? bytes * size.width() * size.height() : 0;
}
