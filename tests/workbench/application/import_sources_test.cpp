// SPDX-License-Identifier: GPL-3.0-or-later
// Every kind of source through the dialog, from what is shown of it to the pixels of the sequence.
#include "ImportDialogFixture.h"
#include "ScriptedResponder.h"

#include "platform/orvimage/TiffStackWriter.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QLabel>

namespace {

const char* const kTwoChannels = "<Channel ID=\"Channel:0:0\" EmissionWavelength=\"500\"/>"
                                 "<Channel ID=\"Channel:0:1\" EmissionWavelength=\"600\"/>";

class ImportSourcesTest : public ImportDialogFixture
{
protected:
    // A ramp from each base on, a page each, in a file with these dimensions and channels.
    QString writeOme(const QString& name, const QString& dimensions, const QString& channels,
                     const QVector<double>& bases)
    {
        const QString path = m_folder.filePath("stack/" + name);
        TiffStackWriter writer;
        QString error;
        TiffWriteOptions options;
        options.description =
            QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
                           "<OME xmlns=\"http://www.openmicroscopy.org/Schemas/OME/2016-06\"><Image ID=\"Image:0\">"
                           "<Pixels ID=\"Pixels:0\" Type=\"uint16\" SizeX=\"16\" SizeY=\"16\" %1>%2<TiffData/>"
                           "</Pixels></Image></OME>")
                .arg(dimensions, channels)
                .toUtf8();
        EXPECT_TRUE(writer.begin(path, 0, &error)) << qPrintable(error);
        for (const double base : bases) {
            EXPECT_TRUE(writer.add(ramp(base), options, &error)) << qPrintable(error);
            options.description = QByteArray();
        }
        EXPECT_TRUE(writer.finish(&error)) << qPrintable(error);
        return path;
    }
    // As a user does, who opens the list and takes an entry.
    void choose(const char* name, const QString& entry)
    {
        auto& box = child<QComboBox>(name);
        const int row = box.findText(entry);
        ASSERT_GE(row, 0) << qPrintable(entry);
        box.setFocus();
        box.showPopup();
        box.view()->setCurrentIndex(box.model()->index(row, 0));
        QTest::keyClick(box.view(), Qt::Key_Return);
        wait();
    }
};

TEST_F(ImportSourcesTest, TheChannelsOfAnOmeTiffBecomeASequence)
{
    const QString name =
        writeOme("cells.ome.tif", "DimensionOrder=\"XYCZT\" SizeC=\"2\" SizeZ=\"1\" SizeT=\"1\"",
                 "<Channel ID=\"Channel:0:0\" ExcitationWavelength=\"640\" EmissionWavelength=\"700\"/>"
                 "<Channel ID=\"Channel:0:1\" ExcitationWavelength=\"640\" EmissionWavelength=\"720\"/>",
                 {100, 500});
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

TEST_F(ImportSourcesTest, OfAStackInDepthAPlaneOrWhatIsMadeOfAllIsChosenInTheDialog)
{
    const QString name = writeOme("deep.ome.tif", "DimensionOrder=\"XYZCT\" SizeC=\"2\" SizeZ=\"3\" SizeT=\"1\"",
                                  kTwoChannels, {100, 400, 200, 900, 700, 800});
    open({name});
    EXPECT_TRUE(messages().contains("it has 3 planes in depth (Z), which are no channels; \"Depth\" takes one of them"))
        << qPrintable(messages());
    EXPECT_FALSE(importButton().isEnabled());
    EXPECT_TRUE(child<QComboBox>("m_pDepthBox").hasFocus());
    EXPECT_FALSE(child<QComboBox>("m_pTimeBox").isVisible());
    look::keep(*m_pDialog, "import_depth");
    choose("m_pDepthBox", "2");
    EXPECT_EQ(child<QLabel>("m_pSummaryLabel").text(), "2 images: luminescence, 2 emissions");
    EXPECT_EQ(m_pDialog->table().text(0, ImportTable::Image), "deep.ome.tif page 2");
    EXPECT_TRUE(child<QComboBox>("m_pDepthBox").hasFocus());
    QTest::keyClick(&child<QComboBox>("m_pDepthBox"), Qt::Key_Down);
    wait();
    EXPECT_EQ(m_pDialog->table().text(0, ImportTable::Image), "deep.ome.tif page 3");
    QTest::keyClick(&child<QComboBox>("m_pDepthBox"), Qt::Key_Up);
    wait();
    // What cannot be taken leaves the table of before, and the box tells of that.
    choose("m_pDepthBox", "not chosen");
    EXPECT_EQ(child<QComboBox>("m_pDepthBox").currentText(), "2");
    EXPECT_EQ(m_pDialog->table().count(), 2);
    choose("m_pDepthBox", "each a channel");
    EXPECT_EQ(m_pDialog->table().count(), 6);
    choose("m_pDepthBox", "largest of all");
    EXPECT_EQ(m_pDialog->table().text(1, ImportTable::Image), "deep.ome.tif max of the pages 4, 5, 6");
    look::keep(*m_pDialog, "import_depth_projected");
    import();
    CORVSequenceDataset sequence;
    openSequence(sequence);
    ASSERT_EQ(sequence.getDatasets().size(), 2);
    EXPECT_EQ(pixel(sequence, 0, 3, 2), 435.0);
    EXPECT_EQ(pixel(sequence, 1, 3, 2), 935.0);
}

TEST_F(ImportSourcesTest, ATableOfTheUsersOwnNamesThePlanesItself)
{
    const QString name = writeOme("deep.ome.tif", R"(DimensionOrder="XYZCT" SizeC="2" SizeZ="2" SizeT="1")",
                                  kTwoChannels, {100, 400, 200, 900});
    open({name});
    auto& depth = child<QComboBox>("m_pDepthBox");
    EXPECT_TRUE(depth.isEnabled());
    ScriptedResponder files;
    files.m_file = writeFile("mine.csv", "file,page,emission\ndeep.ome.tif,2,500\ndeep.ome.tif,4,600\n");
    child<QPushButton>("m_pTableButton").click();
    EXPECT_EQ(m_pDialog->table().count(), 2);
    EXPECT_FALSE(depth.isEnabled()) << "it would tell nothing";
    import();
    CORVSequenceDataset sequence;
    openSequence(sequence);
    ASSERT_EQ(sequence.getDatasets().size(), 2);
    EXPECT_EQ(pixel(sequence, 0, 3, 2), 435.0);
    EXPECT_EQ(pixel(sequence, 1, 3, 2), 935.0);
}

TEST_F(ImportSourcesTest, OfChannelsAtSeveralTimesThoseOfOneTimeOrTheTimesOfOneChannelAreChosen)
{
    const QString name =
        writeOme("both.ome.tif", "DimensionOrder=\"XYCZT\" SizeC=\"2\" SizeZ=\"2\" SizeT=\"3\" TimeIncrement=\"5\"",
                 kTwoChannels, {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120});
    open({name});
    EXPECT_TRUE(child<QComboBox>("m_pDepthBox").isVisible());
    EXPECT_TRUE(child<QComboBox>("m_pTimeBox").isVisible());
    EXPECT_TRUE(child<QComboBox>("m_pChannelBox").isVisible());
    choose("m_pDepthBox", "1");
    EXPECT_TRUE(messages().contains("\"Time\" takes the channels of one time or of all, \"Channel\" the times of one"))
        << qPrintable(messages());
    EXPECT_EQ(child<QComboBox>("m_pDepthBox").currentText(), "1") << "what was chosen first is not lost by the second";
    choose("m_pChannelBox", "2");
    EXPECT_EQ(child<QLabel>("m_pSummaryLabel").text(), "3 images: a series of times");
    EXPECT_EQ(child<QComboBox>("m_pKindBox").currentIndex(), static_cast<int>(ImportTable::Kind::Times));
    look::keep(*m_pDialog, "import_times_of_channel");
    choose("m_pChannelBox", "all");
    EXPECT_EQ(child<QComboBox>("m_pChannelBox").currentText(), "2");
    choose("m_pTimeBox", "mean of all");
    choose("m_pDepthBox", "largest of all");
    EXPECT_EQ(child<QComboBox>("m_pTimeBox").currentText(), "largest of all") << "both are projected in one way";
    choose("m_pChannelBox", "all");
    EXPECT_EQ(child<QLabel>("m_pSummaryLabel").text(), "2 images: luminescence, 2 emissions");
    import();
    CORVSequenceDataset sequence;
    openSequence(sequence);
    ASSERT_EQ(sequence.getDatasets().size(), 2);
    EXPECT_EQ(pixel(sequence, 0, 3, 2), 145.0);
    EXPECT_EQ(pixel(sequence, 1, 3, 2), 155.0);
    // Another source has no such planes.
    writeNamed();
    open({m_folder.filePath("stack/ex640_em700.tif")});
    EXPECT_FALSE(child<QComboBox>("m_pDepthBox").isVisible());
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
