// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddCase.h"
#include "odd_inputs/OddTexts.h"
#include "odd_inputs/OddTiff.h"

namespace {

using C = OddCase;
using T = OddTiff;

const QString file = QStringLiteral("stack.tif");

// A TIFF file of one page with this description.
OddCase described(const QByteArray& name, const std::function<QByteArray()>& text, OddCase::Outcome outcome,
                  const QString& says)
{
    return {"Metadata" + name,
            OddReaders::stack(),
            file,
            [text](const QString& path) { putFile(path, OddTiff().setText(T::Description, text()).bytes()); },
            outcome,
            says};
}

QByteArray ome(const QByteArray& pixels)
{
    return "<?xml version=\"1.0\"?><OME xmlns=\"http://www.openmicroscopy.org/Schemas/OME/2016-06\"><Image "
           "ID=\"Image:0\">"
           "<Pixels SizeC=\"1\" SizeZ=\"1\" SizeT=\"1\" DimensionOrder=\"XYCZT\">" +
           pixels + "</Pixels></Image></OME>";
}

const QByteArray channel = "<Channel ExcitationWavelength=\"488\" EmissionWavelength=\"520\"/>";

QString unused(const char* reason)
{
    return QStringLiteral("stack.tif: %1; the metadata are not used").arg(QLatin1String(reason));
}

OddCases omeCases()
{
    return {
        described(
            "OmeSound", [] { return ome(channel); }, C::Silent, "1 images, OME channel 1, OME channel 1"),
        described(
            "OmeInLatin1", [] { return ome("<Channel Name=\"gr\xfcn\" EmissionWavelength=\"520\"/>"); }, C::Silent,
            "1 images, OME channel 1"),
        described(
            "OmeWithDocumentType",
            [] {
                return ome(channel).replace("<OME", "<!DOCTYPE OME [<!ENTITY a \"aa\"><!ENTITY b \"&a;&a;\">]><OME");
            },
            C::Warned, unused("line {n} of the OME-XML: a document type or an entity is not accepted")),
        described(
            "OmeOfNegativeSize", [] { return ome(channel).replace("SizeC=\"1\"", "SizeC=\"-1\""); }, C::Warned,
            unused("line {n} of the OME-XML: SizeC is \"-1\"")),
        described(
            "OmeOfHugeSize", [] { return ome(channel).replace("SizeT=\"1\"", "SizeT=\"99999999999\""); }, C::Warned,
            unused("line {n} of the OME-XML: SizeT is \"99999999999\"")),
        described(
            "OmeOfTooManyPlanes",
            [] {
                return ome(channel)
                    .replace("SizeT=\"1\" ", "SizeT=\"999999\" ")
                    .replace("SizeZ=\"1\"", "SizeZ=\"999999\"");
            },
            C::Warned, unused("line {n} of the OME-XML: the planes are too many")),
        described(
            "OmeOfAMillionPlanesInDepth", [] { return ome(channel).replace("SizeZ=\"1\"", "SizeZ=\"999999\""); },
            C::Refused,
            "{path}: it has 999999 planes in depth (Z), which are no channels; --z N takes one of them, --z max or "
            "mean makes one of all, --channels all for channels"),
        described(
            "OmeOfAMillionTimesOfOneToldChannel",
            [] {
                return ome(channel).replace("SizeC=\"1\"", "SizeC=\"2\"").replace("SizeT=\"1\"", "SizeT=\"999999\"");
            },
            C::Silent, "1 images, OME channel 1, OME channel 1, OME TheT"),
        described(
            "OmeWithMoreChannelsThanTold", [] { return ome(channel + channel); }, C::Warned,
            unused("line {n} of the OME-XML: there are more channels than SizeC")),
        described(
            "OmeWithUnknownUnit",
            [] {
                return ome(channel).replace("EmissionWavelength", "EmissionWavelengthUnit=\"inch\" EmissionWavelength");
            },
            C::Warned, "stack.tif: EmissionWavelength \"520 inch\" is not understood"),
        described(
            "OmeWithAMillionAttributes", [] { return ome(OddTexts::many("<Channel", " a%=\"\"", 1000000) + "/>"); },
            C::Warned, unused("the OME-XML has an element of more than 64 KiB")),
        described(
            "OmeWithAMillionElements", [] { return ome(channel + QByteArray("<Plane/>").repeated(1000000)); },
            C::Silent, "1 images, OME channel 1, OME channel 1"),
        described(
            "OmeNestedHalfAMillionDeep", [] { return ome(QByteArray("<a>").repeated(500000)); }, C::Warned,
            unused("line 1 of the OME-XML: Opening and ending tag mismatch.")),
        described(
            "OmeOfSeventeenMegabytes", [] { return ome(QByteArray(17 << 20, ' ')); }, C::Refused,
            "{path}: a text of {n} bytes is too large"),
    };
}

OddCases imageJCases()
{
    return {
        described(
            "ImageJOfHugeCounts",
            [] {
                return QByteArray(
                    "ImageJ=1.53\nimages=2147483647\nframes=2147483647\nslices=2147483647\nfinterval=1\n");
            },
            C::Warned, "stack.tif: ImageJ's description tells of 2147483647 images, the file has 1 pages"),
        described(
            "ImageJOfNegativeCounts", [] { return QByteArray("ImageJ=1.53\nimages=-1\nframes=-7\nfinterval=1\n"); },
            C::Silent, "1 images"),
        described(
            "ImageJWithUnknownUnit", [] { return QByteArray("ImageJ=1.53\nframes=3\nfinterval=1\ntunit=fortnight\n"); },
            C::Warned, "stack.tif: ImageJ's unit of time \"fortnight\" is not known"),
        described(
            "ImageJWithMixedLineEnds", [] { return QByteArray("ImageJ=1.53\r\nframes=3\r\nfinterval=2\rtunit=s\n"); },
            C::Silent, "1 images, ImageJ finterval"),
        described(
            "ImageJWithAMillionKeys",
            [] { return OddTexts::many("ImageJ=1.53\nframes=3\nfinterval=2\n", "k%=v\n", 1000000); }, C::Silent,
            "1 images, ImageJ finterval"),
        {"MetadataPageNameOf15Megabytes", OddReaders::stack(), file,
         [](const QString& path) {
             putFile(path, OddTiff().setText(T::PageName, QByteArray("em700 ").repeated(2 << 20)).bytes());
         },
         C::Silent, "1 images"},
        {"MetadataLabelsWithoutEnd", OddReaders::stack(), file,
         [](const QString& path) {
             // 12 bytes of table claim four thousand million labels.
             QByteArray table("IJIJlabl\xff\xff\xff\xff", 12);
             std::vector<quint64> sizes(1000, 0);
             sizes[0] = 12;
             OddTiff image;
             image.setText(T::Description, "ImageJ=1.53\nframes=3\nfinterval=2\n").set(50838, T::Long, sizes);
             image.setText(50839, table);
             QByteArray bytes = image.bytes();
             putFile(path, bytes);
         },
         C::Silent, "1 images, ImageJ finterval"},
    };
}

} // namespace

OddCases metadataCases()
{
    // The description is cut, not the file: what is left of it is no XML.
    OddCases cases;
    const QByteArray whole = ome(channel);
    for (int tenths = 1; tenths < 10; ++tenths) {
        const QByteArray part = whole.left(whole.size() * tenths / 10);
        const bool bRecognised = part.contains("<OME ");
        cases.push_back(described(
            "OmeCutAt" + QByteArray::number(10 * tenths) + "Percent", [part] { return part; },
            bRecognised ? C::Warned : C::Silent,
            bRecognised ? unused("line 1 of the OME-XML: Premature end of document.")
                        : QStringLiteral("1 images{...}")));
    }
    for (const OddCases& more : {omeCases(), imageJCases()}) {
        cases.insert(cases.end(), more.begin(), more.end());
    }
    return cases;
}
