// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "platform/orvimage/TiffPageReader.h"
#include "services/importer/CsvCube.h"
#include "services/importer/EnviCube.h"
#include "services/importer/ImagesTable.h"

#include <QHash>
#include <QMap>
#include <QSharedPointer>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

// The images that a table names, wherever they lie: files of a folder, pages of a TIFF file, samples of its pixels,
// bands of an ENVI cube or a CSV cube. Pixels are read one image at a time.
class ImageStack
{
public:
    // By the file's first bytes: TIFF or BigTIFF in either byte order.
    static bool isTiffFile(const QString& strPath);

    // Finds every image of the table and reads the headers. With a folder as `strSource` each row names its file there;
    // otherwise `strSource` is the file of all rows. A row without page or band means the first. False with one
    // sentence in *pError (see importStack) when an image cannot be found, or two rows name one image. A CSV cube is
    // read whole here, which `progress` (may be empty) follows. `bFollow` as in EnviCube::open().
    bool open(const QString& strSource, const ImagesTable& table, QString* pError,
              const CsvCube::Progress& progress = {}, bool bFollow = false);

    int count() const { return m_images.size(); }
    QSize size(int i) const { return m_images.at(i).size; }
    // Of the widest image: bytes of a pixel, and those that reading the image takes.
    int pixelBytes() const { return m_nPixelBytes; }
    qint64 readBytes() const { return m_lReadBytes; }
    const QStringList& warnings() const { return m_warnings; }

    // Short and for people: "cells_00.tif", "stack.tif page 3", "cube.dat band 2".
    QString name(int i) const { return m_images.at(i).name; }
    // Of image i; empty for one that is no projection.
    QString projectionText(int i) const { return m_images.at(i).projection.text(); }
    // What an ENVI header tells of the band, in nm.
    std::optional<double> wavelength(int i) const;
    // By which the file of image i marks pixels without a value; nothing where it does not.
    std::optional<double> ignoreValue(int i) const;
    // What the values of image i are to be divided by; 1 where nothing is told.
    double scale(int i) const;
    // Reads image i in its own type. Of one in colours without a band, the plane that has the light where all is of one
    // hue, else the grey values. False with "file: reason" in *pError; `out` is then empty.
    bool readBand(int i, CILImage& out, QString* pError) const;
    // What was taken of the images in colours that have been read, a sentence each.
    QStringList colourWarnings() const;

private:
    struct Image
    {
        QString path;
        QString name;
        QSize size;
        int page = 0;                  // from 0
        PageProjection projection;     // of pages from that one on
        int band = -1;                 // from 0; -1 for a TIFF page or a picture as a whole
        bool picture = false;          // PNG or JPEG
        bool coloured = false;         // and no band is given
        QSharedPointer<EnviCube> cube; // null but for an ENVI cube
        QSharedPointer<CsvCube> csv;   // null but for a CSV cube
    };
    bool locate(const QString& strSource, bool bFolder, const ImageRow& row, Image& image, QString* pReason);
    bool openCube(const ImageRow& row, Image& image, QString* pReason);
    bool openCsv(const ImageRow& row, Image& image, QString* pReason);
    QSharedPointer<CsvCube> csvCube(const QString& strPath, QString* pReason);
    bool measure(Image& image, long* pWidth, long* pHeight, QString* pReason);
    bool measureProjection(const Image& image, const TiffInfo& first, QString* pReason);
    bool measurePicture(Image& image, long* pWidth, long* pHeight, QString* pReason);
    bool readProjection(const Image& image, CILImage& out, QString* pError) const;
    bool readColours(const Image& image, CILImage& out, QString* pError) const;
    void noteMemory(ORVDataTypes type, qint64 lReadBytes);
    static void warnOf(const QStringList& names, const QString& strWhat, QStringList& warnings);

    QVector<Image> m_images;
    QHash<QString, QSharedPointer<EnviCube>> m_cubes; // by path, while opening
    QHash<QString, QSharedPointer<CsvCube>> m_csvCubes;
    CsvCube::Progress m_progress; // while opening
    bool m_bFollow = false;
    QSharedPointer<TiffPageReader> m_pages = QSharedPointer<TiffPageReader>::create();
    QStringList m_mapped; // names of images with a colour map, of several samples a pixel
    QStringList m_sampled;
    // Names of images in colours that were read, by what was taken of them.
    mutable QMap<QString, QStringList> m_coloured;
    int m_nPixelBytes = 0;
    qint64 m_lReadBytes = 0;
    QStringList m_warnings;
};
