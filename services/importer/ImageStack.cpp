// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ImageStack.h"

#include "platform/orvimage/TiffIo.h"
#include "platform/orvutils/InputFile.h"
#include "services/importer/ColourPlanes.h"
#include "services/importer/ImportMemory.h"
#include "services/importer/PictureFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {

// Means are floats, of 32 bit integers and doubles doubles.
ORVDataTypes projectedType(PageProjection::Kind kind, ORVDataTypes type)
{
    if (kind != PageProjection::Kind::Mean) {
        return type;
    }
    return type == ORVTYPE_INT || type == ORVTYPE_DOUBLE ? ORVTYPE_DOUBLE : ORVTYPE_FLOAT;
}

} // namespace

bool ImageStack::isTiffFile(const QString& strPath)
{
    QFile file(strPath);
    QString reason;
    if (!orv::openInput(file, &reason)) {
        return false;
    }
    const QByteArray magic = file.read(4);
    return magic == QByteArray("II*\0", 4) || magic == QByteArray("MM\0*", 4) || magic == QByteArray("II+\0", 4) ||
           magic == QByteArray("MM\0+", 4);
}

bool ImageStack::open(const QString& strSource, const ImagesTable& table, QString* pError,
                      const CsvCube::Progress& progress, bool bFollow)
{
    *this = ImageStack();
    m_progress = progress;
    m_bFollow = bFollow;
    const QFileInfo source(strSource);
    if (!source.exists()) {
        *pError = QStringLiteral("%1: there is no such file or folder").arg(strSource);
        return false;
    }
    // What is wrong in a cube that all rows speak of is no matter of a row.
    if (source.isFile() && !isTiffFile(strSource) && CsvCube::isCsv(strSource) && !csvCube(strSource, pError)) {
        return false;
    }
    QHash<QString, int> lineOf;
    for (const ImageRow& row : table.rows()) {
        Image image;
        QString reason;
        long width = 0;
        long height = 0;
        if (!locate(strSource, source.isDir(), row, image, &reason) || !measure(image, &width, &height, &reason)) {
            *pError = QStringLiteral("%1: %2").arg(table.place(row), reason);
            return false;
        }
        const QString identity =
            QStringLiteral("%1 %2|%3|")
                .arg(row.projection.kindText(), PageProjection::fieldText(image.page, row.projection))
                .arg(image.band) +
            QFileInfo(image.path).canonicalFilePath();
        if (lineOf.contains(identity)) {
            *pError = QStringLiteral("%1: %2 is the image of line %3 again")
                          .arg(table.place(row), image.name, QString::number(lineOf.value(identity)));
            return false;
        }
        lineOf.insert(identity, row.line);
        constexpr long most = 1 << 30; // beyond every image that can be imported
        if (width > most || height > most) {
            *pError = QStringLiteral("%1: %2: the image of %3 x %4 pixels is too large")
                          .arg(table.place(row), image.name, QString::number(width), QString::number(height));
            return false;
        }
        image.size = QSize(static_cast<int>(width), static_cast<int>(height));
        m_images.append(image);
    }
    m_cubes.clear();
    m_csvCubes.clear();
    m_progress = {};
    warnOf(m_mapped, QStringLiteral("a colour map: the stored values are taken, not the colours"), m_warnings);
    warnOf(m_sampled, QStringLiteral("several samples a pixel and no band in the table: the first is taken"),
           m_warnings);
    return true;
}

QStringList ImageStack::colourWarnings() const
{
    QStringList warnings;
    for (auto it = m_coloured.cbegin(); it != m_coloured.cend(); ++it) {
        warnOf(it.value(), it.key(), warnings);
    }
    return warnings;
}

void ImageStack::warnOf(const QStringList& names, const QString& strWhat, QStringList& warnings)
{
    if (names.size() == 1) {
        warnings.append(QStringLiteral("%1 has %2").arg(names.first(), strWhat));
    } else if (names.size() > 1) {
        warnings.append(
            QStringLiteral("%1 and %2 more have %3").arg(names.first(), QString::number(names.size() - 1), strWhat));
    }
}

bool ImageStack::locate(const QString& strSource, bool bFolder, const ImageRow& row, Image& image, QString* pReason)
{
    if (bFolder && row.file.isEmpty()) {
        *pReason = QStringLiteral("the row names no file, and %1 is a folder").arg(strSource);
        return false;
    }
    const QString sourceName = QFileInfo(strSource).fileName();
    if (!bFolder && !row.file.isEmpty() && QFileInfo(row.file).fileName() != sourceName) {
        *pReason = QStringLiteral("the row names the file %1, but the stack is %2").arg(row.file, sourceName);
        return false;
    }
    image.path = bFolder ? QDir(strSource).filePath(row.file) : strSource;
    image.name = bFolder ? row.file : sourceName;
    if (!QFileInfo(image.path).isFile()) {
        *pReason = QStringLiteral("%1: there is no such file").arg(image.path);
        return false;
    }
    const bool bTiff = isTiffFile(image.path);
    if (!bTiff && CsvCube::isCsv(image.path)) {
        return openCsv(row, image, pReason);
    }
    if (!bTiff && EnviCube::isEnvi(image.path)) {
        return openCube(row, image, pReason);
    }
    image.picture = !bTiff && isPictureName(image.path);
    if (image.picture && row.page) {
        *pReason = QStringLiteral("%1: a picture has no pages").arg(image.path);
        return false;
    }
    image.page = row.page.value_or(1) - 1;
    image.band = row.band.value_or(0) - 1;
    image.projection = row.projection;
    if (row.page) {
        image.name += QLatin1Char(' ') + PageProjection::placeText(row.page, row.projection);
    }
    if (row.band) {
        image.name += QStringLiteral(" band %1").arg(*row.band);
    }
    return true;
}

bool ImageStack::openCube(const ImageRow& row, Image& image, QString* pReason)
{
    if (row.page) {
        *pReason = QStringLiteral("%1: an ENVI cube has bands, not pages").arg(image.path);
        return false;
    }
    QSharedPointer<EnviCube>& cube = m_cubes[image.path];
    if (!cube) {
        cube = QSharedPointer<EnviCube>::create();
        if (!cube->open(image.path, pReason, m_bFollow)) {
            return false;
        }
    }
    image.cube = cube;
    image.path = cube->dataPath(); // header and data file are one image
    image.band = row.band.value_or(1) - 1;
    image.name += QStringLiteral(" band %1").arg(image.band + 1);
    if (image.band >= cube->header().bands) {
        *pReason = QStringLiteral("%1: there is no band %2 (the cube has %3)")
                       .arg(image.path, QString::number(image.band + 1), QString::number(cube->header().bands));
        return false;
    }
    return true;
}

bool ImageStack::openCsv(const ImageRow& row, Image& image, QString* pReason)
{
    if (row.page) {
        *pReason = QStringLiteral("%1: a CSV cube has bands, not pages").arg(image.path);
        return false;
    }
    const QSharedPointer<CsvCube> cube = csvCube(image.path, pReason);
    if (!cube) {
        return false;
    }
    image.csv = cube;
    image.band = row.band.value_or(1) - 1;
    image.name += QStringLiteral(" band %1").arg(image.band + 1);
    if (image.band >= cube->bands()) {
        *pReason = QStringLiteral("%1: there is no band %2 (the cube has %3)")
                       .arg(image.path, QString::number(image.band + 1), QString::number(cube->bands()));
        return false;
    }
    return true;
}

// The cube of that file, read at the first call; null with a reason.
QSharedPointer<CsvCube> ImageStack::csvCube(const QString& strPath, QString* pReason)
{
    QSharedPointer<CsvCube> cube = m_csvCubes.value(strPath);
    if (!cube) {
        cube = QSharedPointer<CsvCube>::create();
        if (!cube->open(strPath, pReason, m_progress)) {
            return {};
        }
        m_csvCubes.insert(strPath, cube);
    }
    return cube;
}

void ImageStack::noteMemory(ORVDataTypes type, qint64 lReadBytes)
{
    m_nPixelBytes = std::max(m_nPixelBytes, static_cast<int>(CILImageBase::bytesPerPixel(type)));
    m_lReadBytes = std::max(m_lReadBytes, lReadBytes);
}

bool ImageStack::measure(Image& image, long* pWidth, long* pHeight, QString* pReason)
{
    if (image.cube) {
        *pWidth = image.cube->header().width;
        *pHeight = image.cube->header().height;
        const EnviHeader& header = image.cube->header();
        const auto pixel = static_cast<qint64>(CILImageBase::bytesPerPixel(header.imageType()));
        const qint64 line = static_cast<qint64>(header.width) * header.bytesPerPixel() * header.bands;
        const bool bScaled = header.scale < 1.0 || header.scale > 1.0;
        noteMemory(bScaled ? ORVTYPE_DOUBLE : header.imageType(), pixel * header.width * header.height + line);
        return true;
    }
    if (image.csv) {
        *pWidth = image.csv->width();
        *pHeight = image.csv->height();
        noteMemory(ORVTYPE_DOUBLE, static_cast<qint64>(sizeof(double)) * *pWidth * *pHeight);
        return true;
    }
    if (image.picture) {
        return measurePicture(image, pWidth, pHeight, pReason);
    }
    TiffInfo info;
    if (!m_pages->readHeader(image.path, image.page, &info, pReason)) {
        return false;
    }
    if (image.band >= info.samplesPerPixel) {
        *pReason = QStringLiteral("%1: there is no band %2 (a pixel has %3)")
                       .arg(image.path, QString::number(image.band + 1), QString::number(info.samplesPerPixel));
        return false;
    }
    if (image.band < 0 && info.isColour && info.samplesPerPixel == 1 && info.bitsPerSample >= 8) {
        // Microscopes save what they measured with a map of colours for the screen.
        m_mapped.append(image.name);
        image.band = 0;
    } else if (image.band < 0 && info.isColour) {
        image.coloured = true;
    } else if (image.band < 0 && info.samplesPerPixel > 1) {
        m_sampled.append(image.name);
    }
    if (!image.projection.isNone()) {
        *pWidth = info.width;
        *pHeight = info.height;
        return measureProjection(image, info, pReason);
    }
    if (info.type != ORVTYPE_NONE) { // else reading refuses it
        constexpr qint64 planes = 3;
        noteMemory(info.type, tiffMemory(info) * (image.coloured ? planes : 1));
    }
    *pWidth = info.width;
    *pHeight = info.height;
    return true;
}

bool ImageStack::measureProjection(const Image& image, const TiffInfo& first, QString* pReason)
{
    if (image.coloured) {
        *pReason = QStringLiteral("%1: pages in colours are not projected; a band takes one of them").arg(image.path);
        return false;
    }
    for (const int page : image.projection.pages) {
        TiffInfo info;
        if (!m_pages->readHeader(image.path, page - 1, &info, pReason)) {
            return false;
        }
        if (info.width != first.width || info.height != first.height || info.type != first.type ||
            info.samplesPerPixel != first.samplesPerPixel) {
            *pReason = QStringLiteral("%1: page %2 has another size or other pixels than page %3")
                           .arg(image.path, QString::number(page), QString::number(image.page + 1));
            return false;
        }
    }
    if (first.type != ORVTYPE_NONE) { // else reading refuses it
        // The image so far beside what is decoded of a page; of a mean also the sums.
        const qint64 sums = image.projection.kind == PageProjection::Kind::Mean
                                ? static_cast<qint64>(sizeof(double)) * first.width * first.height
                                : 0;
        noteMemory(projectedType(image.projection.kind, first.type), tiffMemory(first) + sums);
    }
    return true;
}

bool ImageStack::measurePicture(Image& image, long* pWidth, long* pHeight, QString* pReason)
{
    PictureHeader header;
    if (!readPictureHeader(image.path, &header, pReason)) {
        return false;
    }
    constexpr int planes = 3;
    if (image.band >= planes) {
        *pReason = QStringLiteral("%1: there is no band %2 (a pixel has %3)")
                       .arg(image.path, QString::number(image.band + 1), QString::number(planes));
        return false;
    }
    image.coloured = image.band < 0;
    *pWidth = header.size.width();
    *pHeight = header.size.height();
    // As Qt reads it, in colours, and the planes.
    const ORVDataTypes type = header.isDeep ? ORVTYPE_USHORT : ORVTYPE_BYTE;
    const auto sample = static_cast<qint64>(CILImageBase::bytesPerPixel(type));
    constexpr qint64 samples = 4 + 4 + planes;
    noteMemory(type, samples * sample * *pWidth * *pHeight);
    return true;
}

std::optional<double> ImageStack::wavelength(int i) const
{
    const Image& image = m_images.at(i);
    if (!image.cube || image.cube->header().wavelengths.isEmpty()) {
        return std::nullopt;
    }
    return image.cube->header().wavelengths.at(image.band);
}

std::optional<double> ImageStack::ignoreValue(int i) const
{
    const Image& image = m_images.at(i);
    return image.cube ? image.cube->header().ignoreValue : std::nullopt;
}

double ImageStack::scale(int i) const
{
    const Image& image = m_images.at(i);
    return image.cube ? image.cube->header().scale : 1.0;
}

bool ImageStack::readBand(int i, CILImage& out, QString* pError) const
{
    const Image& image = m_images.at(i);
    if (image.cube) {
        return image.cube->readBand(image.band, out, pError);
    }
    if (image.csv) {
        return image.csv->readBand(image.band, out, pError);
    }
    if (image.picture || image.coloured) {
        return readColours(image, out, pError);
    }
    if (!image.projection.isNone()) {
        return readProjection(image, out, pError);
    }
    TiffReadOptions options;
    options.band = image.band;
    return m_pages->read(image.path, image.page, options, out, pError);
}

// Page by page, of which no more than a strip or a row of tiles is there at a time.
bool ImageStack::readProjection(const Image& image, CILImage& out, QString* pError) const
{
    const auto failWithoutMemory = [&] {
        out.clear();
        *pError = QStringLiteral("%1: there is no memory for the image").arg(image.name);
        return false;
    };
    const bool bMean = image.projection.kind == PageProjection::Kind::Mean;
    TiffReadOptions options;
    options.band = image.band;
    options.combine = bMean ? TiffReadOptions::Combine::Sum : TiffReadOptions::Combine::Replace;
    CILImage sums;
    CILImage& made = bMean ? sums : out;
    if (bMean && sums.InitWithType(ORVTYPE_DOUBLE, image.size.width(), image.size.height()) != EIL_SUCCESS) {
        return failWithoutMemory();
    }
    for (const int page : image.projection.pages) {
        if (!m_pages->read(image.path, page - 1, options, made, pError)) {
            out.clear();
            return false;
        }
        if (!bMean) {
            options.combine = TiffReadOptions::Combine::Larger;
        }
    }
    if (bMean) {
        TiffInfo info;
        if (!m_pages->readHeader(image.path, image.page, &info, pError)) {
            out.clear();
            return false;
        }
        const ORVDataTypes type = projectedType(image.projection.kind, info.type);
        if (out.InitWithType(type, image.size.width(), image.size.height()) != EIL_SUCCESS) {
            return failWithoutMemory();
        }
        const auto count = static_cast<double>(image.projection.pages.size());
        for (std::size_t i = 0; i < out.pixelCount(); ++i) {
            out.setValue(i, sums.value(i) / count);
        }
    }
    out.RefreshImageStats();
    return true;
}

bool ImageStack::readColours(const Image& image, CILImage& out, QString* pError) const
{
    out.clear();
    ColourPlanes colours;
    if (!(image.picture ? ColourPlanes::readPicture(image.path, colours, pError)
                        : ColourPlanes::readTiffPage(*m_pages, image.path, image.page, colours, pError))) {
        return false;
    }
    const ColourPlanes::Kind kind = image.coloured ? colours.kind() : ColourPlanes::Kind::Grey;
    if (kind == ColourPlanes::Kind::Colours) {
        m_coloured[QStringLiteral("colours: their grey values are taken")].append(image.name);
        if (!image.picture) {
            return m_pages->read(image.path, image.page, TiffReadOptions(), out, pError);
        }
        out = colours.luma();
        return true;
    }
    if (kind == ColourPlanes::Kind::OneHue) {
        const QString what =
            QStringLiteral("one hue: its %1 values are taken").arg(ColourPlanes::name(colours.strongest()));
        m_coloured[what].append(image.name);
    }
    const int plane = image.coloured ? colours.strongest() : image.band;
    out = std::move(colours.planes[static_cast<std::size_t>(plane)]);
    return true;
}
