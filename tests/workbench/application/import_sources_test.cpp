// SPDX-License-Identifier: GPL-3.0-or-later
// Every kind of source through the dialog, from what is shown of it to the pixels of the sequence.
#include "ImportDialogFixture.h"

#include "platform/orvimage/TiffStackWriter.h"

#include <QComboBox>
#include <QLabel>

namespace {

using ImportSourcesTest = ImportDialogFixture;

TEST_F(ImportSourcesTest, TheChannelsOfAnOmeTiffBecomeASequence)
{
    const QString name = m_folder.filePath("stack/cells.ome.tif");
    const char* const kOme =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><OME xmlns=\"http://www.openmicroscopy.org/Schemas/OME/2016-06\">"
        "<Image ID=\"Image:0\"><Pixels ID=\"Pixels:0\" DimensionOrder=\"XYCZT\" Type=\"uint16\" SizeX=\"16\" "
        "SizeY=\"16\" SizeC=\"2\" SizeZ=\"1\" SizeT=\"1\">"
        "<Channel ID=\"Channel:0:0\" ExcitationWavelength=\"640\" EmissionWavelength=\"700\"/>"
        "<Channel ID=\"Channel:0:1\" ExcitationWavelength=\"640\" EmissionWavelength=\"720\"/>"
        "<TiffData/></Pixels></Image></OME>";
    TiffStackWriter writer;
    QString error;
    ASSERT_TRUE(writer.begin(name, 0, &error)) << qPrintable(error);
    TiffWriteOptions options;
    options.description = kOme;
    ASSERT_TRUE(writer.add(ramp(100), options, &error)) << qPrintable(error);
    ASSERT_TRUE(writer.add(ramp(500), TiffWriteOptions(), &error)) << qPrintable(error);
    ASSERT_TRUE(writer.finish(&error)) << qPrintable(error);
    open({name});
    EXPECT_EQ(child<QLabel>("m_pSummaryLabel").text(), "2 images: fluorescence, 1 excitation, 2 emissions");
    EXPECT_EQ(m_pDialog->table().text(1, ImportTable::Origin), "OME channel 2");
    look::keep(*m_pDialog, "import_ome");
    import();
    EXPECT_EQ(m_pDialog->sequenceFolder(), m_folder.filePath("stack/cells_sequence"));
    CORVSequenceDataset sequence;
    openSequence(sequence);
    ASSERT_EQ(sequence.getDatasets().size(), 2);
    EXPECT_EQ(sequence.getDatasets().at(1)->getExcitationFilter(), "640nm");
    EXPECT_EQ(sequence.getDatasets().at(1)->getEmissionFilter(), "720nm");
    EXPECT_EQ(pixel(sequence, 0, 3, 2), 135.0);
    EXPECT_EQ(pixel(sequence, 1, 3, 2), 535.0);
}

TEST_F(ImportSourcesTest, TheBandsOfAnEnviCubeBecomeASequence)
{
    QByteArray cube;
    for (int band = 0; band < 3; ++band) {
        for (int i = 0; i < 12; ++i) {
            cube.append(static_cast<char>(20 * band + i));
        }
    }
    writeFile("leaf.img", cube);
    const QString header = writeFile("leaf.hdr", "ENVI\nsamples = 4\nlines = 3\nbands = 3\ndata type = 1\n"
                                                 "interleave = bsq\nwavelength = {0.51, 0.53, 0.55}\n"
                                                 "wavelength units = Micrometers\n");
    open({header});
    EXPECT_EQ(child<QLabel>("m_pSummaryLabel").text(), "3 images: luminescence, 3 emissions");
    EXPECT_EQ(child<QComboBox>("m_pKindBox").currentIndex(), static_cast<int>(ImportTable::Kind::Luminescence));
    look::keep(*m_pDialog, "import_envi");
    import();
    CORVSequenceDataset sequence;
    openSequence(sequence);
    ASSERT_EQ(sequence.getDatasets().size(), 3);
    EXPECT_FALSE(sequence.isFluorescence);
    EXPECT_EQ(sequence.getDatasets().at(2)->getEmissionFilter(), "550nm");
    EXPECT_EQ(pixel(sequence, 2, 1, 2), 49.0);
    // Its data file tells the same.
    open({m_folder.filePath("stack/leaf.img")});
    EXPECT_EQ(m_pDialog->table().count(), 3);
    EXPECT_EQ(m_pDialog->table().text(0, ImportTable::Emission), "510");
}

TEST_F(ImportSourcesTest, TheColumnsOfACsvCubeBecomeASequence)
{
    QByteArray text = "x,y,ex640_em700,ex640_em720\n";
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) {
            text += QStringLiteral("%1,%2,%3,%4\n").arg(column).arg(row).arg(10 * row + column).arg(0.5).toLatin1();
        }
    }
    open({writeFile("cube.csv", text)});
    EXPECT_EQ(child<QLabel>("m_pSummaryLabel").text(), "2 images: fluorescence, 1 excitation, 2 emissions")
        << qPrintable(messages());
    look::keep(*m_pDialog, "import_csv");
    import();
    CORVSequenceDataset sequence;
    openSequence(sequence);
    ASSERT_EQ(sequence.getDatasets().size(), 2);
    EXPECT_EQ(sequence.getDatasets().at(1)->getEmissionFilter(), "720nm");
    EXPECT_EQ(pixel(sequence, 0, 3, 2), 23.0);
    EXPECT_EQ(pixel(sequence, 1, 3, 2), 0.5);
}

} // namespace
