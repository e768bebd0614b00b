// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/transfer/CubeFiles.h"

#include "files/AtomicFile.h"
#include "files/TemporaryTarget.h"
#include "host/CILImage.h"
#include "platform/orvimage/TiffStackWriter.h"
#include "platform/orvutils/NumberText.h"
#include "services/basis/Failure.h"
#include "services/basis/TextTable.h"
#include "services/basis/UnitNames.h"
#include "services/basis/omeText.h"
#include "services/importer/OmeMetadata.h"
#include "services/transfer/ExportedCube.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <QXmlStreamWriter>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

namespace {

constexpr int bufferBytes = 1024 * 1024;
constexpr std::size_t digestedBytes = 1 << 24; // at once
// Floats that are turned from images to rows at a time.
constexpr qint64 blockBytes = 8 * 1024 * 1024;
const QString unknown = QStringLiteral("-");

QString unitSentence(const ExportedCube& cube)
{
    return QStringLiteral("%1 (%2)").arg(UnitNames::text(cube.unit()), UnitNames::quantity(cube.unit()));
}

void writeChannel(QXmlStreamWriter& xml, int nChannel, const QString& strName, const ExportedCube::Image& image)
{
    xml.writeStartElement(QStringLiteral("Channel"));
    xml.writeAttribute(QStringLiteral("ID"), QStringLiteral("Channel:0:%1").arg(nChannel));
    xml.writeAttribute(QStringLiteral("Name"), strName);
    xml.writeAttribute(QStringLiteral("SamplesPerPixel"), QStringLiteral("1"));
    const auto wavelength = [&xml](const QString& strKey, const std::optional<double>& value) {
        if (!value) {
            return;
        }
        xml.writeAttribute(strKey, orv::shortestText(*value));
        xml.writeAttribute(strKey + QStringLiteral("Unit"), QStringLiteral("nm"));
    };
    wavelength(QStringLiteral("ExcitationWavelength"), image.excitation);
    wavelength(QStringLiteral("EmissionWavelength"), image.numbered ? image.wavelength : image.emission);
    xml.writeEndElement();
}

void writePlane(QXmlStreamWriter& xml, int nChannel, int nTime, const ExportedCube::Image& image)
{
    xml.writeStartElement(QStringLiteral("Plane"));
    xml.writeAttribute(QStringLiteral("TheZ"), QStringLiteral("0"));
    xml.writeAttribute(QStringLiteral("TheT"), QString::number(nTime));
    xml.writeAttribute(QStringLiteral("TheC"), QString::number(nChannel));
    const auto seconds = [&xml](const QString& strKey, const std::optional<double>& value) {
        if (!value) {
            return;
        }
        xml.writeAttribute(strKey, orv::shortestText(*value));
        xml.writeAttribute(strKey + QStringLiteral("Unit"), QStringLiteral("s"));
    };
    seconds(QStringLiteral("DeltaT"), image.time);
    seconds(QStringLiteral("ExposureTime"), image.exposure);
    xml.writeEndElement();
}

void writePixels(QXmlStreamWriter& xml, const ExportedCube& cube)
{
    const int channels = cube.isTemporal() ? 1 : cube.count();
    const int times = cube.isTemporal() ? cube.count() : 1;
    xml.writeStartElement(QStringLiteral("Pixels"));
    const auto attribute = [&xml](const char* pKey, const QString& strValue) {
        xml.writeAttribute(QLatin1String(pKey), strValue);
    };
    attribute("ID", QStringLiteral("Pixels:0"));
    attribute("DimensionOrder", QStringLiteral("XYCZT"));
    attribute("Type", QStringLiteral("float"));
    attribute("SizeX", QString::number(cube.width()));
    attribute("SizeY", QString::number(cube.height()));
    attribute("SizeZ", QStringLiteral("1"));
    attribute("SizeC", QString::number(channels));
    attribute("SizeT", QString::number(times));
    if (const auto size = cube.pixelSize()) {
        writeOmePixelSize(xml, *size);
    }
    if (cube.isTemporal()) {
        writeChannel(xml, 0, QStringLiteral("all times"), cube.images().first());
    }
    for (int c = 0; c < channels && !cube.isTemporal(); ++c) {
        writeChannel(xml, c, cube.images().at(c).name, cube.images().at(c));
    }
    for (int i = 0; i < cube.count(); ++i) {
        xml.writeStartElement(QStringLiteral("TiffData"));
        attribute("IFD", QString::number(i));
        attribute("FirstC", QString::number(cube.isTemporal() ? 0 : i));
        attribute("FirstT", QString::number(cube.isTemporal() ? i : 0));
        attribute("FirstZ", QStringLiteral("0"));
        attribute("PlaneCount", QStringLiteral("1"));
        xml.writeEndElement();
    }
    for (int i = 0; i < cube.count(); ++i) {
        writePlane(xml, cube.isTemporal() ? 0 : i, cube.isTemporal() ? i : 0, cube.images().at(i));
    }
    xml.writeEndElement();
}

// What an import cannot tell from wavelengths and times.
QString kindNote(const ExportedCube& cube)
{
    return cube.isTemporal() ? QStringLiteral("temporal") : cube.isNumbered() ? QStringLiteral("channels") : QString();
}

// What OME has no place for.
void writeNotes(QXmlStreamWriter& xml, const ExportedCube& cube)
{
    xml.writeStartElement(QStringLiteral("StructuredAnnotations"));
    xml.writeStartElement(QStringLiteral("MapAnnotation"));
    xml.writeAttribute(QStringLiteral("ID"), QStringLiteral("Annotation:0"));
    xml.writeAttribute(QStringLiteral("Namespace"), QLatin1String(OmeMetadata::kNamespace));
    xml.writeStartElement(QStringLiteral("Value"));
    const auto note = [&xml](const QString& strKey, const QString& strValue) {
        if (strValue.isEmpty()) {
            return;
        }
        xml.writeStartElement(QStringLiteral("M"));
        xml.writeAttribute(QStringLiteral("K"), strKey);
        xml.writeCharacters(strValue);
        xml.writeEndElement();
    };
    note(QStringLiteral("kind"), kindNote(cube));
    note(QStringLiteral("unit"), UnitNames::text(cube.unit()));
    note(QStringLiteral("isotope"), cube.isotope());
    for (int i = 0; i < cube.count(); ++i) {
        const auto& image = cube.images().at(i);
        note(QStringLiteral("start %1").arg(i + 1), image.start);
        note(QStringLiteral("wavenumber %1").arg(i + 1),
             image.wavenumber ? orv::shortestText(*image.wavenumber) : QString());
    }
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndElement();
}

QString omeXml(const ExportedCube& cube, const QString& strName)
{
    return omeText([&](QXmlStreamWriter& xml) {
        xml.writeStartElement(QStringLiteral("Image"));
        xml.writeAttribute(QStringLiteral("ID"), QStringLiteral("Image:0"));
        xml.writeAttribute(QStringLiteral("Name"), strName);
        xml.writeTextElement(QStringLiteral("Description"), unitSentence(cube));
        writePixels(xml, cube);
        writeOmeElement(xml, "AnnotationRef", {{"ID", QStringLiteral("Annotation:0")}});
        xml.writeEndElement();
        writeNotes(xml, cube);
    });
}

// In braces, where neither a brace nor a line end can stand; in a list no comma either.
QString braced(QString text, bool bInList)
{
    text.replace(QLatin1Char('{'), QLatin1Char('('));
    text.replace(QLatin1Char('}'), QLatin1Char(')'));
    return bInList ? text.simplified().replace(QLatin1Char(','), QLatin1Char(' ')) : text.simplified();
}

// A value an image, "-" where it is not known; nothing when it is of none.
QString noteLine(const char* pKey, const QStringList& values)
{
    const bool known = std::any_of(values.cbegin(), values.cend(), [](const QString& text) { return text != unknown; });
    return known ? QStringLiteral("%1 = {%2}\n").arg(QLatin1String(pKey), values.join(QLatin1String(", "))) : QString();
}

QString noteLines(const ExportedCube& cube)
{
    QStringList exposures;
    QStringList starts;
    for (const auto& image : cube.images()) {
        exposures.append(image.exposure ? orv::shortestText(*image.exposure) : unknown);
        starts.append(image.start.isEmpty() ? unknown : image.start);
    }
    QString text = kindNote(cube).isEmpty() ? QString() : QStringLiteral("orvia kind = %1\n").arg(kindNote(cube));
    text += QStringLiteral("orvia unit = %1\n").arg(UnitNames::text(cube.unit()));
    if (cube.pixelSize()) {
        text += QStringLiteral("orvia pixel size micrometres = %1\n").arg(orv::shortestText(*cube.pixelSize()));
    }
    if (!cube.isotope().isEmpty()) {
        text += QStringLiteral("orvia isotope = {%1}\n").arg(braced(cube.isotope(), false));
    }
    return text + noteLine("orvia exposure seconds", exposures) + noteLine("orvia start", starts);
}

QByteArray enviHeaderText(ExportedCube& cube, const QString& strDataFile, const QByteArray& digest)
{
    QStringList names;
    QStringList wavelengths;
    QStringList wavenumbers;
    for (const auto& image : cube.images()) {
        names.append(braced(image.fullName, true));
        const auto emission = image.numbered ? image.wavelength : image.emission;
        if (emission) {
            wavelengths.append(orv::shortestText(*emission));
        }
        if (image.wavenumber) {
            wavenumbers.append(orv::shortestText(*image.wavenumber));
        }
    }
    QString text = QStringLiteral("ENVI\ndescription = {%1, %2}\n").arg(braced(cube.name(), false), unitSentence(cube));
    text +=
        QStringLiteral("samples = %1\nlines = %2\nbands = %3\n").arg(cube.width()).arg(cube.height()).arg(cube.count());
    text += QStringLiteral("header offset = 0\nfile type = ENVI Standard\ndata type = 4\ninterleave = bsq\n"
                           "byte order = 0\ndata file = %1\n")
                .arg(strDataFile);
    text += QStringLiteral("orvia data sha1 = %1\n").arg(QString::fromLatin1(digest.toHex()));
    text += QStringLiteral("band names = {%1}\n").arg(names.join(QLatin1String(", ")));
    text += noteLines(cube);
    wavelengths.removeDuplicates();
    if (wavelengths.size() == cube.count()) {
        text += QStringLiteral("wavelength units = Nanometers\nwavelength = {%1}\n")
                    .arg(wavelengths.join(QLatin1String(", ")));
    } else if (wavenumbers.size() == cube.count()) {
        text += QStringLiteral("wavelength units = Wavenumber\nwavelength = {%1}\n")
                    .arg(wavenumbers.join(QLatin1String(", ")));
    }
    return text.toUtf8();
}

[[noreturn]] void failWriting(const QString& strPath, const QString& strReason)
{
    throw Failure(QStringLiteral("%1: cannot be written: %2").arg(strPath, strReason));
}

// A file written bit by bit beside its target.
class StreamedFile
{
public:
    explicit StreamedFile(const QString& strPath) : m_strPath(strPath), m_target(strPath)
    {
        if (!m_target.isValid()) {
            throw Failure(m_target.error());
        }
        m_file.setFileName(m_target.path());
        if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            failWriting(m_strPath, m_file.errorString());
        }
    }
    void write(const char* pBytes, qint64 nBytes)
    {
        if (m_file.write(pBytes, nBytes) != nBytes) {
            failWriting(m_strPath, m_file.errorString());
        }
    }
    void write(const QByteArray& bytes) { write(bytes.constData(), bytes.size()); }
    // Ends the writing.
    void close()
    {
        if (!m_file.flush() || m_file.error() != QFileDevice::NoError) {
            failWriting(m_strPath, m_file.errorString());
        }
        m_file.close();
    }
    void commit()
    {
        if (m_file.isOpen()) {
            close();
        }
        if (!m_target.commit()) {
            throw Failure(m_target.error());
        }
    }

private:
    QString m_strPath;
    orv::TemporaryTarget m_target;
    QFile m_file;
};

QByteArray csvHeader(const ExportedCube& cube)
{
    QStringList names{QStringLiteral("x"), QStringLiteral("y")};
    for (const auto& image : cube.images()) {
        names.append(image.name);
    }
    return TextTable(names).toCsv().toUtf8();
}

// All images one behind the other in a file without a name, from which parts of each are read: a CSV file has all
// images in a row, and memory need not hold them.
class SpooledImages
{
public:
    // The file lies beside `strTarget`, where room for more than it is needed anyway.
    SpooledImages(ExportedCube& cube, const QString& strTarget)
        : m_strTarget(strTarget), m_images(cube.count()), m_pixels(static_cast<qint64>(cube.width()) * cube.height()),
          m_file(QFileInfo(strTarget).dir().filePath(QStringLiteral(".spum-XXXXXX.cube")))
    {
        if (!m_file.open()) {
            failWriting(m_strTarget, m_file.errorString());
        }
        CILImage image;
        for (int i = 0; i < m_images; ++i) {
            cube.read(i, image);
            const auto bytes = m_pixels * static_cast<qint64>(sizeof(float));
            if (m_file.write(reinterpret_cast<const char*>(image.floats()), bytes) != bytes) {
                failWriting(m_strTarget, m_file.errorString());
            }
        }
        if (!m_file.flush()) {
            failWriting(m_strTarget, m_file.errorString());
        }
    }
    // Pixels `first` to `first` + `count` - 1 of every image, image by image.
    void read(qint64 first, qint64 count, std::vector<float>& floats) const
    {
        constexpr auto size = static_cast<qint64>(sizeof(float));
        floats.resize(static_cast<std::size_t>(count * m_images));
        for (int i = 0; i < m_images; ++i) {
            char* target = reinterpret_cast<char*>(floats.data() + i * count);
            if (!m_file.seek((i * m_pixels + first) * size) || m_file.read(target, count * size) != count * size) {
                failWriting(m_strTarget, m_file.errorString());
            }
        }
    }

private:
    QString m_strTarget;
    int m_images;
    qint64 m_pixels;
    mutable QTemporaryFile m_file;
};

void appendInteger(QByteArray& text, qint64 value)
{
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    text.append(digits.data(), static_cast<int>(end - digits.data()));
}

// A comma and nine significant digits.
void appendValue(QByteArray& text, float value)
{
    std::array<char, 32> digits{','};
    const auto end = std::to_chars(digits.data() + 1, digits.data() + digits.size(), static_cast<double>(value),
                                   std::chars_format::general, 9)
                         .ptr;
    text.append(digits.data(), static_cast<int>(end - digits.data()));
}

void writeCsvRows(ExportedCube& cube, const SpooledImages& images, const std::function<void(const QByteArray&)>& take)
{
    take(csvHeader(cube));
    const qint64 pixels = static_cast<qint64>(cube.width()) * cube.height();
    const qint64 block = std::max<qint64>(1, blockBytes / (cube.count() * static_cast<qint64>(sizeof(float))));
    std::vector<float> floats;
    QByteArray rows;
    for (qint64 first = 0; first < pixels; first += block) {
        const qint64 count = std::min(block, pixels - first);
        images.read(first, count, floats);
        for (qint64 i = 0; i < count; ++i) {
            appendInteger(rows, (first + i) % cube.width());
            rows += ',';
            appendInteger(rows, (first + i) / cube.width());
            for (int k = 0; k < cube.count(); ++k) {
                appendValue(rows, floats[static_cast<std::size_t>(k * count + i)]);
            }
            rows += '\n';
            if (rows.size() >= bufferBytes || i + 1 == count) {
                take(rows);
                rows.resize(0);
                cube.showWriting(static_cast<double>(first + i + 1) / static_cast<double>(pixels));
            }
        }
    }
}

} // namespace

void writeOmeTiffCube(ExportedCube& cube, const QString& strPath)
{
    const auto pixels = static_cast<std::uint64_t>(cube.width()) * static_cast<std::uint64_t>(cube.height());
    TiffStackWriter writer;
    QString error;
    if (!writer.begin(strPath, pixels * sizeof(float) * static_cast<std::uint64_t>(cube.count()), &error)) {
        throw Failure(error);
    }
    CILImage image;
    for (int i = 0; i < cube.count(); ++i) {
        cube.read(i, image);
        TiffWriteOptions options;
        options.description = i == 0 ? omeXml(cube, cube.name()) : QString();
        options.pageName = cube.images().at(i).name;
        if (!writer.add(image, options, &error)) {
            throw Failure(error);
        }
    }
    if (!writer.finish(&error)) {
        throw Failure(error);
    }
}

QStringList enviPaths(const QString& strPath)
{
    const QString suffix = QFileInfo(strPath).suffix();
    const QString stem = strPath.left(strPath.size() - suffix.size() - 1);
    const bool header = suffix.compare(QLatin1String("hdr"), Qt::CaseInsensitive) == 0;
    if (suffix.isEmpty()) {
        return {strPath + QStringLiteral(".hdr"), strPath + QStringLiteral(".dat")};
    }
    return header ? QStringList{strPath, stem + QStringLiteral(".dat")}
                  : QStringList{stem + QStringLiteral(".hdr"), strPath};
}

void writeEnviCube(ExportedCube& cube, const QString& strPath)
{
    const QStringList paths = enviPaths(strPath);
    const QString dataName = QFileInfo(paths[1]).fileName();
    if (TextTable::oneLine(dataName).trimmed() != dataName) {
        throw Failure(
            QStringLiteral("%1: a header names its data file on one line, without blanks around it").arg(paths[1]),
            QStringLiteral("give --out another name"));
    }
    StreamedFile data(paths[1]);
    CILImage image;
    std::vector<char> bytes;
    QCryptographicHash digest(QCryptographicHash::Sha1);
    for (int i = 0; i < cube.count(); ++i) {
        cube.read(i, image);
        bytes.resize(image.pixelCount() * sizeof(float));
        qToLittleEndian<float>(image.floats(), static_cast<qsizetype>(image.pixelCount()), bytes.data());
        data.write(bytes.data(), static_cast<qint64>(bytes.size()));
        for (std::size_t at = 0; at < bytes.size(); at += digestedBytes) {
            digest.addData(bytes.data() + at, static_cast<int>(std::min(digestedBytes, bytes.size() - at)));
        }
    }
    // Both are written whole before the first takes its place, and the header comes last: a program that ends in
    // between leaves an older header, which the digest keeps from being read with the new data.
    StreamedFile header(paths[0]);
    header.write(enviHeaderText(cube, dataName, digest.result()));
    header.close();
    data.commit();
    header.commit();
}

void writeCsvCube(ExportedCube& cube, const QString& strPath)
{
    StreamedFile file(strPath);
    const SpooledImages images(cube, strPath);
    writeCsvRows(cube, images, [&file](const QByteArray& bytes) { file.write(bytes); });
    file.commit();
}

void streamCsvCube(ExportedCube& cube, const std::function<void(const QByteArray&)>& take)
{
    const SpooledImages images(cube, QDir::temp().filePath(QStringLiteral("export.csv")));
    writeCsvRows(cube, images, take);
}
