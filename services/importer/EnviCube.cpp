// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/EnviCube.h"

#include "XTNT/xtnt_parallel.h"
#include "files/liesInside.h"
#include "platform/orvutils/InputFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <cstring>
#include <vector>

namespace {

constexpr qint64 maxHeaderBytes = 16 * 1024 * 1024;

bool fail(QString* pError, const QString& path, const QString& reason)
{
    *pError = QStringLiteral("%1: %2").arg(path, reason);
    return false;
}

bool isHeaderName(const QString& path)
{
    return path.endsWith(QLatin1String(".hdr"), Qt::CaseInsensitive);
}

// The header beside a data file; empty without.
QString headerOf(const QString& dataPath)
{
    const QFileInfo info(dataPath);
    const QString stem = info.path() + QLatin1Char('/') + info.completeBaseName();
    for (const QString& candidate : {dataPath + QStringLiteral(".hdr"), stem + QStringLiteral(".hdr"),
                                     dataPath + QStringLiteral(".HDR"), stem + QStringLiteral(".HDR")}) {
        if (QFileInfo(candidate).isFile()) {
            return candidate;
        }
    }
    return QString();
}

template <class Stored>
Stored load(const char* from, bool bigEndian)
{
    return bigEndian ? qFromBigEndian<Stored>(from) : qFromLittleEndian<Stored>(from);
}

// `count` pixels of type Stored, `stride` bytes apart, as pixels of type Pixel.
template <class Stored, class Pixel>
void convert(const char* from, std::size_t stride, bool bigEndian, long count, void* to)
{
    Pixel* const pixels = static_cast<Pixel*>(to);
    for (long i = 0; i < count; ++i) {
        pixels[i] = static_cast<Pixel>(load<Stored>(from, bigEndian));
        from += stride;
    }
}

void convertPixels(const EnviHeader& header, const char* from, std::size_t stride, void* to)
{
    const bool big = header.bigEndian;
    const long n = header.width;
    switch (header.dataType) {
    case 1:
        return convert<quint8, quint8>(from, stride, big, n, to);
    case 2:
        return convert<qint16, int>(from, stride, big, n, to);
    case 3:
        return convert<qint32, int>(from, stride, big, n, to);
    case 4:
        return convert<float, float>(from, stride, big, n, to);
    case 5:
        return convert<double, double>(from, stride, big, n, to);
    case 12:
        return convert<quint16, quint16>(from, stride, big, n, to);
    case 13:
        return convert<quint32, double>(from, stride, big, n, to);
    case 14:
        return convert<qint64, double>(from, stride, big, n, to);
    default:
        return convert<quint64, double>(from, stride, big, n, to);
    }
}

// Where the pixels of one line of one band lie.
struct LinePlace
{
    qint64 offset = 0;  // of the bytes to read, in the file
    qint64 length = 0;  // bytes to read
    std::size_t first;  // byte of the first pixel among them
    std::size_t stride; // bytes from one pixel to the next
};

LinePlace placeOf(const EnviHeader& h, int band, long line)
{
    const qint64 pixel = h.bytesPerPixel();
    const qint64 row = h.width * pixel;
    switch (h.interleave) {
    case EnviHeader::Interleave::Bsq:
        return {h.headerOffset + (static_cast<qint64>(band) * h.height + line) * row, row, 0,
                static_cast<std::size_t>(pixel)};
    case EnviHeader::Interleave::Bil:
        return {h.headerOffset + (static_cast<qint64>(line) * h.bands + band) * row, row, 0,
                static_cast<std::size_t>(pixel)};
    case EnviHeader::Interleave::Bip:
        break;
    }
    return {h.headerOffset + static_cast<qint64>(line) * row * h.bands, row * h.bands,
            static_cast<std::size_t>(band * pixel), static_cast<std::size_t>(h.bands * pixel)};
}

} // namespace

bool EnviCube::isEnvi(const QString& strPath)
{
    return isHeaderName(strPath) || !headerOf(strPath).isEmpty();
}

bool EnviCube::open(const QString& strPath, QString* pError, bool bFollow)
{
    m_header = EnviHeader();
    m_strData.clear();
    if (isHeaderName(strPath)) {
        if (!readHeader(strPath, pError) || !findData(strPath, bFollow, pError)) {
            return false;
        }
    } else {
        const QString header = headerOf(strPath);
        if (header.isEmpty()) {
            return fail(pError, strPath, QStringLiteral("no ENVI header (.hdr) lies beside the file"));
        }
        if (!readHeader(header, pError)) {
            return false;
        }
        m_strData = strPath;
    }
    QFile data(m_strData);
    QString reason;
    if (!orv::openInput(data, &reason)) {
        return fail(pError, m_strData, reason);
    }
    if (data.size() < m_header.requiredBytes()) {
        return fail(pError, m_strData,
                    QStringLiteral("the file has %1 bytes where its header asks for %2")
                        .arg(data.size())
                        .arg(m_header.requiredBytes()));
    }
    return m_header.dataDigest.isEmpty() || checkData(data, pError);
}

// An export that was ended half way leaves data of one kind under a header of another.
bool EnviCube::checkData(QIODevice& data, QString* pError) const
{
    constexpr qint64 pieceBytes = 1 << 20;
    QCryptographicHash digest(QCryptographicHash::Sha1);
    while (!data.atEnd()) {
        XTNT::cancellationPoint();
        const QByteArray piece = data.read(pieceBytes);
        if (piece.isEmpty()) {
            return fail(pError, m_strData, data.errorString());
        }
        digest.addData(piece);
    }
    return digest.result() == m_header.dataDigest ||
           fail(pError, m_strData,
                QStringLiteral("these are not the data that the header was written for; an export may have been ended "
                               "half way: export again"));
}

bool EnviCube::readHeader(const QString& strHeader, QString* pError)
{
    QFile file(strHeader);
    QString reason;
    if (!orv::openInput(file, &reason)) {
        return fail(pError, strHeader, reason);
    }
    const QByteArray text = file.read(maxHeaderBytes + 1);
    if (file.error() != QFileDevice::NoError) {
        return fail(pError, strHeader, file.errorString());
    }
    if (text.size() > maxHeaderBytes) {
        return fail(pError, strHeader, QStringLiteral("the file is too large for a header"));
    }
    return m_header.parse(text, &reason) || fail(pError, strHeader, reason);
}

bool EnviCube::findData(const QString& strHeader, bool bFollow, QString* pError)
{
    const QFileInfo header(strHeader);
    const QDir folder = header.dir();
    if (!m_header.dataFile.isEmpty()) {
        if (!bFollow && !orv::liesInside(folder.path(), m_header.dataFile)) {
            return fail(pError, strHeader,
                        QStringLiteral("the data file %1 lies outside %2; --follow reads it all the same")
                            .arg(m_header.dataFile, folder.path()));
        }
        m_strData = folder.filePath(m_header.dataFile);
        return true;
    }
    const QString stem = header.completeBaseName(); // "cube.dat" of "cube.dat.hdr"
    if (QFileInfo(folder.filePath(stem)).isFile()) {
        m_strData = folder.filePath(stem);
        return true;
    }
    QStringList candidates;
    const QStringList names = folder.entryList(QDir::Files, QDir::Name);
    for (const QString& name : names) {
        if (!isHeaderName(name) && QFileInfo(name).completeBaseName() == stem) {
            candidates.append(name);
        }
    }
    if (candidates.size() != 1) {
        return fail(pError, strHeader,
                    candidates.isEmpty() ? QStringLiteral("no data file of that name lies beside the header")
                                         : QStringLiteral("several files could hold the data: %1; give the one meant")
                                               .arg(candidates.join(QStringLiteral(", "))));
    }
    m_strData = folder.filePath(candidates.first());
    return true;
}

bool EnviCube::readBand(int nBand, CILImage& out, QString* pError) const
{
    out.clear();
    if (nBand < 0 || nBand >= m_header.bands) {
        return fail(pError, m_strData,
                    QStringLiteral("there is no band %1 (the cube has %2)").arg(nBand + 1).arg(m_header.bands));
    }
    QFile file(m_strData);
    if (!file.open(QIODevice::ReadOnly)) {
        return fail(pError, m_strData, file.errorString());
    }
    if (out.InitWithType(m_header.imageType(), m_header.width, m_header.height) != EIL_SUCCESS) {
        return fail(pError, m_strData, QStringLiteral("there is no memory for a band"));
    }
    const std::size_t row =
        static_cast<std::size_t>(m_header.width) * CILImageBase::bytesPerPixel(m_header.imageType());
    std::vector<char> bytes;
    for (long line = 0; line < m_header.height; ++line) {
        const LinePlace place = placeOf(m_header, nBand, line);
        bytes.resize(static_cast<std::size_t>(place.length));
        if (!file.seek(place.offset) || file.read(bytes.data(), place.length) != place.length) {
            out.clear();
            return fail(pError, m_strData, QStringLiteral("the data end in band %1").arg(nBand + 1));
        }
        convertPixels(m_header, bytes.data() + place.first, place.stride,
                      static_cast<char*>(out.m_pData) + static_cast<std::size_t>(line) * row);
    }
    return true;
}
