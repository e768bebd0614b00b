// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ImageFinder.h"

#include "platform/orvimage/TiffIo.h"
#include "platform/orvimage/TiffPageReader.h"
#include "platform/orvimage/TiffTexts.h"
#include "platform/orvutils/NumberText.h"
#include "services/importer/ColourPlanes.h"
#include "services/importer/CsvCube.h"
#include "services/importer/EnviCube.h"
#include "services/importer/ImageJMetadata.h"
#include "services/importer/ImageStack.h"
#include "services/importer/NameFigures.h"
#include "services/importer/OmeMetadata.h"
#include "services/importer/PictureFile.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace {

// Descriptions longer than this are texts, not names.
constexpr int maxNameLength = 200;
// A channel's name stands in legends and tables.
constexpr int maxChannelLength = 80;

bool isTiffName(const QString& name)
{
    return name.endsWith(QLatin1String(".tif"), Qt::CaseInsensitive) ||
           name.endsWith(QLatin1String(".tiff"), Qt::CaseInsensitive);
}

// A file's name without what tells its format.
QString stemOf(const QString& fileName)
{
    static const QRegularExpression suffix(
        QStringLiteral(R"((\.ome)?\.(tiff?|hdr|img|dat|raw|bsq|bil|bip|csv|png|jpe?g)$)"),
        QRegularExpression::CaseInsensitiveOption);
    QString stem = fileName;
    return stem.remove(suffix).remove(suffix); // "cube.dat.hdr" has two
}

// The first of two names that says something, on one line and no longer than a name.
QString channelName(const QString& first, const QString& second)
{
    const QString name = first.simplified();
    return (name.isEmpty() ? second.simplified() : name).left(maxChannelLength).trimmed();
}

// What names tell of the plane in that dimension, as "GFP z2" and "z:2/5": of all of them it is not true.
void forgetPlace(QStringList& names, char dimension)
{
    const QRegularExpression place(
        QStringLiteral("(^|\\s)%1(\\d+$|:\\d+/\\d+(\\s*-\\s*)?)").arg(QLatin1Char(dimension)));
    names.replaceInStrings(place, QStringLiteral(" "));
}

// Whether something better than this name tells what the image is.
bool isDecided(const FoundImage& image)
{
    return std::any_of(image.figures.cbegin(), image.figures.cend(), [](const Figure& figure) {
        return figure.kind == Figure::Emission || figure.kind == Figure::Time;
    });
}

} // namespace

bool ImageFinder::find(const QString& strSource, const Progress& progress, QString* pError, bool bFollow,
                       const PlaneChoice& planes)
{
    *this = ImageFinder();
    m_bFollow = bFollow;
    m_choice = planes;
    const QFileInfo source(strSource);
    if (!source.exists()) {
        *pError = QStringLiteral("%1: there is no such file or folder").arg(strSource);
        return false;
    }
    return (source.isDir() ? findInFolder(strSource, progress, pError) : addFile(strSource, pError)) &&
           splitLoneColours(strSource);
}

// The files of a folder that hold images, and those of which nothing is known.
bool ImageFinder::listFolder(const QString& strFolder, QStringList* pNames, QStringList* pOthers, QString* pError)
{
    const QDir folder(strFolder);
    QStringList pictures;
    QSet<QString> used; // the data files of cubes too
    const QStringList entries = folder.entryList(QDir::Files, QDir::Name);
    for (const QString& name : entries) {
        if (name.endsWith(QLatin1String(".hdr"), Qt::CaseInsensitive)) {
            EnviCube cube;
            if (!cube.open(folder.filePath(name), pError, m_bFollow)) {
                return false;
            }
            used.insert(name);
            used.insert(QFileInfo(cube.dataPath()).fileName());
            pNames->append(name);
        } else if (isTiffName(name)) {
            used.insert(name);
            pNames->append(name);
        } else if (isPictureName(name)) {
            pictures.append(name);
        }
    }
    // Beside measured images pictures are previews.
    if (pNames->isEmpty()) {
        *pNames = pictures;
        used += QSet<QString>(pictures.cbegin(), pictures.cend());
    }
    for (const QString& name : entries) {
        if (!used.contains(name)) {
            pOthers->append(name);
        }
    }
    std::sort(pNames->begin(), pNames->end(), orv::numberAwareLess);
    return true;
}

// The images of folders below, where it is clear which are meant.
bool ImageFinder::lookBelow(const QString& strFolder, QStringList* pNames, QString* pError)
{
    const QDir folder(strFolder);
    QStringList holding;
    bool bOneEach = true;
    QStringList below = folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Readable, QDir::Name);
    std::sort(below.begin(), below.end(), orv::numberAwareLess);
    for (const QString& name : qAsConst(below)) {
        QStringList images;
        QStringList others;
        if (!listFolder(folder.filePath(name), &images, &others, pError)) {
            return false;
        }
        if (images.isEmpty()) {
            continue;
        }
        holding.append(name);
        bOneEach = bOneEach && images.size() == 1;
        for (const QString& image : qAsConst(images)) {
            pNames->append(name + QLatin1Char('/') + image);
        }
    }
    if (holding.isEmpty()) {
        *pError = QStringLiteral("%1: there is no TIFF file, no PNG or JPEG picture and no ENVI header in the folder")
                      .arg(strFolder);
        return false;
    }
    if (holding.size() > 1 && !bOneEach) {
        *pError = QStringLiteral("%1: the images lie in the folders %2; import one of them")
                      .arg(strFolder, holding.join(QStringLiteral(", ")));
        return false;
    }
    m_warnings.append(holding.size() == 1
                          ? QStringLiteral("the images are those of the folder %1").arg(holding.first())
                          : QStringLiteral("the images are those of %1 folders, one each").arg(holding.size()));
    m_bFoldersName = holding.size() > 1;
    return true;
}

bool ImageFinder::findInFolder(const QString& strFolder, const Progress& progress, QString* pError)
{
    const QDir folder(strFolder);
    if (!folder.isReadable()) {
        *pError = QStringLiteral("%1: the folder cannot be read").arg(strFolder);
        return false;
    }
    QStringList names;
    QStringList others;
    if (!listFolder(strFolder, &names, &others, pError) || (names.isEmpty() && !lookBelow(strFolder, &names, pError))) {
        return false;
    }
    const auto isTable = [](const QString& name) {
        return name.compare(QLatin1String("images.csv"), Qt::CaseInsensitive) == 0;
    };
    for (const QString& name : qAsConst(others)) {
        if (isTable(name)) {
            m_warnings.append(
                QStringLiteral("%1 lies in the folder and is not used; --images takes such a table").arg(name));
        }
    }
    others.erase(std::remove_if(others.begin(), others.end(), isTable), others.end());
    if (!others.isEmpty()) {
        m_warnings.append(others.size() == 1 ? QStringLiteral("%1 is passed over").arg(others.first())
                                             : QStringLiteral("%1 and %2 more files are passed over")
                                                   .arg(others.first(), QString::number(others.size() - 1)));
    }
    for (int i = 0; i < names.size(); ++i) {
        if (progress && !progress(i, names.size(), QStringLiteral("Looking at %1").arg(names.at(i)))) {
            m_bAborted = true;
            *pError = QStringLiteral("the import was aborted");
            return false;
        }
        const int first = m_images.size();
        if (!addFile(folder.filePath(names.at(i)), pError)) {
            return false;
        }
        const QString below = QFileInfo(names.at(i)).path();
        for (int k = first; k < m_images.size() && below != QLatin1String("."); ++k) {
            FoundImage& image = m_images[k];
            image.file = below + QLatin1Char('/') + image.file;
            image.name = below + QLatin1Char('/') + image.name;
            image.channel = m_bFoldersName ? below : image.channel;
        }
    }
    return true;
}

// A photograph of several hues is an image for each of its colours, where there is nothing else to unmix.
bool ImageFinder::splitLoneColours(const QString& strSource)
{
    if (m_images.size() != 1 || m_images.first().band || isDecided(m_images.first())) {
        return true;
    }
    const FoundImage whole = m_images.first();
    const QFileInfo source(strSource);
    const QString path = source.isDir() ? QDir(strSource).filePath(whole.file) : strSource;
    ColourPlanes colours;
    QString ignored; // whoever reads the image tells what is wrong with it
    bool bRead = false;
    if (ImageStack::isTiffFile(path)) {
        TiffPageReader pages;
        TiffInfo info;
        bRead = pages.readHeader(path, 0, &info, &ignored) && info.isColour && info.samplesPerPixel >= 3 &&
                info.type != ORVTYPE_NONE && ColourPlanes::readTiffPage(pages, path, 0, colours, &ignored);
    } else if (isPictureName(path)) {
        bRead = ColourPlanes::readPicture(path, colours, &ignored);
    }
    if (!bRead || colours.kind() != ColourPlanes::Kind::Colours) {
        return true;
    }
    m_images.clear();
    for (int plane = 0; plane < 3; ++plane) {
        FoundImage image = whole;
        image.band = plane + 1;
        image.name += QStringLiteral(" band %1").arg(plane + 1);
        image.channel = ColourPlanes::name(plane);
        image.figures.clear();
        m_images.append(image);
    }
    m_warnings.append(
        QStringLiteral("%1 is in colours and alone: its red, green and blue are taken for channels").arg(whole.name));
    return true;
}

bool ImageFinder::addPicture(const QString& strPath, QString* pError)
{
    PictureHeader header;
    if (!readPictureHeader(strPath, &header, pError)) {
        return false;
    }
    FoundImage image;
    image.file = QFileInfo(strPath).fileName();
    image.name = image.file;
    image.channel = stemOf(image.file);
    addNamed(image, image.channel, QStringLiteral("name"), true);
    m_images.append(image);
    return true;
}

bool ImageFinder::addFile(const QString& strPath, QString* pError)
{
    if (ImageStack::isTiffFile(strPath)) {
        return addTiff(strPath, pError);
    }
    if (CsvCube::isCsv(strPath)) {
        return addCsv(strPath, pError);
    }
    if (EnviCube::isEnvi(strPath)) {
        return addEnvi(strPath, pError);
    }
    return isPictureName(strPath) ? addPicture(strPath, pError) : addTiff(strPath, pError);
}

// Figures of a text, and its doubts with the image's name. What numbers the bands of a file says nothing of them.
void ImageFinder::addNamed(FoundImage& image, const QString& strText, const QString& strWhat, bool bFrames)
{
    const NameFigures read = NameFigures::read(strText, strWhat);
    const bool bDecided = isDecided(image);
    for (const Figure& figure : read.figures) {
        if (bFrames || figure.kind != Figure::Frame) {
            image.figures.append(figure);
        }
    }
    for (const QString& doubt : read.doubts) {
        if (!bDecided) {
            m_doubts.append(QStringLiteral("%1: %2").arg(image.name, doubt));
        }
    }
}

// What OME or ImageJ metadata tell of a file's pages, with the labels of its images where there are none.
ImageFinder::PageFacts ImageFinder::factsOfPages(const TiffTexts& texts, const QString& strFile)
{
    const int pages = texts.pages.size();
    const QString description = texts.pages.first().description;
    PageFacts facts;
    facts.figures.resize(pages);
    facts.facts.resize(pages);
    facts.planes.pages.resize(pages);
    facts.channels = texts.labels;
    QStringList doubts;
    if (OmeMetadata::isOme(description)) {
        facts.described = true;
        OmeMetadata ome;
        QString reason;
        if (!ome.parse(description, strFile, pages, &reason)) {
            m_warnings.append(QStringLiteral("%1: %2; the metadata are not used").arg(strFile, reason));
            return facts;
        }
        facts.figures = ome.pages();
        facts.facts = ome.facts();
        facts.channels = ome.channels();
        facts.planes = ome.planes();
        facts.framed = ome.hasTimes();
        doubts = ome.doubts();
    } else if (ImageJMetadata::isImageJ(description)) {
        facts.described = true;
        ImageJMetadata imageJ;
        imageJ.parse(description, texts.labels, pages);
        facts.figures = imageJ.pages();
        facts.planes = imageJ.planes();
        facts.framed = imageJ.hasFrames();
        doubts = imageJ.doubts();
    }
    for (const QString& doubt : qAsConst(doubts)) {
        m_doubts.append(QStringLiteral("%1: %2").arg(strFile, doubt));
    }
    if (m_choice.projectsDepth) {
        forgetPlace(facts.channels, 'z');
    }
    if (m_choice.projectsTimes) {
        forgetPlace(facts.channels, 't');
    }
    if (m_choice.t > 0 || m_choice.projectsTimes) {
        // The images have one time, which does not tell them apart.
        const auto isTime = [](const Figure& figure) {
            return figure.kind == Figure::Time || figure.kind == Figure::Frame;
        };
        facts.framed = false;
        for (QVector<Figure>& figures : facts.figures) {
            figures.erase(std::remove_if(figures.begin(), figures.end(), isTime), figures.end());
        }
    }
    return facts;
}

bool ImageFinder::addTiff(const QString& strPath, QString* pError)
{
    TiffTexts texts;
    TiffInfo info;
    if (!readTiffTexts(strPath, &texts, pError) || !readTiffHeader(strPath, 0, &info, pError)) {
        return false;
    }
    const QString file = QFileInfo(strPath).fileName();
    const int pages = texts.pages.size();
    const PageFacts facts = factsOfPages(texts, file);
    const PlanePosition& sizes = facts.planes.sizes;
    m_sizes = {std::max(m_sizes.c, sizes.c), std::max(m_sizes.z, sizes.z), std::max(m_sizes.t, sizes.t)};
    const QString against = m_choice.reasonAgainst(sizes);
    if (!against.isEmpty()) {
        *pError = QStringLiteral("%1: %2").arg(strPath, against);
        return false;
    }
    // Samples that are no colours are images of their own.
    const int samples = info.isColour ? 1 : info.samplesPerPixel;
    const QVector<QVector<int>> images = m_choice.images(facts.planes);
    if (pages > 1 && images.size() == 1 && sizes.c * sizes.z * sizes.t == 1) {
        m_warnings.append(
            QStringLiteral("%1 tells no dimensions: all of its %2 pages are taken for planes of one image")
                .arg(file, QString::number(pages)));
    }
    for (const QVector<int>& own : images) {
        for (int sample = 0; sample < samples; ++sample) {
            FoundImage image = imageOfPages(file, own, pages);
            if (samples > 1) {
                image.band = sample + 1;
                image.name += QStringLiteral(" band %1").arg(sample + 1);
            }
            const bool bAlone = (pages == 1 || (images.size() == 1 && !image.projection.isNone())) && samples == 1;
            addPageNames(image, texts, own.first(), facts, bAlone);
            m_images.append(image);
        }
    }
    return true;
}

// The place of an image in a file of so many pages.
FoundImage ImageFinder::imageOfPages(const QString& strFile, const QVector<int>& pages, int nPages) const
{
    FoundImage image;
    image.file = strFile;
    image.name = strFile;
    if (nPages == 1) {
        return image;
    }
    image.page = pages.first() + 1;
    if (pages.size() > 1) {
        image.projection.kind = m_choice.projection;
        for (const int page : pages) {
            image.projection.pages.append(page + 1);
        }
    }
    image.name += QLatin1Char(' ') + PageProjection::placeText(image.page, image.projection);
    return image;
}

// What metadata and texts of a page and, of an image that is alone in its file, the file's name tell.
void ImageFinder::addPageNames(FoundImage& image, const TiffTexts& texts, int nPage, const PageFacts& facts,
                               bool bAlone)
{
    const TiffTexts::Page& page = texts.pages.at(nPage);
    image.figures = facts.figures.at(nPage);
    image.facts = facts.facts.at(nPage);
    image.framed = facts.framed;
    image.channel = channelName(facts.channels.value(nPage), page.pageName);
    if (image.channel.isEmpty() && bAlone) {
        image.channel = stemOf(image.file);
    }
    addNamed(image, page.pageName, QStringLiteral("page name"), false);
    if (!(nPage == 0 && facts.described) && page.description.size() <= maxNameLength) {
        addNamed(image, page.description, QStringLiteral("description"), false);
    }
    if (bAlone) {
        addNamed(image, stemOf(image.file), QStringLiteral("name"), true);
    } else if (image.figures.isEmpty()) {
        image.figures.append({Figure::Frame, static_cast<double>(nPage), QStringLiteral("page")});
    }
}

bool ImageFinder::addEnvi(const QString& strPath, QString* pError)
{
    EnviCube cube;
    if (!cube.open(strPath, pError, m_bFollow)) {
        return false;
    }
    const EnviHeader& header = cube.header();
    QStringList bad;
    for (int band = 0; band < header.bands; ++band) {
        if (header.badBands.value(band)) {
            bad.append(QString::number(band + 1));
            continue;
        }
        FoundImage image;
        image.file = QFileInfo(strPath).fileName();
        image.name = image.file;
        if (header.bands > 1) {
            image.band = band + 1;
            image.name += QStringLiteral(" band %1").arg(band + 1);
        }
        image.facts = header.facts.value(band);
        image.channel = channelName(header.bandNames.value(band), QString());
        if (!header.wavelengths.isEmpty()) {
            image.figures.append({Figure::Emission, header.wavelengths.at(band), QStringLiteral("ENVI wavelength")});
        }
        if (!header.wavenumbers.isEmpty()) {
            image.figures.append({Figure::Wavenumber, header.wavenumbers.at(band), QStringLiteral("ENVI wavenumber")});
        }
        if (header.bands == 1 && header.wavelengths.isEmpty()) {
            addNamed(image, stemOf(image.file), QStringLiteral("name"), true);
            image.channel = image.channel.isEmpty() ? stemOf(image.file) : image.channel;
        }
        addNamed(image, header.bandNames.value(band), QStringLiteral("ENVI band name"), false);
        if (image.figures.isEmpty() && header.bands > 1) {
            image.figures.append({Figure::Frame, static_cast<double>(band), QStringLiteral("band")});
        }
        m_images.append(image);
    }
    if (!bad.isEmpty()) {
        m_warnings.append(QStringLiteral("%1: bands that the header calls bad (bbl) are left out: %2")
                              .arg(QFileInfo(strPath).fileName(), bad.join(QStringLiteral(", "))));
    }
    return true;
}

bool ImageFinder::addCsv(const QString& strPath, QString* pError)
{
    QStringList names; // the pixels are read by the import
    if (!CsvCube::readNames(strPath, &names, pError)) {
        return false;
    }
    for (int band = 0; band < names.size(); ++band) {
        FoundImage image;
        image.file = QFileInfo(strPath).fileName();
        image.band = band + 1;
        image.name = QStringLiteral("%1 band %2").arg(image.file, QString::number(band + 1));
        image.channel = channelName(names.at(band), QString());
        addNamed(image, names.at(band), QStringLiteral("column"), false);
        m_images.append(image);
    }
    return true;
}
