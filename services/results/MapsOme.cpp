// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/MapsOme.h"

#include "XTNT/xtnt_parallel.h"
#include "engine/CORVSpumKyvo.h"
#include "platform/orvimage/TiffStackWriter.h"
#include "services/basis/Failure.h"
#include "services/basis/TextTable.h"
#include "services/basis/UnitNames.h"
#include "services/basis/omeText.h"
#include "services/results/ResultFacts.h"
#include "services/results/ResultMapPictures.h"

#include <QColor>
#include <QXmlStreamWriter>

#include <limits>

namespace {

QString number(qint64 n)
{
    return QString::number(n);
}

// As the schema has it: a signed number of 32 bits, red, green, blue and opacity from the highest byte on.
QString colorText(const QColor& color)
{
    const quint32 bits = static_cast<quint32>(color.red()) << 24 | static_cast<quint32>(color.green()) << 16 |
                         static_cast<quint32>(color.blue()) << 8 | 255U;
    return QString::number(static_cast<qint32>(bits));
}

void writeChannels(QXmlStreamWriter& xml, const ResultFacts& facts, int nSpot)
{
    const int channels = facts.components.size();
    for (int c = 0; c < channels; ++c) {
        writeOmeElement(xml, "Channel",
                        {{"ID", QStringLiteral("Channel:%1:%2").arg(nSpot).arg(c)},
                         {"Name", TextTable::oneLine(facts.components[c].name)},
                         {"SamplesPerPixel", QStringLiteral("1")},
                         {"Color", colorText(QColor(facts.components[c].color))}});
    }
    for (int c = 0; c < channels; ++c) {
        writeOmeElement(xml, "TiffData",
                        {{"IFD", number(static_cast<qint64>(nSpot) * channels + c)},
                         {"FirstZ", QStringLiteral("0")},
                         {"FirstT", QStringLiteral("0")},
                         {"FirstC", number(c)},
                         {"PlaneCount", QStringLiteral("1")}});
    }
}

void writeImage(QXmlStreamWriter& xml, const ResultFacts& facts, int nSpot)
{
    xml.writeStartElement(QStringLiteral("Image"));
    xml.writeAttribute(QStringLiteral("ID"), QStringLiteral("Image:%1").arg(nSpot));
    xml.writeAttribute(QStringLiteral("Name"),
                       facts.spots > 1 ? QStringLiteral("spot %1").arg(nSpot + 1) : QStringLiteral("maps"));
    xml.writeTextElement(QStringLiteral("Description"),
                         QStringLiteral("Maps of components in %1; NaN where no pixel was analysed")
                             .arg(mapUnitText(UnitNames::fromText(facts.unit))));
    xml.writeStartElement(QStringLiteral("Pixels"));
    const std::initializer_list<std::pair<const char*, QString>> attributes = {
        {"ID", QStringLiteral("Pixels:%1").arg(nSpot)},
        {"DimensionOrder", QStringLiteral("XYCZT")},
        {"Type", QStringLiteral("float")},
        {"SizeX", number(facts.width)},
        {"SizeY", number(facts.height)},
        {"SizeZ", QStringLiteral("1")},
        {"SizeC", number(facts.components.size())},
        {"SizeT", QStringLiteral("1")}};
    for (const auto& attribute : attributes) {
        xml.writeAttribute(QLatin1String(attribute.first), attribute.second);
    }
    if (facts.pixelMicrometres) {
        writeOmePixelSize(xml, *facts.pixelMicrometres);
    }
    writeChannels(xml, facts, nSpot);
    xml.writeEndElement();
    writeOmeElement(xml, "AnnotationRef", {{"ID", QStringLiteral("Annotation:0")}});
    xml.writeEndElement();
}

// What OME has no place for.
void writeNotes(QXmlStreamWriter& xml, const ResultFacts& facts)
{
    xml.writeStartElement(QStringLiteral("StructuredAnnotations"));
    xml.writeStartElement(QStringLiteral("MapAnnotation"));
    xml.writeAttribute(QStringLiteral("ID"), QStringLiteral("Annotation:0"));
    xml.writeStartElement(QStringLiteral("Value"));
    const auto note = [&xml](const char* pKey, const QString& strValue) {
        xml.writeStartElement(QStringLiteral("M"));
        xml.writeAttribute(QStringLiteral("K"), QLatin1String(pKey));
        xml.writeCharacters(TextTable::oneLine(strValue));
        xml.writeEndElement();
    };
    note("unit", facts.unit);
    note("method", facts.method);
    note("binning", number(facts.binning));
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndElement();
}

} // namespace

QString mapsOmeText(const ResultFacts& facts)
{
    return omeText([&facts](QXmlStreamWriter& xml) {
        for (int s = 0; s < facts.spots; ++s) {
            writeImage(xml, facts, s);
        }
        writeNotes(xml, facts);
    });
}

void writeMapsOme(const CORVSpumKyvo& engine, const ResultFacts& facts, const QString& strPath)
{
    const int components = facts.components.size();
    const auto pixels = static_cast<std::uint64_t>(facts.width) * static_cast<std::uint64_t>(facts.height);
    QString error;
    TiffStackWriter writer;
    if (!writer.begin(strPath, pixels * sizeof(float) * static_cast<std::uint64_t>(components * facts.spots), &error)) {
        throw Failure(error);
    }
    for (int page = 0; page < components * facts.spots; ++page) {
        XTNT::cancellationPoint();
        const int component = page % components;
        TiffWriteOptions options;
        options.pageName = TextTable::oneLine(facts.components[component].name);
        options.description = page == 0 ? mapsOmeText(facts) : QString();
        const CILImage map = imageOfMap(engine, engine.m_concentrations, component, page / components,
                                        std::numeric_limits<float>::quiet_NaN());
        if (!writer.add(map, options, &error)) {
            throw Failure(error);
        }
    }
    if (!writer.finish(&error)) {
        throw Failure(error);
    }
}
