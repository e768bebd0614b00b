// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddTexts.h"

#include "odd_inputs/OddCase.h"
#include "odd_inputs/OddTiff.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>

namespace OddTexts {

namespace {

QString beside(const QString& path, const char* name)
{
    return QFileInfo(path).path() + QLatin1Char('/') + QLatin1String(name);
}

QByteArray floatMap()
{
    return OddTiff()
        .set(OddTiff::Bits, OddTiff::Short, {32})
        .set(OddTiff::SampleFormat, OddTiff::Short, {3})
        .set(OddTiff::RowsPerStrip, OddTiff::Short, {32})
        .setBlocks({QByteArray(4096, '\x3f')})
        .bytes();
}

} // namespace

QByteArray sections(const QByteArray& text)
{
    return "# Orvia sections 1\n\n" + text + "\n# end\n";
}

QByteArray clickInfo(const QByteArray& clickNumber, const QByteArray& emission)
{
    return sections(
        "[ClickNumber]\nClickNumber: " + clickNumber +
        "\n\n[luminescent image] Luminescent image\nExcitation Filter: Block\nEmission Filter: " + emission +
        "\nExposure Time Sec: 2.5\nBinning Factor: 4\nProbe: a dye\nSubject Type: phantom\n\n"
        "[Camera System Info]\nPixel Size cm: 0.01\n");
}

QByteArray sequenceInfo(int datasets)
{
    QByteArray text = "[Sequence]\nSequence ID: odd\nSequence Name: Odd one\nKind: spectral\nFluorescence: 0\n"
                      "Transillumination: 0\n\n[Datasets]\nDataset Count: " +
                      QByteArray::number(datasets) + "\n";
    for (int i = 1; i <= datasets; ++i) {
        text += "Dataset: C" + QByteArray::number(i) + "\n";
    }
    return sections(text);
}

QByteArray many(const QByteArray& begin, const QByteArray& line, int count)
{
    QByteArray text = begin;
    const QList<QByteArray> parts = line.split('%');
    for (int i = 0; i < count; ++i) {
        text += parts.join(QByteArray::number(i + 1));
    }
    return text;
}

QByteArray library()
{
    return "$,Note,two dyes\n$,NumSpec,2\n$,Color,red,blue\n$,Origin,lab,lab\n$,Select,1,1\n"
           "Excitation,Emission,A,B\nOpen,500nm,0.5,0.1\nOpen,520nm,1,0.25\nOpen,540nm,0.3,1\n";
}

QByteArray enviHeader()
{
    return "ENVI\ndescription = {a cube\n of two bands}\nsamples = 32\nlines = 32\nbands = 2\nheader offset = 0\n"
           "data type = 4\ninterleave = bsq\nbyte order = 0\nwavelength = {500, 520}\nwavelength units = nm\n";
}

QByteArray csvCube()
{
    QByteArray text = "x,y,em500,em520\n";
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            text += QByteArray::number(x) + ',' + QByteArray::number(y) + ",10.25,1.125\n";
        }
    }
    return text;
}

QByteArray imagesTable()
{
    return "file,excitation,emission\ncells_00.tif,488,510\ncells_01.tif,488,530\ncells_02.tif,488,550\n";
}

QByteArray summary()
{
    return "{\n  \"unit\": \"Counts\",\n  \"binning\": 4,\n  \"components\": [\n"
           "    {\"name\": \"A\", \"map\": \"01_A.tif\"},\n    {\"name\": \"B\", \"map\": \"02_B.tif\"}\n  ]\n}\n";
}

QByteArray savedIndex()
{
    return sections("[SPUM] SPUM\nMenuName: one\nFileName: SpecUnmix/SPUM-20240131-235959.xml\n");
}

QByteArray savedResult()
{
    QByteArray text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE ORV.SpectralUnmixingResults.Data>\n"
                      "<SpectralUnmixingResults Date.Time=\"1/31/24, 11:59 PM\" Version=\"2\" Note=\"\">\n"
                      " <SeqDataset id=\"odd\"/>\n <SelectedKeyPairs>\n";
    for (const char* emission : {"500", "520", "540"}) {
        text += QByteArray("  <KeyPair Col=\"Block\" Row=\"") + emission + "\"/>\n";
    }
    text += " </SelectedKeyPairs>\n <SpectrumList>\n";
    for (const char* name : {"A", "B"}) {
        const QByteArray component = name[0] == 'A' ? "Component0" : "Component1";
        text += "  <" + component + " Version=\"1\" Selected=\"1\" Name=\"" + name +
                "\" Color=\"red\" Shape=\"1\" Axis=\"Emission\" Origin=\"lab\">\n";
        for (const char* emission : {"500", "520", "540"}) {
            text += QByteArray("   <Spectrum Col=\"Block\" Row=\"") + emission + "\" Data=\"" +
                    (name[0] == 'A' && emission[1] == '2' ? "1" : "0.25") + "\"/>\n";
        }
        text += "  </" + component + ">\n";
    }
    return text + " </SpectrumList>\n <DataMask Version=\"1\" ImageBinning=\"4\" ImageWidth=\"32\" ImageHeight=\"32\" "
                  "UseMask=\"1\" Pixels=\"2\">\n  <Index Text.Data=\"0100000002000000\"/>\n </DataMask>\n <Results>\n"
                  "  <Method value=\"Library\"/>\n  <DataUnit value=\"Counts\"/>\n </Results>\n"
                  " <ImageControl ColorMap=\"1\" Reverse=\"1\" Logscale=\"0\">\n"
                  "  <MinMaxRatio MinRatio=\"0.1\" MaxRatio=\"0.9\"/>\n </ImageControl>\n"
                  "</SpectralUnmixingResults>\n";
}

QByteArray onePixelPng()
{
    QImage image(1, 1, QImage::Format_Grayscale8);
    image.fill(Qt::white);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data();
}

void putDataset(const QString& path, const QByteArray& info)
{
    putFile(path, info);
    putFile(beside(path, "luminescent.TIF"), OddTiff().bytes());
}

void putSequence(const QString& path, const QByteArray& info)
{
    putFile(path, info);
    for (int i = 1; i <= 3; ++i) {
        const QByteArray folder = "C" + QByteArray::number(i);
        putDataset(beside(path, folder + "/ClickInfo.txt"),
                   clickInfo("N" + folder, QByteArray::number(480 + 20 * i) + "nm"));
    }
    putFile(beside(path, "C1/photograph.TIF"), OddTiff().bytes());
}

void putResult(const QString& path, const QByteArray& text)
{
    putFile(path, text);
    putFile(beside(path, "spectra.csv"), library());
    putFile(beside(path, "01_A.tif"), floatMap());
    putFile(beside(path, "02_B.tif"), floatMap());
}

void putSavedResult(const QString& path, const QByteArray& index, const QByteArray& document)
{
    putSequence(path, sequenceInfo(3));
    putFile(beside(path, "XML/SPUM.txt"), index);
    putFile(beside(path, "XML/SpecUnmix/SPUM-20240131-235959.xml"), document);
}

} // namespace OddTexts
