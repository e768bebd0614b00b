// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

class ExportedCube;

// Files that other programs read. Each is put in place as a whole, after a failure the target is as it was; earlier
// files are replaced. They throw Failure.

// OME-TIFF: a page of floats an image, with OME-XML in the first page's description. Images of a temporal sequence are
// time points of one channel, others channels of one time point; a page's name is the image's.
void writeOmeTiffCube(ExportedCube& cube, const QString& strPath);

// ENVI: header and data file, 32 bit floats, band by band, little endian. Wavelengths are written where emissions tell
// the bands apart. `strPath` names either file, see enviPaths().
void writeEnviCube(ExportedCube& cube, const QString& strPath);

// CSV: a row a pixel, first its column and row from 0, then a column an image; nine significant digits, which give
// floats back to the last bit. Memory holds an image and a block of rows, the images wait in a file beside the target.
void writeCsvCube(ExportedCube& cube, const QString& strPath);
// The same bytes in pieces to whoever takes them, which throws to end it; the images wait in the folder for temporary
// files.
void streamCsvCube(ExportedCube& cube, const std::function<void(const QByteArray&)>& take);

// Header and data file of an ENVI cube: "cube.hdr" and "cube.dat" for "cube.hdr" or "cube"; a name with another suffix
// is the data file.
QStringList enviPaths(const QString& strPath);
