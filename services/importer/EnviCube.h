// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "services/importer/EnviHeader.h"

#include <QString>

// An ENVI cube: a header file and a data file beside it. Bands are read one at a time.
class EnviCube
{
public:
    // True when `strPath` is an ENVI header by its name, or a file with a header beside it ("cube.dat" with
    // "cube.dat.hdr" or "cube.hdr").
    static bool isEnvi(const QString& strPath);

    // Opens the cube of a header file or a data file. The data file of a header is the one that bears its name without
    // ".hdr", or with one other extension. False with "file: reason" in *pError when either cannot be found or read, or
    // the data file is shorter than the header says, or another one than the header was written with. A data file that
    // the header names outside its own folder is refused without `bFollow`.
    bool open(const QString& strPath, QString* pError, bool bFollow = false);

    const EnviHeader& header() const { return m_header; }
    const QString& dataPath() const { return m_strData; }

    // Reads band `nBand` (from 0) in the header's image type; 64 bit integers are rounded to doubles. False with
    // "file: reason" in *pError; `out` is then empty.
    bool readBand(int nBand, CILImage& out, QString* pError) const;

private:
    bool readHeader(const QString& strHeader, QString* pError);
    bool findData(const QString& strHeader, bool bFollow, QString* pError);
    bool checkData(QIODevice& data, QString* pError) const;

    EnviHeader m_header;
    QString m_strData;
};
