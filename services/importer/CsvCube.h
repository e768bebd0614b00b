// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QString>
#include <QStringList>
#include <QTemporaryFile>

#include <functional>
#include <memory>
#include <vector>

// A cube in a CSV file: a row a pixel, first its column "x" and its row "y" (from 0, row by row), then a column an
// image, which the first line names. The text is read once, into a temporary file of floats: blocks of rows, in each
// image by image. Images are read from there, one at a time, so that memory holds no more than one and a block.
class CsvCube
{
public:
    // Told the share of the file that has been read, from 0 to 1; false stops.
    using Progress = std::function<bool(double dFraction)>;

    // True when the file's name ends in ".csv".
    static bool isCsv(const QString& strPath);

    // False with "file:line: reason" or "file: reason" in *pError: no such header, a row too few or too many, a pixel
    // out of its order, a field that is no number. "nan" and "inf" are read as they are. `progress` may be empty.
    bool open(const QString& strPath, QString* pError, const Progress& progress = {});

    // Reads the first line alone: the names of the images. Errors as of open().
    static bool readNames(const QString& strPath, QStringList* pNames, QString* pError);

    int bands() const { return m_names.size(); }
    long width() const { return m_lWidth; }
    long height() const { return m_lHeight; }
    const QStringList& names() const { return m_names; }

    // Reads band `nBand` (from 0) as floats. False with "file: reason" in *pError; `out` is then empty.
    bool readBand(int nBand, CILImage& out, QString* pError) const;

private:
    bool openText(QFile& file, QString* pError);
    bool readHeader(const QByteArray& line, QString* pReason);
    bool readRows(QFile& file, const Progress& progress, QString* pError);
    bool flush(QString* pError);
    // Takes one row; false with a reason.
    bool readRow(const QByteArray& line, qint64 row, QString* pReason);

    QString m_strPath;
    QStringList m_names;
    long m_lWidth = 0; // 0 until the second row of the image has begun
    long m_lHeight = 0;
    std::vector<float> m_pending; // rows not yet written
    qint64 m_block = 1;           // rows in each block of the temporary file; the last may have fewer
    std::unique_ptr<QTemporaryFile> m_pFloats;
};
