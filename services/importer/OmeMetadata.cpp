// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/OmeMetadata.h"

#include "services/importer/NameFigures.h"

#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr int maxTextLength = 16 * 1024 * 1024;
constexpr int maxSize = 1000000;
// The XML reader compares each attribute of an element with all before it.
constexpr int maxElementLength = 64 * 1024;
constexpr qint64 maxPlanes = 10000000;

struct Channel
{
    std::optional<double> excitation; // nm
    std::optional<double> emission;
    QString name;
};

// Pages of a file that hold consecutive planes.
struct PlaneRun
{
    std::optional<int> page; // from 0
    std::optional<int> count;
    int c = 0;
    int z = 0;
    int t = 0;
    QString file; // empty: this one
};

// One image of the text: up to three further dimensions of planes.
struct Pixels
{
    QString order = QStringLiteral("XYCZT");
    int sizeC = 1;
    int sizeZ = 1;
    int sizeT = 1;
    std::optional<double> increment; // s
    QVector<Channel> channels;
    QVector<PlaneRun> runs;
    QHash<qint64, double> times; // s, by plane
    QHash<qint64, double> exposures;
    std::optional<double> pixelSize; // um

    int channelCount() const { return channels.isEmpty() ? sizeC : channels.size(); }
    qint64 planeCount() const { return static_cast<qint64>(channelCount()) * sizeZ * sizeT; }
    qint64 planeOf(int c, int z, int t) const
    {
        return c + static_cast<qint64>(channelCount()) * (z + static_cast<qint64>(sizeZ) * t);
    }
};

double nanometresOf(const QString& unit)
{
    static const QHash<QString, double> factors{
        {QStringLiteral("nm"), 1.0},      {QStringLiteral("um"), 1e3},     {QStringLiteral("\u00b5m"), 1e3},
        {QStringLiteral("\u03bcm"), 1e3}, {QStringLiteral("\u00c5"), 0.1}, {QStringLiteral("\u212b"), 0.1},
        {QStringLiteral("pm"), 1e-3},     {QStringLiteral("mm"), 1e6},     {QStringLiteral("m"), 1e9}};
    return unit.isEmpty() ? 1.0 : factors.value(unit, 0.0);
}

double micrometresOf(const QString& unit)
{
    static const QHash<QString, double> factors{{QStringLiteral("nm"), 1e-3},     {QStringLiteral("um"), 1.0},
                                                {QStringLiteral("\u00b5m"), 1.0}, {QStringLiteral("\u03bcm"), 1.0},
                                                {QStringLiteral("mm"), 1e3},      {QStringLiteral("cm"), 1e4},
                                                {QStringLiteral("m"), 1e6}};
    return unit.isEmpty() ? 1.0 : factors.value(unit, 0.0);
}

double secondsOf(const QString& unit)
{
    static const QHash<QString, double> factors{
        {QStringLiteral("s"), 1.0},        {QStringLiteral("ms"), 1e-3},      {QStringLiteral("us"), 1e-6},
        {QStringLiteral("\u00b5s"), 1e-6}, {QStringLiteral("\u03bcs"), 1e-6}, {QStringLiteral("ns"), 1e-9},
        {QStringLiteral("min"), 60.0},     {QStringLiteral("h"), 3600.0},     {QStringLiteral("d"), 86400.0}};
    return unit.isEmpty() ? 1.0 : factors.value(unit, 0.0);
}

// Collects the images of a text.
class OmeReader
{
public:
    explicit OmeReader(const QString& xml) : m_xml(xml) {}

    bool read(QString* pError);
    const QVector<Pixels>& images() const { return m_images; }
    const QStringList& doubts() const { return m_doubts; }
    const QHash<QString, QString>& notes() const { return m_notes; }

private:
    void startElement();
    void readNote();
    void readPixels();
    void readChannel();
    void readTiffData();
    void readPlane();
    QString text(const char* name) const { return m_xml.attributes().value(QLatin1String(name)).toString().trimmed(); }
    bool readInteger(const char* name, int least, int* pValue);
    std::optional<double> quantity(const char* name, double (*factor)(const QString&), bool bNeeded = true);
    std::optional<double> fact(const char* name, double (*factor)(const QString&));

    QHash<QString, QString> m_notes; // of the annotation that an export of this program writes
    bool m_bNotes = false;           // within that annotation
    QXmlStreamReader m_xml;
    QVector<Pixels> m_images;
    QStringList m_doubts;
};

bool OmeReader::read(QString* pError)
{
    while (!m_xml.atEnd()) {
        const QXmlStreamReader::TokenType token = m_xml.readNext();
        if (token == QXmlStreamReader::DTD || token == QXmlStreamReader::EntityReference) {
            m_xml.raiseError(QStringLiteral("a document type or an entity is not accepted"));
        } else if (token == QXmlStreamReader::StartElement) {
            startElement();
        }
    }
    if (m_xml.hasError()) {
        *pError = QStringLiteral("line %1 of the OME-XML: %2").arg(m_xml.lineNumber()).arg(m_xml.errorString());
    }
    return !m_xml.hasError();
}

void OmeReader::startElement()
{
    const QStringRef name = m_xml.name();
    if (name == QLatin1String("Pixels")) {
        readPixels();
    } else if (m_images.isEmpty()) {
        return;
    } else if (name == QLatin1String("Channel")) {
        readChannel();
    } else if (name == QLatin1String("TiffData")) {
        readTiffData();
    } else if (name == QLatin1String("UUID") && !m_images.last().runs.isEmpty()) {
        m_images.last().runs.last().file = QFileInfo(text("FileName")).fileName();
    } else if (name == QLatin1String("Plane")) {
        readPlane();
    } else if (name == QLatin1String("MapAnnotation")) {
        m_bNotes = text("Namespace") == QLatin1String(OmeMetadata::kNamespace);
    } else if (name == QLatin1String("M") && m_bNotes) {
        readNote();
    }
}

// The value stays when the attribute is absent; false, with an XML error, when it is no such number.
bool OmeReader::readInteger(const char* name, int least, int* pValue)
{
    const QString value = text(name);
    if (value.isEmpty()) {
        return true;
    }
    bool bNumber = false;
    const int number = value.toInt(&bNumber);
    if (!bNumber || number < least || number > maxSize) {
        m_xml.raiseError(QStringLiteral("%1 is \"%2\"").arg(QLatin1String(name), value.left(40)));
        return false;
    }
    *pValue = number;
    return true;
}

void OmeReader::readNote()
{
    const QString key = text("K");
    m_notes.insert(key, m_xml.readElementText().simplified());
}

// A number with its unit in the attribute of that name and "Unit"; one that is needed and cannot be used is a doubt.
std::optional<double> OmeReader::quantity(const char* name, double (*factor)(const QString&), bool bNeeded)
{
    const QString value = text(name);
    if (value.isEmpty()) {
        return std::nullopt;
    }
    const QString unit = m_xml.attributes().value(QLatin1String(name) + QLatin1String("Unit")).toString().trimmed();
    bool bNumber = false;
    const double number = value.toDouble(&bNumber);
    const double scale = factor(unit);
    if (bNumber && std::isfinite(number) && scale > 0.0) {
        // A division where the unit is smaller gives the number as it is written.
        return scale < 1.0 ? number / std::round(1.0 / scale) : number * scale;
    }
    if (bNeeded && m_doubts.size() < 10) {
        m_doubts.append(
            QStringLiteral("%1 \"%2 %3\" is not understood").arg(QLatin1String(name), value.left(40), unit.left(40)));
    }
    return std::nullopt;
}

// A number above 0 that nothing depends on.
std::optional<double> OmeReader::fact(const char* name, double (*factor)(const QString&))
{
    const std::optional<double> value = quantity(name, factor, false);
    return value && *value > 0.0 ? value : std::nullopt;
}

void OmeReader::readPixels()
{
    Pixels pixels;
    if (!readInteger("SizeC", 1, &pixels.sizeC) || !readInteger("SizeZ", 1, &pixels.sizeZ) ||
        !readInteger("SizeT", 1, &pixels.sizeT)) {
        return;
    }
    if (static_cast<qint64>(pixels.sizeC) * pixels.sizeZ > maxPlanes ||
        static_cast<qint64>(pixels.sizeC) * pixels.sizeZ * pixels.sizeT > maxPlanes) {
        return m_xml.raiseError(QStringLiteral("the planes are too many"));
    }
    static const QSet<QString> orders{QStringLiteral("XYZCT"), QStringLiteral("XYZTC"), QStringLiteral("XYCZT"),
                                      QStringLiteral("XYCTZ"), QStringLiteral("XYTCZ"), QStringLiteral("XYTZC")};
    const QString order = text("DimensionOrder");
    if (orders.contains(order)) {
        pixels.order = order;
    } else if (!order.isEmpty()) {
        return m_xml.raiseError(QStringLiteral("DimensionOrder is \"%1\"").arg(order.left(40)));
    }
    pixels.increment = quantity("TimeIncrement", secondsOf);
    // Pixels that are no squares have no size that could be told.
    pixels.pixelSize = fact("PhysicalSizeX", micrometresOf);
    if (!text("PhysicalSizeY").isEmpty() && fact("PhysicalSizeY", micrometresOf) != pixels.pixelSize) {
        pixels.pixelSize.reset();
    }
    m_images.append(pixels);
}

void OmeReader::readChannel()
{
    Channel channel;
    channel.excitation = quantity("ExcitationWavelength", nanometresOf);
    channel.emission = quantity("EmissionWavelength", nanometresOf);
    channel.name = text("Name");
    QVector<Channel>& channels = m_images.last().channels;
    if (channels.size() >= m_images.last().sizeC) {
        return m_xml.raiseError(QStringLiteral("there are more channels than SizeC"));
    }
    channels.append(channel);
}

void OmeReader::readTiffData()
{
    PlaneRun run;
    int page = -1;
    int count = -1;
    if (!readInteger("IFD", 0, &page) || !readInteger("PlaneCount", 0, &count) || !readInteger("FirstC", 0, &run.c) ||
        !readInteger("FirstZ", 0, &run.z) || !readInteger("FirstT", 0, &run.t)) {
        return;
    }
    if (page >= 0) {
        run.page = page;
    }
    if (count >= 0) {
        run.count = count;
    }
    m_images.last().runs.append(run);
}

void OmeReader::readPlane()
{
    int c = 0;
    int z = 0;
    int t = 0;
    Pixels& pixels = m_images.last();
    if (!readInteger("TheC", 0, &c) || !readInteger("TheZ", 0, &z) || !readInteger("TheT", 0, &t)) {
        return;
    }
    const std::optional<double> time = quantity("DeltaT", secondsOf);
    const std::optional<double> exposure = fact("ExposureTime", secondsOf);
    if (c >= pixels.channelCount() || z >= pixels.sizeZ || t >= pixels.sizeT) {
        return;
    }
    if (time) {
        pixels.times.insert(pixels.planeOf(c, z, t), *time);
    }
    if (exposure) {
        pixels.exposures.insert(pixels.planeOf(c, z, t), *exposure);
    }
}

using Plane = PlanePosition;

int& dimension(Plane& plane, QChar name)
{
    return name == QLatin1Char('C') ? plane.c : name == QLatin1Char('Z') ? plane.z : plane.t;
}

// The next plane in the image's order; false behind the last one.
bool advance(Plane& plane, const Pixels& pixels)
{
    Plane size{pixels.channelCount(), pixels.sizeZ, pixels.sizeT};
    for (int i = 2; i < pixels.order.size(); ++i) {
        int& at = dimension(plane, pixels.order.at(i));
        if (++at < dimension(size, pixels.order.at(i))) {
            return true;
        }
        at = 0;
    }
    return false;
}

QVector<Figure> figuresOf(const Pixels& pixels, const Plane& plane, QStringList& doubts)
{
    QVector<Figure> figures;
    const Channel channel = pixels.channels.value(plane.c);
    const QString origin = QStringLiteral("OME channel %1").arg(plane.c + 1);
    if (channel.excitation) {
        figures.append({Figure::Excitation, *channel.excitation, origin});
    }
    if (channel.emission) {
        figures.append({Figure::Emission, *channel.emission, origin});
    }
    const qint64 number = pixels.planeOf(plane.c, plane.z, plane.t);
    if (pixels.times.contains(number)) {
        figures.append({Figure::Time, pixels.times.value(number), QStringLiteral("OME DeltaT")});
    } else if (pixels.increment && pixels.sizeT > 1) {
        figures.append({Figure::Time, plane.t * *pixels.increment, QStringLiteral("OME TimeIncrement")});
    } else if (pixels.sizeT > 1) {
        figures.append({Figure::Frame, static_cast<double>(plane.t), QStringLiteral("OME TheT")});
    }
    if (!channel.excitation && !channel.emission) {
        const NameFigures name = NameFigures::read(channel.name, QStringLiteral("OME channel name"));
        for (const Figure& figure : name.figures) {
            if (figure.kind == Figure::Excitation || figure.kind == Figure::Emission) {
                figures.append(figure);
            }
        }
        doubts += name.doubts;
    }
    return figures;
}

QString channelText(const Pixels& pixels, const Plane& plane)
{
    const QString name = pixels.channels.value(plane.c).name;
    return pixels.sizeZ > 1 ? QStringLiteral("%1 z%2").arg(name, QString::number(plane.z + 1)).trimmed() : name;
}

ImageFacts factsOf(const Pixels& pixels, const Plane& plane, const QHash<QString, QString>& notes, int page)
{
    ImageFacts facts;
    const auto exposure = pixels.exposures.constFind(pixels.planeOf(plane.c, plane.z, plane.t));
    if (exposure != pixels.exposures.constEnd()) {
        facts.exposure = *exposure;
    }
    facts.pixelSize = pixels.pixelSize;
    facts.start = ImageFacts::instant(notes.value(QStringLiteral("start %1").arg(page + 1)));
    facts.isotope = notes.value(QStringLiteral("isotope"));
    facts.unit = ImageFacts::unitName(notes.value(QStringLiteral("unit")));
    facts.temporal = notes.value(QStringLiteral("kind")) == QLatin1String("temporal");
    facts.numbered = notes.value(QStringLiteral("kind")) == QLatin1String("channels");
    facts.wavenumber = ImageFacts::positive(notes.value(QStringLiteral("wavenumber %1").arg(page + 1)));
    return facts;
}

// Which of an image's runs lie in the file: of a set of files those that name it, of one file all, whatever its name is
// now.
QVector<PlaneRun> runsOf(const Pixels& pixels, const QString& file)
{
    if (pixels.runs.isEmpty()) {
        return {PlaneRun()};
    }
    QSet<QString> files;
    for (const PlaneRun& run : pixels.runs) {
        files.insert(run.file);
    }
    if (files.size() == 1) {
        return pixels.runs;
    }
    QVector<PlaneRun> own;
    for (const PlaneRun& run : pixels.runs) {
        if (run.file == file) {
            own.append(run);
        }
    }
    return own;
}

// Whether all that stands between "<" and ">" is short.
bool hasShortElements(const QString& xml)
{
    int end = 0;
    for (int at = xml.indexOf(QLatin1Char('<')); at >= 0; at = xml.indexOf(QLatin1Char('<'), end)) {
        end = xml.indexOf(QLatin1Char('>'), at);
        end = end < 0 ? xml.size() : end;
        if (end - at > maxElementLength) {
            return false;
        }
    }
    return true;
}

} // namespace

bool OmeMetadata::isOme(const QString& strDescription)
{
    return strDescription.contains(QLatin1String("<OME ")) || strDescription.contains(QLatin1String("<OME>")) ||
           strDescription.contains(QLatin1String("<ome:OME "));
}

bool OmeMetadata::parse(const QString& strXml, const QString& strFile, int nPages, QString* pError)
{
    m_pages = QVector<QVector<Figure>>(nPages);
    m_facts = QVector<ImageFacts>(nPages);
    m_channels = QVector<QString>(nPages).toList();
    m_planes = FilePlanes();
    m_planes.pages.resize(nPages);
    m_bTimes = false;
    m_doubts.clear();
    if (strXml.size() > maxTextLength) {
        *pError = QStringLiteral("the OME-XML is too large");
        return false;
    }
    if (!hasShortElements(strXml)) {
        *pError = QStringLiteral("the OME-XML has an element of more than 64 KiB");
        return false;
    }
    OmeReader reader(strXml);
    if (!reader.read(pError)) {
        return false;
    }
    m_doubts = reader.doubts();
    int next = 0; // where an image begins that does not tell its pages
    qint64 budget = 8 * static_cast<qint64>(nPages) + 1000;
    for (const Pixels& pixels : reader.images()) {
        m_bTimes = m_bTimes || pixels.sizeT > 1;
        m_planes.sizes.c = std::max(m_planes.sizes.c, pixels.channelCount());
        m_planes.sizes.z = std::max(m_planes.sizes.z, pixels.sizeZ);
        m_planes.sizes.t = std::max(m_planes.sizes.t, pixels.sizeT);
        for (const PlaneRun& run : runsOf(pixels, strFile)) {
            Plane plane{run.c, run.z, run.t};
            if (plane.c >= pixels.channelCount() || plane.z >= pixels.sizeZ || plane.t >= pixels.sizeT) {
                continue;
            }
            const qint64 count = run.count ? *run.count : run.page ? 1 : pixels.planeCount();
            int page = run.page.value_or(next);
            bool bInside = true;
            for (qint64 i = 0; i < count && bInside && page < nPages; ++i, ++page) {
                if (--budget < 0) {
                    *pError = QStringLiteral("the OME-XML names the same pages again and again");
                    return false;
                }
                m_pages[page] = figuresOf(pixels, plane, m_doubts);
                m_facts[page] = factsOf(pixels, plane, reader.notes(), page);
                m_channels[page] = channelText(pixels, plane);
                m_planes.pages[page] = plane;
                bInside = advance(plane, pixels);
            }
            next = page;
        }
    }
    m_doubts.removeDuplicates();
    return true;
}
