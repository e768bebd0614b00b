// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/OmeMetadata.h"

#include "services/importer/figureTexts.h"

#include <gtest/gtest.h>

namespace {

QString ome(const QString& inside, const QString& attributes)
{
    return QStringLiteral(
               "<?xml version=\"1.0\" encoding=\"UTF-8\"?><!-- comment --><OME xmlns=\"http://x\"><Image "
               "ID=\"Image:0\"><Pixels ID=\"Pixels:0\" Type=\"uint16\" SizeX=\"4\" SizeY=\"3\" %1>%2</Pixels>"
               "</Image></OME>")
        .arg(attributes, inside);
}

QString read(const QString& xml, int pages, QStringList* pDoubts = nullptr)
{
    OmeMetadata metadata;
    QString error;
    if (!metadata.parse(xml, "a.ome.tif", pages, &error)) {
        return "error: " + error;
    }
    if (pDoubts != nullptr) {
        *pDoubts = metadata.doubts();
    }
    return figureTexts(metadata.pages());
}

const char* const threeChannels = "SizeC=\"3\" SizeZ=\"1\" SizeT=\"1\" DimensionOrder=\"XYCZT\"";

} // namespace

TEST(OmeMetadataTest, ChannelsTellWavelengthsInTheirUnits)
{
    const QString channels =
        QString::fromUtf8("<Channel ExcitationWavelength=\"640\" EmissionWavelength=\"700\"/>"
                          "<Channel ExcitationWavelength=\"0.64\" ExcitationWavelengthUnit=\"µm\" "
                          "EmissionWavelength=\"7200\" EmissionWavelengthUnit=\"Å\"/>"
                          "<Channel EmissionWavelength=\"740\" EmissionWavelengthUnit=\"nm\"/><TiffData/>");
    EXPECT_EQ(read(ome(channels, threeChannels), 3), "ex640 em700|ex640 em720|em740");
}

TEST(OmeMetadataTest, ChannelNamesServeWithoutWavelengths)
{
    EXPECT_EQ(
        read(ome("<Channel Name=\"ex640_em700\"/><Channel Name=\"720nm\"/><Channel Name=\"DAPI 3\"/>", threeChannels),
             3),
        "ex640 em700|em720|");
}

TEST(OmeMetadataTest, PlanesTellTimesInTheirUnits)
{
    const QString planes = "<TiffData/><Plane TheC=\"0\" TheZ=\"0\" TheT=\"0\" DeltaT=\"0.5\"/>"
                           "<Plane TheC=\"0\" TheZ=\"0\" TheT=\"2\" DeltaT=\"2500\" DeltaTUnit=\"ms\"/>";
    EXPECT_EQ(read(ome(planes, "SizeC=\"1\" SizeZ=\"1\" SizeT=\"3\" TimeIncrement=\"2\" TimeIncrementUnit=\"min\""), 3),
              "t0.5|t120|t2.5");
    EXPECT_EQ(read(ome(QString(), "SizeC=\"1\" SizeZ=\"1\" SizeT=\"3\""), 3), "frame0|frame1|frame2");
}

TEST(OmeMetadataTest, PlanesFollowTheOrderOfDimensions)
{
    const QString channels = "<Channel EmissionWavelength=\"500\"/><Channel EmissionWavelength=\"600\"/><TiffData/>";
    EXPECT_EQ(
        read(ome(channels, "SizeC=\"2\" SizeZ=\"1\" SizeT=\"2\" TimeIncrement=\"1\" DimensionOrder=\"XYCZT\""), 4),
        "em500 t0|em600 t0|em500 t1|em600 t1");
    EXPECT_EQ(
        read(ome(channels, "SizeC=\"2\" SizeZ=\"1\" SizeT=\"2\" TimeIncrement=\"1\" DimensionOrder=\"XYTZC\""), 4),
        "em500 t0|em500 t1|em600 t0|em600 t1");
}

TEST(OmeMetadataTest, TiffDataSaysWhichPageIsWhat)
{
    const QString channels = "<Channel EmissionWavelength=\"500\"/><Channel EmissionWavelength=\"600\"/>"
                             "<Channel EmissionWavelength=\"700\"/>"
                             "<TiffData IFD=\"0\" FirstC=\"2\"/><TiffData IFD=\"1\" FirstC=\"0\" PlaneCount=\"2\"/>";
    EXPECT_EQ(read(ome(channels, threeChannels), 4), "em700|em500|em600|");
}

TEST(OmeMetadataTest, OfASetOfFilesEachGetsItsOwn)
{
    const QString channels = "<Channel EmissionWavelength=\"500\"/><Channel EmissionWavelength=\"600\"/>"
                             "<Channel EmissionWavelength=\"700\"/>"
                             "<TiffData FirstC=\"0\" IFD=\"0\"><UUID FileName=\"b.ome.tif\">urn:1</UUID></TiffData>"
                             "<TiffData FirstC=\"1\" IFD=\"0\"><UUID FileName=\"a.ome.tif\">urn:2</UUID></TiffData>";
    EXPECT_EQ(read(ome(channels, threeChannels), 1), "em600");
    // One file that has been given another name is still itself.
    const QString one = "<Channel EmissionWavelength=\"500\"/>"
                        "<TiffData IFD=\"0\"><UUID FileName=\"old.ome.tif\">urn:1</UUID></TiffData>";
    EXPECT_EQ(read(ome(one, "SizeC=\"1\""), 1), "em500");
}

TEST(OmeMetadataTest, UnitsThatAreNotKnownAreDoubts)
{
    QStringList doubts;
    EXPECT_EQ(
        read(ome("<Channel EmissionWavelength=\"1.7\" EmissionWavelengthUnit=\"eV\"/>", "SizeC=\"1\""), 1, &doubts),
        "");
    EXPECT_EQ(doubts, QStringList("EmissionWavelength \"1.7 eV\" is not understood"));
}

TEST(OmeMetadataTest, BrokenTextIsRefusedWithItsPlace)
{
    const QString whole = ome("<Channel EmissionWavelength=\"500\"/>", threeChannels);
    for (int tenth = 1; tenth < 10; ++tenth) {
        EXPECT_TRUE(read(whole.left(whole.size() * tenth / 10), 3).startsWith("error: line 1 of the OME-XML: "))
            << tenth;
    }
    for (const char* attributes :
         {"SizeC=\"0\"", "SizeC=\"-1\"", "SizeC=\"x\"", "SizeC=\"99999999999\"",
          "SizeC=\"1000000\" SizeZ=\"1000000\" SizeT=\"1000000\"", "DimensionOrder=\"XYZZZ\""}) {
        EXPECT_TRUE(read(ome(QString(), attributes), 3).startsWith("error: ")) << attributes;
    }
    EXPECT_TRUE(read(ome("<Channel/><Channel/>", "SizeC=\"1\""), 3).contains("more channels than SizeC"));
}

TEST(OmeMetadataTest, EntitiesAreNotExpanded)
{
    QString bomb = "<?xml version=\"1.0\"?><!DOCTYPE OME [<!ENTITY a \"aaaaaaaaaa\">";
    for (char c = 'b'; c < 'k'; ++c) {
        bomb += QStringLiteral("<!ENTITY %1 \"").arg(c) +
                QStringLiteral("&%1;").arg(static_cast<char>(c - 1)).repeated(10) + "\">";
    }
    bomb += "]><OME><Image Name=\"&j;\"/></OME>";
    EXPECT_TRUE(read(bomb, 1).startsWith("error: line 1 of the OME-XML: "));
    EXPECT_TRUE(read("<!DOCTYPE OME SYSTEM \"file:///etc/passwd\"><OME></OME>", 1).contains("document type"));
}

TEST(OmeMetadataTest, HugeAndRepeatedTextsEnd)
{
    EXPECT_EQ(read(QString(16 * 1024 * 1024 + 1, ' '), 1), "error: the OME-XML is too large");
    const QString again = QStringLiteral("<TiffData IFD=\"0\" PlaneCount=\"1000\"/>").repeated(2000);
    EXPECT_TRUE(read(ome(again, "SizeT=\"1000\""), 1000).contains("again and again"));
}

TEST(OmeMetadataTest, AnyOtherTextIsNotOme)
{
    EXPECT_TRUE(OmeMetadata::isOme("<?xml?><OME xmlns=\"x\">"));
    EXPECT_TRUE(OmeMetadata::isOme("<ome:OME >"));
    EXPECT_FALSE(OmeMetadata::isOme("ImageJ=1.53"));
    EXPECT_FALSE(OmeMetadata::isOme("<OMELETTE>"));
}

TEST(OmeMetadataTest, ExposuresAndSizeOfAPixelAreFactsThatNeverRaiseADoubt)
{
    const QString inside = "<Channel EmissionWavelength=\"700\"/><Channel EmissionWavelength=\"720\"/><TiffData/>"
                           "<Plane TheC=\"0\" TheZ=\"0\" TheT=\"0\" ExposureTime=\"250\" ExposureTimeUnit=\"ms\"/>"
                           "<Plane TheC=\"1\" TheZ=\"0\" TheT=\"0\" ExposureTime=\"-1\"/>";
    OmeMetadata metadata;
    QString error;
    const auto parse = [&](const char* sizes) {
        return metadata.parse(ome(inside, QStringLiteral("SizeC=\"2\" ") + sizes), "a.ome.tif", 2, &error);
    };
    ASSERT_TRUE(parse("PhysicalSizeX=\"0.5\" PhysicalSizeXUnit=\"mm\" PhysicalSizeY=\"500\"")) << qPrintable(error);
    EXPECT_TRUE(metadata.doubts().isEmpty());
    EXPECT_EQ(metadata.facts()[0].exposure, 0.25);
    EXPECT_FALSE(metadata.facts()[1].exposure);
    EXPECT_EQ(metadata.facts()[1].pixelSize, 500.0);
    ASSERT_TRUE(parse("PhysicalSizeX=\"1\" PhysicalSizeY=\"2\""));
    EXPECT_FALSE(metadata.facts()[0].pixelSize) << "a pixel that is no square";
    ASSERT_TRUE(parse("PhysicalSizeX=\"1\" PhysicalSizeXUnit=\"furlong\""));
    EXPECT_TRUE(metadata.doubts().isEmpty());
    EXPECT_FALSE(metadata.facts()[0].pixelSize);
}

TEST(OmeMetadataTest, NotesCountInTheProgramsOwnNamespaceAlone)
{
    const auto facts = [](const QString& name) {
        QString xml = ome("<Channel/><TiffData/>", "SizeC=\"1\"");
        xml.replace("</Image>", QStringLiteral("</Image><StructuredAnnotations><MapAnnotation Namespace=\"%1\"><Value>"
                                               "<M K=\"unit\">radiance</M><M K=\"isotope\">F-18</M>"
                                               "<M K=\"start 1\">2024-03-05T09:30:00.5</M></Value></MapAnnotation>"
                                               "</StructuredAnnotations>")
                                    .arg(name));
        OmeMetadata metadata;
        QString error;
        EXPECT_TRUE(metadata.parse(xml, "a.tif", 1, &error)) << qPrintable(error);
        return metadata.facts().value(0);
    };
    const ImageFacts own = facts(OmeMetadata::kNamespace);
    EXPECT_EQ(own.unit, "Radiance");
    EXPECT_EQ(own.isotope, "F-18");
    EXPECT_EQ(own.start, "2024-03-05T09:30:00.500");
    EXPECT_TRUE(facts("http://x").unit.isEmpty());
}
