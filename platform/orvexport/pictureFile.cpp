// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvexport/pictureFile.h"

#include "files/AtomicFile.h"
#include "platform/orvapi/HostLog.h"
#include "platform/orvexport/dicomFile.h"
#include "platform/orvexport/flatPicture.h"
#include "platform/orvexport/metafiles.h"
#include "platform/orvexport/postscript.h"
#include "platform/orvimage/TiffIo.h"

#include <QBuffer>
#include <QImageWriter>

#include <limits>
#include <new>

namespace orvexport {

namespace {

// What a format's own encoder is asked for.
struct Order
{
    QImage m_picture; // flat, but for PNG
    QString m_strFile;
    const DicomSubject& m_subject;
};

// A format. The writer gives false with half a sentence (a reason), or a whole one that begins with the file.
struct Format
{
    const char* m_pSuffix;
    int m_nLongestSide; // in pixels
    bool m_bKeepsAlpha;
    bool (*m_pWrite)(const Order& order, QString* pReason);
};

bool place(const QString& strFile, const QByteArray& bytes, QString* pReason)
{
    return !bytes.isEmpty() && orv::writeFileAtomically(strFile, bytes, pReason);
}

bool writeByQt(const Order& order, const char* pFormat, QString* pReason)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, pFormat);
    if (qstrcmp(pFormat, "jpg") == 0) {
        writer.setQuality(95); // letters and colour bars stay clean
    }
    if (!writer.write(order.m_picture)) {
        *pReason = writer.errorString();
        return false;
    }
    return place(order.m_strFile, buffer.data(), pReason);
}

bool writeBmp(const Order& order, QString* pReason)
{
    return writeByQt(order, "bmp", pReason);
}

bool writeJpeg(const Order& order, QString* pReason)
{
    return writeByQt(order, "jpg", pReason);
}

bool writePng(const Order& order, QString* pReason)
{
    return writeByQt(order, "png", pReason);
}

bool writeWmf(const Order& order, QString* pReason)
{
    return place(order.m_strFile, metafileBytes(order.m_picture), pReason);
}

bool writeEmf(const Order& order, QString* pReason)
{
    return place(order.m_strFile, enhancedMetafileBytes(order.m_picture), pReason);
}

bool writeEps(const Order& order, QString* pReason)
{
    return place(order.m_strFile, postscriptBytes(order.m_picture), pReason);
}

bool writeTiffFile(const Order& order, QString* pReason)
{
    TiffWriteOptions options;
    options.compression = TiffWriteOptions::Compression::Deflate;
    return writeTiff(order.m_strFile, order.m_picture, options, pReason);
}

bool writeDicom(const Order& order, QString* pReason)
{
    return place(order.m_strFile, dicomBytes(order.m_picture, order.m_subject, pReason), pReason);
}

// Sides: of JPEG as its library has it, of a metafile 15 bits, of DICOM 16 bits; the
// others are bounded by the size of the picture alone.
constexpr int anySide = std::numeric_limits<int>::max();
constexpr Format formats[] = {
    {"bmp", anySide, false, &writeBmp},      {"jpg", 65500, false, &writeJpeg},
    {"jpeg", 65500, false, &writeJpeg},      {"png", anySide, true, &writePng},
    {"wmf", 32767, false, &writeWmf},        {"emf", anySide, false, &writeEmf},
    {"eps", anySide, false, &writeEps},      {"tiff", anySide, false, &writeTiffFile},
    {"tif", anySide, false, &writeTiffFile}, {"dcm", 65535, false, &writeDicom},
};

// Bytes of a picture at four a pixel: what Qt and the formats count with 31 bits, with room for what stands around.
constexpr qint64 largestPicture = std::numeric_limits<int>::max() - 1048576LL;

const Format* formatOf(const QString& strSuffix)
{
    for (const Format& format : formats) {
        if (strSuffix.compare(QLatin1String(format.m_pSuffix), Qt::CaseInsensitive) == 0) {
            return &format;
        }
    }
    return nullptr;
}

// Why the picture cannot be written in the format; empty when it can.
QString hindrance(const QImage& picture, const Format* pFormat)
{
    if (pFormat == nullptr) {
        return QStringLiteral("the name's ending is no format of pictures. Give the name one of these endings: ") +
               formatSuffixes().join(QStringLiteral(", "));
    }
    if (picture.isNull()) {
        return QStringLiteral("an empty picture cannot be written");
    }
    if (qMax(picture.width(), picture.height()) > pFormat->m_nLongestSide) {
        return QStringLiteral("a picture of %1 x %2 pixels is too large for this format, which holds %3 a side")
            .arg(picture.width())
            .arg(picture.height())
            .arg(pFormat->m_nLongestSide);
    }
    if (4LL * picture.width() * picture.height() > largestPicture) {
        return QStringLiteral("a picture of %1 x %2 pixels is too large").arg(picture.width()).arg(picture.height());
    }
    return QString();
}

bool tryToWrite(const QImage& picture, const Format& format, const QString& strFile, const DicomSubject& subject,
                QString* pReason)
{
    try {
        const Order order{format.m_bKeepsAlpha ? picture : flatPicture(picture), strFile, subject};
        if (order.m_picture.isNull()) {
            throw std::bad_alloc();
        }
        return format.m_pWrite(order, pReason);
    } catch (const std::bad_alloc&) {
        *pReason = QStringLiteral("there is not enough memory");
        return false;
    }
}

} // namespace

QStringList formatSuffixes()
{
    QStringList suffixes;
    for (const Format& format : formats) {
        suffixes.append(QLatin1String(format.m_pSuffix));
    }
    return suffixes;
}

bool writePicture(const QImage& picture, const QString& strFile, const QString& strSuffix, const DicomSubject& subject,
                  QString* pError)
{
    const Format* pFormat = formatOf(strSuffix);
    QString strReason = hindrance(picture, pFormat);
    if (strReason.isEmpty() && tryToWrite(picture, *pFormat, strFile, subject, &strReason)) {
        return true;
    }
    const QString strHead = strFile + QLatin1String(": ");
    const QString strSentence =
        strReason.startsWith(strHead) ? strReason : strHead + QLatin1String("cannot be written: ") + strReason;
    logError(strSentence);
    if (pError != nullptr) {
        *pError = strSentence;
    }
    return false;
}

} // namespace orvexport
