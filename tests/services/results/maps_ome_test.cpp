// SPDX-License-Identifier: GPL-3.0-or-later
// All maps of a result in one file of other programs' format.
#include "services/results/MapsOme.h"
#include "services/results/ResultFacts.h"

#include "platform/orvimage/TiffIo.h"
#include "platform/orvimage/TiffTexts.h"
#include "services/results/ResultNumbers.h"
#include "services/support/SmallAnalysis.h"

#include <QColor>
#include <QDomDocument>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>

#include <cmath>

namespace {

class MapsOmeTest : public SmallAnalysis
{
protected:
    MapsOmeTest()
    {
        m_numbers.shares = {0.25, 0.75};
        m_numbers.truth.resize(2);
    }
    QString file() const { return path("maps.ome.tif"); }
    void writeMaps()
    {
        ResultFacts facts = factsOfResult(engine(), m_numbers);
        facts.components[0].color = "#0c7955";
        facts.components[1].color = "#ff0000";
        writeMapsOme(engine(), facts, file());
    }
    QDomDocument metadata() const
    {
        TiffTexts texts;
        QString error;
        EXPECT_TRUE(readTiffTexts(file(), &texts, &error)) << qPrintable(error);
        QDomDocument document;
        EXPECT_TRUE(document.setContent(texts.pages.value(0).description, true, &error)) << qPrintable(error);
        return document;
    }
    ResultNumbers m_numbers;
};

QList<QDomElement> elementsOf(const QDomElement& parent)
{
    QList<QDomElement> list;
    for (QDomElement child = parent.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        list.append(child);
    }
    return list;
}

QStringList namesOf(const QList<QDomElement>& elements)
{
    QStringList names;
    for (const QDomElement& element : elements) {
        names.append(element.localName());
    }
    return names;
}

// What Python's reader of such files finds: {"axes", "shape", "names", "size", "nan", "sum"} for each image.
QJsonArray readByTifffile(const QString& strPath)
{
    const QString program = R"(
import json, sys, xml.etree.ElementTree as tree
import numpy, tifffile
with tifffile.TiffFile(sys.argv[1]) as tiff:
    assert tiff.is_ome
    root = tree.fromstring(tiff.ome_metadata)
    space = {"o": "http://www.openmicroscopy.org/Schemas/OME/2016-06"}
    images = []
    for series, pixels in zip(tiff.series, root.findall("o:Image/o:Pixels", space)):
        data = series.asarray()
        images.append({"axes": series.axes, "shape": list(data.shape), "type": str(data.dtype),
                       "names": [c.get("Name") for c in pixels.findall("o:Channel", space)],
                       "size": float(pixels.get("PhysicalSizeX", "nan")),
                       "nan": int(numpy.isnan(data).sum()), "sum": float(numpy.nansum(data))})
    print(json.dumps(images))
)";
    QProcess python;
    python.start("/usr/bin/python3", {"-c", program, strPath});
    EXPECT_TRUE(python.waitForFinished(120000));
    EXPECT_EQ(python.exitCode(), 0) << python.readAllStandardError().constData();
    return QJsonDocument::fromJson(python.readAllStandardOutput()).array();
}

} // namespace

TEST_F(MapsOmeTest, APageAComponentWithItsNumbersAndNaNOutsideTheMask)
{
    analyse([](int i) { return i == 5 || i == 6 ? 1.0F : 0.0F; });
    writeMaps();
    for (int k = 0; k < 2; ++k) {
        CILImage map;
        QString error;
        ASSERT_TRUE(readTiff(file(), k, map, &error)) << qPrintable(error);
        for (int i = 0; i < side * side; ++i) {
            const double value = map.value(static_cast<std::size_t>(i));
            if (i == 5 || i == 6) {
                EXPECT_NEAR(value, static_cast<double>(k == 0 ? mapA(i) : mapB(i)), 1e-5) << i;
            } else {
                EXPECT_TRUE(std::isnan(value)) << i;
            }
        }
    }
}

TEST_F(MapsOmeTest, MetadataHaveTheOrderAndTheAttributesOfTheSchema)
{
    analyse();
    writeMaps();
    const QDomElement root = metadata().documentElement();
    EXPECT_EQ(root.localName(), "OME");
    EXPECT_EQ(root.namespaceURI(), "http://www.openmicroscopy.org/Schemas/OME/2016-06");
    EXPECT_EQ(namesOf(elementsOf(root)), QStringList({"Image", "StructuredAnnotations"}));
    const QDomElement image = elementsOf(root)[0];
    EXPECT_EQ(namesOf(elementsOf(image)), QStringList({"Description", "Pixels", "AnnotationRef"}));
    const QDomElement pixels = elementsOf(image)[1];
    EXPECT_EQ(namesOf(elementsOf(pixels)), QStringList({"Channel", "Channel", "TiffData", "TiffData"}));
    for (const char* required : {"ID", "DimensionOrder", "Type", "SizeX", "SizeY", "SizeZ", "SizeC", "SizeT"}) {
        EXPECT_TRUE(pixels.hasAttribute(required)) << required;
    }
    EXPECT_EQ(pixels.attribute("Type"), "float");
    EXPECT_EQ(pixels.attribute("SizeC"), "2");
    EXPECT_EQ(pixels.attribute("PhysicalSizeX"), "10000");
    EXPECT_EQ(pixels.attribute("PhysicalSizeXUnit"), QString::fromUtf8("\u00b5m"));
    EXPECT_EQ(elementsOf(pixels)[1].attribute("IFD"), QString()) << "a channel";
    EXPECT_EQ(elementsOf(pixels)[3].attribute("IFD"), "1");
    EXPECT_EQ(elementsOf(pixels)[3].attribute("FirstC"), "1");
    const QDomElement annotation = elementsOf(elementsOf(root)[1])[0];
    EXPECT_EQ(annotation.localName(), "MapAnnotation");
    EXPECT_EQ(annotation.attribute("ID"), elementsOf(image)[2].attribute("ID"));
    EXPECT_TRUE(annotation.text().contains("Radiant Efficiency")) << qPrintable(annotation.text());
    EXPECT_TRUE(elementsOf(image)[0].text().contains("Radiant Efficiency ["));
}

TEST_F(MapsOmeTest, ChannelsHaveNamesAndColours)
{
    analyse();
    engine().m_spectrumPlots[0]->settings.name = QString::fromUtf8("Dye <\u00e4> & \"A\"\tB");
    writeMaps();
    const auto channels =
        metadata().elementsByTagNameNS("http://www.openmicroscopy.org/Schemas/OME/2016-06", "Channel");
    ASSERT_EQ(channels.size(), 2);
    EXPECT_EQ(channels.at(0).toElement().attribute("Name"), QString::fromUtf8("Dye <\u00e4> & \"A\" B"));
    EXPECT_EQ(channels.at(1).toElement().attribute("Name"), "Dye B");
    EXPECT_EQ(channels.at(1).toElement().attribute("Color").toLongLong(), -16776961) << "red, opaque";
    EXPECT_EQ(channels.at(0).toElement().attribute("Color").toLongLong(), 0x0c7955ff);
}

TEST_F(MapsOmeTest, AnotherProgramReadsImagesNamesAndSize)
{
    analyse([](int i) { return i == 5 || i == 6 ? 1.0F : 0.0F; });
    writeMaps();
    const QJsonArray images = readByTifffile(file());
    ASSERT_EQ(images.size(), 1);
    const QJsonObject image = images[0].toObject();
    EXPECT_EQ(image["axes"].toString(), "CYX");
    EXPECT_EQ(image["shape"].toArray(), QJsonArray({2, side, side}));
    EXPECT_EQ(image["type"].toString(), "float32");
    EXPECT_EQ(image["names"].toArray(), QJsonArray({"Dye A", "Dye B"}));
    EXPECT_EQ(image["size"].toDouble(), 10000.0);
    EXPECT_EQ(image["nan"].toInt(), 2 * (side * side - 2));
    EXPECT_NEAR(image["sum"].toDouble(), static_cast<double>(mapA(5) + mapA(6) + mapB(5) + mapB(6)), 1e-4);
}

TEST_F(MapsOmeTest, EachSpotIsAnImage)
{
    analyse();
    addSpot(100.0);
    writeMaps();
    const QJsonArray images = readByTifffile(file());
    ASSERT_EQ(images.size(), 2);
    EXPECT_EQ(images[1].toObject()["shape"].toArray(), QJsonArray({2, side, side}));
    EXPECT_NEAR(images[1].toObject()["sum"].toDouble() - images[0].toObject()["sum"].toDouble(),
                100.0 * 2 * side * side, 1e-2);
    const QDomElement root = metadata().documentElement();
    EXPECT_EQ(namesOf(elementsOf(root)), QStringList({"Image", "Image", "StructuredAnnotations"}));
    EXPECT_EQ(elementsOf(root)[1].attribute("Name"), "spot 2");
    EXPECT_EQ(elementsOf(root)[1].attribute("ID"), "Image:1");
}

TEST_F(MapsOmeTest, OneComponentIsAChannelToo)
{
    analyse();
    delete engine().m_spectrumPlots.takeLast();
    ResultFacts facts = factsOfResult(engine(), m_numbers);
    writeMapsOme(engine(), facts, file());
    const QJsonArray images = readByTifffile(file());
    ASSERT_EQ(images.size(), 1);
    EXPECT_EQ(images[0].toObject()["names"].toArray(), QJsonArray({"Dye A"}));
    EXPECT_EQ(images[0].toObject()["shape"].toArray(), QJsonArray({side, side}));
}

TEST_F(MapsOmeTest, WithoutASizeOfPixelsNoneIsTold)
{
    analyse();
    ResultFacts facts = factsOfResult(engine(), m_numbers);
    facts.pixelMicrometres.reset();
    EXPECT_FALSE(mapsOmeText(facts).contains("PhysicalSize"));
}

TEST_F(MapsOmeTest, AFolderThatIsNotThereIsToldByName)
{
    analyse();
    const ResultFacts facts = factsOfResult(engine(), m_numbers);
    const QString nowhere = path("none/maps.ome.tif");
    EXPECT_TRUE(failureOf([&] { writeMapsOme(engine(), facts, nowhere); }).contains(nowhere));
}
