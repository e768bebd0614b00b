// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/CsvCube.h"

#include "platform/orvutils/InputFile.h"
#include "services/importer/CsvLine.h"

#include <QDir>

#include <algorithm>
#include <limits>
#include <vector>

namespace {

// A line of ten thousand images takes a fifth of this.
constexpr qint64 maxLineBytes = 1024 * 1024;
// Floats of a block: long enough for its part of an image to be read at a stretch.
constexpr qint64 blockFloats = 4 * 1024 * 1024;
constexpr long maxSide = 32768;
constexpr int maxImages = 10000;
// Lines between two calls of the progress.
constexpr qint64 progressLines = 1024;

bool fail(QString* pError, const QString& path, qint64 line, const QString& reason)
{
    *pError = line > 0 ? QStringLiteral("%1:%2: %3").arg(path, QString::number(line), reason)
                       : QStringLiteral("%1: %2").arg(path, reason);
    return false;
}

} // namespace

bool CsvCube::isCsv(const QString& strPath)
{
    return strPath.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive);
}

bool CsvCube::open(const QString& strPath, QString* pError, const Progress& progress)
{
    m_strPath = strPath;
    m_lWidth = 0;
    m_lHeight = 0;
    m_pending.clear();
    QFile file(strPath);
    if (!openText(file, pError)) {
        return false;
    }
    m_pFloats = std::make_unique<QTemporaryFile>(QDir::tempPath() + QStringLiteral("/spum-XXXXXX.cube"));
    if (!m_pFloats->open()) {
        return fail(pError, m_pFloats->fileTemplate(), 0, m_pFloats->errorString());
    }
    return readRows(file, progress, pError);
}

bool CsvCube::readNames(const QString& strPath, QStringList* pNames, QString* pError)
{
    CsvCube cube;
    cube.m_strPath = strPath;
    QFile file(strPath);
    if (!cube.openText(file, pError)) {
        return false;
    }
    *pNames = cube.m_names;
    return true;
}

// Opens the file and reads its first line.
bool CsvCube::openText(QFile& file, QString* pError)
{
    m_names.clear();
    QString reason;
    if (!orv::openInput(file, &reason)) {
        return fail(pError, m_strPath, 0, reason);
    }
    return readHeader(file.readLine(maxLineBytes), &reason) || fail(pError, m_strPath, 1, reason);
}

bool CsvCube::readHeader(const QByteArray& line, QString* pReason)
{
    if (line.size() >= maxLineBytes - 1 && !line.endsWith('\n')) {
        *pReason = QStringLiteral("the line is longer than %1 bytes").arg(maxLineBytes);
        return false;
    }
    if (line.trimmed().contains('\r')) {
        *pReason = QStringLiteral("the lines end with carriage returns alone; save the file with LF or CR LF");
        return false;
    }
    QString text = QString::fromUtf8(line);
    if (text.startsWith(QChar(QChar::ByteOrderMark))) {
        text.remove(0, 1);
    }
    QStringList fields;
    if (!splitCsvLine(text.trimmed(), QLatin1Char(','), &fields, pReason)) {
        return false;
    }
    if (fields.size() < 3 || fields.at(0).toLower() != QLatin1String("x") ||
        fields.at(1).toLower() != QLatin1String("y")) {
        const bool table = fields.at(0).trimmed().toLower() == QLatin1String("file");
        *pReason = QStringLiteral("the first line is not \"x,y\" and a name an image: this is %1")
                       .arg(table ? QStringLiteral("a table of images, which --images takes beside their folder")
                                  : QStringLiteral("no cube"));
        return false;
    }
    if (fields.size() - 2 > maxImages) {
        *pReason = QStringLiteral("%1 images are too many, %2 at most").arg(fields.size() - 2).arg(maxImages);
        return false;
    }
    m_names = fields.mid(2);
    m_block = std::max<qint64>(1, blockFloats / bands());
    return true;
}

bool CsvCube::readRow(const QByteArray& line, qint64 row, QString* pReason)
{
    const QList<QByteArray> fields = line.split(',');
    if (fields.size() != m_names.size() + 2) {
        *pReason = QStringLiteral("%1 fields where the first line names %2").arg(fields.size()).arg(m_names.size() + 2);
        return false;
    }
    if (m_lWidth == 0 && row > 0 && fields.at(1).trimmed() == "1") {
        m_lWidth = static_cast<long>(row);
    }
    const qint64 x = m_lWidth > 0 ? row % m_lWidth : row;
    const qint64 y = m_lWidth > 0 ? row / m_lWidth : 0;
    bool bX = false;
    bool bY = false;
    if (fields.at(0).toLongLong(&bX) != x || fields.at(1).toLongLong(&bY) != y || !bX || !bY) {
        *pReason = QStringLiteral("pixel %1, %2 comes where pixel %3, %4 is due")
                       .arg(QString::fromUtf8(fields.at(0)), QString::fromUtf8(fields.at(1)), QString::number(x),
                            QString::number(y));
        return false;
    }
    for (int i = 2; i < fields.size(); ++i) {
        bool bNumber = false;
        const QByteArray field = fields.at(i).trimmed();
        float value = field.toFloat(&bNumber);
        if (!bNumber && field.toLower() == "nan") {
            value = std::numeric_limits<float>::quiet_NaN();
            bNumber = true;
        }
        if (!bNumber) {
            *pReason = QStringLiteral("\"%1\" is not a number").arg(QString::fromUtf8(field.left(40)));
            return false;
        }
        m_pending.push_back(value);
    }
    return true;
}

bool CsvCube::readRows(QFile& file, const Progress& progress, QString* pError)
{
    qint64 row = 0;
    qint64 line = 1;
    while (!file.atEnd()) {
        const QByteArray bytes = file.readLine(maxLineBytes);
        ++line;
        if (progress && line % progressLines == 0 &&
            !progress(static_cast<double>(file.pos()) / static_cast<double>(std::max<qint64>(1, file.size())))) {
            return fail(pError, m_strPath, 0, QStringLiteral("the reading was aborted"));
        }
        if (bytes.isEmpty()) {
            return fail(pError, m_strPath, line, file.errorString());
        }
        const QByteArray text = bytes.trimmed();
        if (text.isEmpty()) {
            continue;
        }
        QString reason;
        if (!readRow(text, row, &reason)) {
            return fail(pError, m_strPath, line, reason);
        }
        ++row;
        if (row % m_block == 0 && !flush(pError)) {
            return false;
        }
    }
    m_lWidth = m_lWidth > 0 ? m_lWidth : static_cast<long>(row);
    if (row == 0 || row % m_lWidth != 0) {
        return fail(pError, m_strPath, line,
                    row == 0 ? QStringLiteral("the cube has no pixel")
                             : QStringLiteral("the last row of the image ends after %1 of %2 pixels")
                                   .arg(row % m_lWidth)
                                   .arg(m_lWidth));
    }
    if (m_lWidth > maxSide || row / m_lWidth > maxSide) {
        return fail(pError, m_strPath, 0,
                    QStringLiteral("%1 x %2 pixels are too many").arg(m_lWidth).arg(row / m_lWidth));
    }
    m_lHeight = static_cast<long>(row / m_lWidth);
    return flush(pError);
}

// Writes the rows that wait, turned to images.
bool CsvCube::flush(QString* pError)
{
    const auto images = static_cast<std::size_t>(bands());
    const std::size_t rows = m_pending.size() / images;
    std::vector<float> turned(m_pending.size());
    for (std::size_t i = 0; i < rows; ++i) {
        for (std::size_t k = 0; k < images; ++k) {
            turned[k * rows + i] = m_pending[i * images + k];
        }
    }
    m_pending.clear();
    const auto bytes = static_cast<qint64>(turned.size()) * static_cast<qint64>(sizeof(float));
    return (m_pFloats->write(reinterpret_cast<const char*>(turned.data()), bytes) == bytes && m_pFloats->flush()) ||
           fail(pError, m_pFloats->fileName(), 0, m_pFloats->errorString());
}

bool CsvCube::readBand(int nBand, CILImage& out, QString* pError) const
{
    out.clear();
    if (nBand < 0 || nBand >= bands()) {
        return fail(pError, m_strPath, 0,
                    QStringLiteral("there is no band %1 (the cube has %2)").arg(nBand + 1).arg(bands()));
    }
    if (out.InitWithType(ORVTYPE_FLOAT, m_lWidth, m_lHeight) != EIL_SUCCESS) {
        return fail(pError, m_strPath, 0, QStringLiteral("there is no memory for a band"));
    }
    constexpr auto size = static_cast<qint64>(sizeof(float));
    const auto pixels = static_cast<qint64>(out.pixelCount());
    bool bRead = true;
    for (qint64 first = 0; first < pixels && bRead; first += m_block) {
        const qint64 count = std::min(m_block, pixels - first);
        char* target = reinterpret_cast<char*>(out.floats() + first);
        bRead = m_pFloats->seek((first * bands() + nBand * count) * size) &&
                m_pFloats->read(target, count * size) == count * size;
    }
    if (!bRead) {
        out.clear();
        return fail(pError, m_pFloats->fileName(), 0, QStringLiteral("the floats of the cube cannot be read back"));
    }
    return true;
}
