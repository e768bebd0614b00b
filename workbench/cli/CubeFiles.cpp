// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/CubeFiles.h"

#include "host/CILImage.h"
#include "platform/orvimage/TiffStackWriter.h"
#include "platform/orvutils/AtomicFile.h"
#include "platform/orvutils/TemporaryTarget.h"
#include "workbench/cli/CliFailure.h"
#include "workbench/cli/ExportedCube.h"
#include "workbench/cli/TextTable.h"
#include "workbench/cli/UnitNames.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QXmlStreamWriter>
#include <QtEndian>

#include <vector>

namespace {

constexpr int bufferBytes = 1024 * 1024;

QString shortest(double dValue)
{
    return QString::number(dValue, 'g', QLocale::FloatingPointShortest);
}

QString unitSentence(const ExportedCube& cube)
{
    return QStringLiteral("%1 (%2)").arg(UnitNames::text(cube.unit()), UnitNames::quantity(cube.unit()));
}

void writeChannel(QXmlStreamWriter& xml, int nChannel, const QString& strName, const ExportedCube::Image* pImage)
{
    xml.writeStartElement(QStringLiteral("Channel"));
    xml.writeAttribute(QStringLiteral("ID"), QStringLiteral("Channel:0:%1").arg(nChannel));
    xml.writeAttribute(QStringLiteral("Name"), strName);
    xml.writeAttribute(QStringLiteral("SamplesPerPixel"), QStringLiteral("1"));
    const auto wavelength = [&xml](const QString& strKey, const std::optional<double>& value) {
        if (!value)
            return;
        xml.writeAttribute(strKey, shortest(*value));
        xml.writeAttribute(strKey + QStringLiteral("Unit"), QStringLiteral("nm"));
    };
    if (pImage != nullptr) {
        wavelength(QStringLiteral("ExcitationWavelength"), pImage->excitation);
        wavelength(QStringLiteral("EmissionWavelength"), pImage->emission);
    }
    xml.writeEndElement();
}

void writePlane(QXmlStreamWriter& xml, int nChannel, int nTime, const ExportedCube::Image& image)
{
    xml.writeStartElement(QStringLiteral("Plane"));
    xml.writeAttribute(QStringLiteral("TheZ"), QStringLiteral("0"));
    xml.writeAttribute(QStringLiteral("TheT"), QString::number(nTime));
    xml.writeAttribute(QStringLiteral("TheC"), QString::number(nChannel));
    const auto seconds = [&xml](const QString& strKey, const std::optional<double>& value) {
        if (!value)
            return;
        xml.writeAttribute(strKey, shortest(*value));
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
        for (const auto* axis : {"X", "Y"}) {
            const QString key = QStringLiteral("PhysicalSize") + QLatin1String(axis);
            xml.writeAttribute(key, shortest(*size));
            xml.writeAttribute(key + QStringLiteral("Unit"), QStringLiteral("\u00b5m"));
        }
    }
    if (cube.isTemporal())
        writeChannel(xml, 0, QStringLiteral("all times"), nullptr);
    for (int c = 0; c < channels && !cube.isTemporal(); ++c)
        writeChannel(xml, c, cube.images().at(c).name, &cube.images().at(c));
    for (int i = 0; i < cube.count(); ++i) {
        xml.writeStartElement(QStringLiteral("TiffData"));
        attribute("IFD", QString::number(i));
        attribute("FirstC", QString::number(cube.isTemporal() ? 0 : i));
        attribute("FirstT", QString::number(cube.isTemporal() ? i : 0));
        attribute("FirstZ", QStringLiteral("0"));
        attribute("PlaneCount", QStringLiteral("1"));
        xml.writeEndElement();
    }
    for (int i = 0; i < cube.count(); ++i)
        writePlane(xml, cube.isTemporal() ? 0 : i, cube.isTemporal() ? i : 0, cube.images().at(i));
    xml.writeEndElement();
}

QString omeXml(const ExportedCube& cube, const QString& strName)
{
    const QString schema = QStringLiteral("http://www.openmicroscopy.org/Schemas/OME/2016-06");
    QString text;
    QXmlStreamWriter xml(&text);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("OME"));
    xml.writeDefaultNamespace(schema);
    xml.writeNamespace(QStringLiteral("http://www.w3.org/2001/XMLSchema-instance"), QStringLiteral("xsi"));
    xml.writeAttribute(QStringLiteral("http://www.w3.org/2001/XMLSchema-instance"), QStringLiteral("schemaLocation"),
                       schema + QLatin1Char(' ') + schema + QStringLiteral("/ome.xsd"));
    xml.writeStartElement(QStringLiteral("Image"));
    xml.writeAttribute(QStringLiteral("ID"), QStringLiteral("Image:0"));
    xml.writeAttribute(QStringLiteral("Name"), strName);
    xml.writeTextElement(QStringLiteral("Description"), unitSentence(cube));
    writePixels(xml, cube);
    xml.writeEndDocument();
    return text;
}

// In braces, where neither a brace nor a line end can stand; in a list no comma either.
QString braced(QString text, bool bInList)
{
    text.replace(QLatin1Char('{'), QLatin1Char('('));
    text.replace(QLatin1Char('}'), QLatin1Char(')'));
    return bInList ? text.simplified().replace(QLatin1Char(','), QLatin1Char(' ')) : text.simplified();
}

QByteArray enviHeaderText(ExportedCube& cube, const QString& strDataFile)
{
    QStringList names;
    QStringList wavelengths;
    for (const auto& image : cube.images()) {
        names.append(braced(image.name, true));
        if (image.emission)
            wavelengths.append(shortest(*image.emission));
    }
    QString text = QStringLiteral("ENVI\ndescription = {%1, %2}\n").arg(braced(cube.name(), false), unitSentence(cube));
    text +=
        QStringLiteral("samples = %1\nlines = %2\nbands = %3\n").arg(cube.width()).arg(cube.height()).arg(cube.count());
    text += QStringLiteral("header offset = 0\nfile type = ENVI Standard\ndata type = 4\ninterleave = bsq\n"
                           "byte order = 0\ndata file = %1\n")
                .arg(strDataFile);
    text += QStringLiteral("band names = {%1}\n").arg(names.join(QLatin1String(", ")));
    wavelengths.removeDuplicates();
    if (wavelengths.size() == cube.count())
        text += QStringLiteral("wavelength units = Nanometers\nwavelength = {%1}\n")
                    .arg(wavelengths.join(QLatin1String(", ")));
    return text.toUtf8();
}

[[noreturn]] void failWriting(const QString& strPath, const QString& strReason)
{
    throw CliFailure(QStringLiteral("%1: cannot be written: %2").arg(strPath, strReason));
}

// A file written bit by bit beside its target.
class StreamedFile
{
public:
    explicit StreamedFile(const QString& strPath) : m_strPath(strPath), m_target(strPath)
    {
        if (!m_target.isValid())
            throw CliFailure(m_target.error());
        m_file.setFileName(m_target.path());
        if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            failWriting(m_strPath, m_file.errorString());
    }
    void write(const char* pBytes, qint64 nBytes)
    {
        if (m_file.write(pBytes, nBytes) != nBytes)
            failWriting(m_strPath, m_file.errorString());
    }
    void write(const QByteArray& bytes) { write(bytes.constData(), bytes.size()); }
    void commit()
    {
        if (!m_file.flush() || m_file.error() != QFileDevice::NoError)
            failWriting(m_strPath, m_file.errorString());
        m_file.close();
        if (!m_target.commit())
            throw CliFailure(m_target.error());
    }

private:
    QString m_strPath;
    orv::TemporaryTarget m_target;
    QFile m_file;
};

QByteArray csvHeader(const ExportedCube& cube)
{
    QStringList names{QStringLiteral("x"), QStringLiteral("y")};
    for (const auto& image : cube.images())
        names.append(image.name);
    return TextTable(names).toCsv().toUtf8();
}

} // namespace

void writeOmeTiffCube(ExportedCube& cube, const QString& strPath)
{
    const auto pixels = static_cast<std::uint64_t>(cube.width()) * static_cast<std::uint64_t>(cube.height());
    TiffStackWriter writer;
    QString error;
    if (!writer.begin(strPath, pixels * sizeof(float) * static_cast<std::uint64_t>(cube.count()), &error))
        throw CliFailure(error);
    CILImage image;
    for (int i = 0; i < cube.count(); ++i) {
        cube.read(i, image);
        TiffWriteOptions options;
        options.description = i == 0 ? omeXml(cube, cube.name()) : QString();
        options.pageName = cube.images().at(i).name;
        if (!writer.add(image, options, &error))
            throw CliFailure(error);
    }
    if (!writer.finish(&error))
        throw CliFailure(error);
}

QStringList enviPaths(const QString& strPath)
{
    const QString suffix = QFileInfo(strPath).suffix();
    const QString stem = strPath.left(strPath.size() - suffix.size() - 1);
    const bool header = suffix.compare(QLatin1String("hdr"), Qt::CaseInsensitive) == 0;
    if (suffix.isEmpty())
        return {strPath + QStringLiteral(".hdr"), strPath + QStringLiteral(".dat")};
    return header ? QStringList{strPath, stem + QStringLiteral(".dat")}
                  : QStringList{stem + QStringLiteral(".hdr"), strPath};
}

void writeEnviCube(ExportedCube& cube, const QString& strPath)
{
    const QStringList paths = enviPaths(strPath);
    StreamedFile data(paths[1]);
    CILImage image;
    std::vector<char> bytes;
    for (int i = 0; i < cube.count(); ++i) {
        cube.read(i, image);
        bytes.resize(image.pixelCount() * sizeof(float));
        qToLittleEndian<float>(image.floats(), static_cast<qsizetype>(image.pixelCount()), bytes.data());
        data.write(bytes.data(), static_cast<qint64>(bytes.size()));
    }
    data.commit();
    QString error;
    if (!orv::writeFileAtomically(paths[0], enviHeaderText(cube, QFileInfo(paths[1]).fileName()), &error))
        throw CliFailure(error);
}

void writeCsvCube(ExportedCube& cube, const QString& strPath)
{
    StreamedFile file(strPath);
    std::vector<CILImage> images(static_cast<std::size_t>(cube.count()));
    for (int i = 0; i < cube.count(); ++i)
        cube.read(i, images[static_cast<std::size_t>(i)]);
    file.write(csvHeader(cube));
    QByteArray rows;
    for (long y = 0; y < cube.height(); ++y) {
        for (long x = 0; x < cube.width(); ++x) {
            rows += QByteArray::number(static_cast<qlonglong>(x)) + ',' + QByteArray::number(static_cast<qlonglong>(y));
            const auto at = static_cast<std::size_t>(y * cube.width() + x);
            for (const auto& image : images)
                rows += ',' + QByteArray::number(static_cast<double>(image.floats()[at]), 'g', 9);
            rows += '\n';
        }
        if (rows.size() >= bufferBytes || y + 1 == cube.height()) {
            file.write(rows);
            rows.clear();
        }
    }
    file.commit();
}
