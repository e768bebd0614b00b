// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ImageFinder.h"

#include "platform/orvimage/TiffStackWriter.h"
#include "services/importer/ImporterFixture.h"
#include "services/importer/InferredTable.h"

#include <QImage>

namespace {

class ImageFinderTest : public ImporterFixture
{
protected:
    bool find(const QString& source)
    {
        m_error.clear();
        return m_finder.find(source, ImageFinder::Progress(), &m_error, false, m_choice);
    }
    QString refusal(const QString& source)
    {
        EXPECT_FALSE(find(source));
        return m_error;
    }
    // The table of what was found, without its first line; its doubts instead when there are any.
    QString table(const QString& source, std::optional<double> interval = std::nullopt)
    {
        if (!find(source)) {
            return "error: " + m_error;
        }
        const InferredTable table(m_finder.images(), m_finder.doubts(), interval);
        const QString csv = QString::fromUtf8(table.toCsv());
        return table.doubts().isEmpty() ? csv.mid(csv.indexOf('\n') + 1) : "doubts: " + table.doubts().join("; ");
    }

    ImageFinder m_finder;
    PlaneChoice m_choice;
    QString m_error;
};

const char* const omeOfThree =
    "<?xml version=\"1.0\"?><OME xmlns=\"x\"><Image><Pixels SizeC=\"3\" SizeZ=\"1\" SizeT=\"1\">"
    "<Channel ExcitationWavelength=\"640\" EmissionWavelength=\"700\"/>"
    "<Channel ExcitationWavelength=\"640\" EmissionWavelength=\"720\"/>"
    "<Channel ExcitationWavelength=\"640\" EmissionWavelength=\"740\"/>"
    "<TiffData/></Pixels></Image></OME>";

} // namespace

TEST_F(ImageFinderTest, FilesComeByNameWithNumbersByValue)
{
    for (const char* name : {"in/s10 ex640_em740.tif", "in/s9 ex640_em720.TIF", "in/s1 ex640_em700.tiff"}) {
        writeRamp(QString::fromUtf8(name), 1);
    }
    EXPECT_EQ(table(path("in")), "s1 ex640_em700.tiff,640,700,\"name: ex640, em700\"\n"
                                 "s9 ex640_em720.TIF,640,720,\"name: ex640, em720\"\n"
                                 "s10 ex640_em740.tif,640,740,\"name: ex640, em740\"\n");
    EXPECT_TRUE(m_finder.warnings().isEmpty());
}

TEST_F(ImageFinderTest, NamesBeyondAsciiAndWithBlanksAreKept)
{
    writeRamp(QString::fromUtf8("in/Größe 640-700.tif"), 1);
    writeRamp(QString::fromUtf8("in/Größe 640-720.tif"), 1);
    EXPECT_EQ(table(path("in")), QString::fromUtf8("Größe 640-700.tif,640,700,name: 640-700\n"
                                                   "Größe 640-720.tif,640,720,name: 640-720\n"));
}

TEST_F(ImageFinderTest, OtherFilesArePassedOverWithAWord)
{
    writeRamp("in/em700.tif", 1);
    write("in/notes.txt", "x");
    write("in/picture.png", "x");
    QDir().mkpath(path("in/folder.tif"));
    EXPECT_EQ(table(path("in")), "em700.tif,,700,name: em700\n");
    EXPECT_EQ(m_finder.warnings(), QStringList("notes.txt and 1 more files are passed over"));
}

TEST_F(ImageFinderTest, ATableInTheFolderIsPointedOut)
{
    writeRamp("in/em700.tif", 1);
    write("in/images.csv", "file,emission\nem700.tif,720\n");
    EXPECT_EQ(table(path("in")), "em700.tif,,700,name: em700\n");
    EXPECT_EQ(m_finder.warnings(),
              QStringList("images.csv lies in the folder and is not used; --images takes such a table"));
}

TEST_F(ImageFinderTest, WhatCannotBeReadIsNamed)
{
    QDir().mkpath(path("empty"));
    EXPECT_EQ(refusal(path("empty")),
              path("empty") + ": there is no TIFF file, no PNG or JPEG picture and no ENVI header in the folder");
    EXPECT_EQ(refusal(path("absent")), path("absent") + ": there is no such file or folder");
    writeRamp("in/em700.tif", 1);
    write("in/em720.tif", "no TIFF");
    EXPECT_TRUE(refusal(path("in")).startsWith(path("in/em720.tif") + ": ")) << qPrintable(m_error);
    write("cube.hdr", "ENVI\nsamples = 2\n");
    EXPECT_TRUE(refusal(path("cube.hdr")).startsWith(path("cube.hdr") + ": ")) << qPrintable(m_error);
    QFile file(path("in/em700.tif"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    for (int tenth = 0; tenth < 10; ++tenth) {
        write("cut.tif", bytes.left(bytes.size() * tenth / 10));
        EXPECT_TRUE(refusal(path("cut.tif")).startsWith(path("cut.tif") + ": ")) << tenth;
    }
}

TEST_F(ImageFinderTest, OmeMetadataTellThePages)
{
    writeStack("a.ome.tif", omeOfThree, {"", "", ""});
    EXPECT_EQ(table(path("a.ome.tif")), "a.ome.tif,1,640,700,OME channel 1\na.ome.tif,2,640,720,OME channel 2\n"
                                        "a.ome.tif,3,640,740,OME channel 3\n");
}

TEST_F(ImageFinderTest, BrokenOmeMetadataAreNotUsedWithAWord)
{
    writeStack("ex640_em700.ome.tif", QString(omeOfThree).left(300), {""});
    EXPECT_EQ(table(path("ex640_em700.ome.tif")), "ex640_em700.ome.tif,640,700,\"name: ex640, em700\"\n");
    ASSERT_EQ(m_finder.warnings().size(), 1);
    EXPECT_TRUE(m_finder.warnings()[0].startsWith("ex640_em700.ome.tif: line 1 of the OME-XML: "));
}

TEST_F(ImageFinderTest, ANameThatContradictsTheMetadataIsADoubt)
{
    const QString one = "<OME ><Pixels SizeC=\"1\"><Channel EmissionWavelength=\"700\"/></Pixels></OME>";
    writeStack("em720.tif", one, {""});
    EXPECT_TRUE(table(path("em720.tif"))
                    .startsWith("doubts: em720.tif: the emission is 700 (OME channel 1) or 720 (name: em720)"));
    // A name that only could mean something else does not count beside metadata.
    writeStack("600_700_800.tif", one, {""});
    EXPECT_EQ(table(path("600_700_800.tif")), "600_700_800.tif,,700,OME channel 1\n");
}

TEST_F(ImageFinderTest, PageNamesTellThePages)
{
    writeStack("a.tif", "nothing", {"ex640_em700", "ex640_em720"});
    EXPECT_EQ(table(path("a.tif")), "a.tif,1,640,700,\"page name: ex640, em700\"\n"
                                    "a.tif,2,640,720,\"page name: ex640, em720\"\n");
}

TEST_F(ImageFinderTest, PagesAreFramesWhereTheSecondsBetweenThemAreTold)
{
    writePages("a.tif", 3);
    EXPECT_EQ(table(path("a.tif")), "a.tif,1,,\na.tif,2,,\na.tif,3,,\n");
    EXPECT_EQ(table(path("a.tif"), 2.5), "a.tif,1,0,page x 2.5 s\na.tif,2,2.5,page x 2.5 s\na.tif,3,5,page x 2.5 s\n");
}

TEST_F(ImageFinderTest, ImageJFramesHaveTimes)
{
    writeStack("a.tif", "ImageJ=1.53\nimages=2\nframes=2\nfinterval=4\n", {"", ""});
    EXPECT_EQ(table(path("a.tif")), "a.tif,1,0,ImageJ finterval\na.tif,2,4,ImageJ finterval\n");
}

TEST_F(ImageFinderTest, AnEnviHeaderTellsItsBands)
{
    write("cube.dat", QByteArray(2 * 2 * 2, '\1'));
    const QByteArray header = "ENVI\nsamples = 2\nlines = 2\nbands = 2\ndata type = 1\ninterleave = bsq\n";
    write("cube.hdr", header + "wavelength units = um\nwavelength = {0.7, 0.72}\nband names = {Band 1, Band 2}\n");
    EXPECT_EQ(table(path("cube.hdr")), "cube.hdr,1,,700,ENVI wavelength\ncube.hdr,2,,720,ENVI wavelength\n");
    EXPECT_EQ(table(path("cube.dat")), "cube.dat,1,,700,ENVI wavelength\ncube.dat,2,,720,ENVI wavelength\n");
    write("cube.hdr", header + "band names = {ex640_em700, ex640_em720}\n");
    EXPECT_EQ(table(path("cube.hdr")), "cube.hdr,1,640,700,\"ENVI band name: ex640, em700\"\n"
                                       "cube.hdr,2,640,720,\"ENVI band name: ex640, em720\"\n");
    write("cube.hdr", header + "wavelength = {700, 720}\nband names = {em700, em730}\n");
    EXPECT_TRUE(table(path("cube.hdr")).startsWith("doubts: cube.hdr band 2: the emission is 720"));
}

TEST_F(ImageFinderTest, AFolderOfCubesCountsTheirDataFilesOnce)
{
    for (const char* name : {"em700", "em720"}) {
        write(QStringLiteral("in/%1.img").arg(name), QByteArray(4, '\1'));
        write(QStringLiteral("in/%1.hdr").arg(name),
              "ENVI\nsamples = 2\nlines = 2\nbands = 1\ndata type = 1\ninterleave = bsq\n");
    }
    EXPECT_EQ(table(path("in")), "em700.hdr,,700,name: em700\nem720.hdr,,720,name: em720\n");
    EXPECT_TRUE(m_finder.warnings().isEmpty());
}

TEST_F(ImageFinderTest, ProgressCanAbort)
{
    writeRamp("in/em700.tif", 1);
    writeRamp("in/em720.tif", 1);
    int calls = 0;
    EXPECT_FALSE(m_finder.find(
        path("in"),
        [&](int done, int steps, const QString&) {
            EXPECT_EQ(steps, 2);
            ++calls;
            return done < 1;
        },
        &m_error));
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(m_finder.aborted());
    EXPECT_EQ(m_error, "the import was aborted");
}

TEST_F(ImageFinderTest, ChannelsWithoutWavelengthsKeepTheNamesThatTheFileGives)
{
    writeStack("ome.tif",
               "<OME xmlns=\"x\"><Image><Pixels SizeC=\"2\" SizeZ=\"1\" SizeT=\"1\"><Channel Name=\"DAPI\"/>"
               "<Channel Name=\" Bright &lt;field&gt;\"/><TiffData/></Pixels></Image></OME>",
               {"", ""});
    EXPECT_EQ(table(path("ome.tif")), "ome.tif,1,DAPI,\nome.tif,2,Bright <field>,\n");
    writeStack("deep.tif",
               "<OME xmlns=\"x\"><Image><Pixels SizeC=\"1\" SizeZ=\"2\" SizeT=\"1\"><Channel Name=\"DAPI\"/>"
               "<TiffData/></Pixels></Image></OME>",
               {"", ""});
    m_choice.each = true;
    EXPECT_EQ(table(path("deep.tif")), "deep.tif,1,DAPI z1,\ndeep.tif,2,DAPI z2,\n");
    m_choice.each = false;
    writeStack("pages.tif", "", {"red band", "green band"});
    EXPECT_EQ(table(path("pages.tif")), "pages.tif,1,red band,\npages.tif,2,green band,\n");
    m_choice.z = 1;
    EXPECT_EQ(table(path("pages.tif")), "pages.tif,1,red band,\npages.tif,2,green band,\n")
        << "the only plane there is";
    m_choice.z = 0;
    writeRamp("in/slide DAPI.tif", 1);
    writeRamp("in/slide Cy.tif", 1);
    EXPECT_EQ(table(path("in")), "slide Cy.tif,slide Cy,\nslide DAPI.tif,slide DAPI,\n");
    write("cube.dat", QByteArray(2 * 2 * 2, '\1'));
    write("cube.hdr", "ENVI\nsamples = 2\nlines = 2\nbands = 2\ndata type = 1\ninterleave = bsq\n"
                      "wavelength units = Wavenumber\nwavelength = {1003, 1450.5}\nband names = {amide, lipid}\n");
    EXPECT_EQ(table(path("cube.hdr")),
              "cube.hdr,1,amide,1003,ENVI wavenumber\ncube.hdr,2,lipid,1450.5,ENVI wavenumber\n");
}

TEST_F(ImageFinderTest, PlanesInDepthAreNoChannelsAndOneIsTaken)
{
    writeStack("deep.tif",
               "<OME xmlns=\"x\"><Image><Pixels SizeC=\"2\" SizeZ=\"3\" SizeT=\"1\" DimensionOrder=\"XYZCT\">"
               "<Channel EmissionWavelength=\"500\"/><Channel EmissionWavelength=\"600\"/><TiffData/></Pixels></Image>"
               "</OME>",
               {"", "", "", "", "", ""});
    EXPECT_EQ(refusal(path("deep.tif")),
              path("deep.tif") + ": it has 3 planes in depth (Z), which are no channels; --z N takes one of them, "
                                 "--z max or mean makes one of all, --channels all for channels");
    m_choice.z = 2;
    EXPECT_EQ(table(path("deep.tif")), "deep.tif,2,,500,OME channel 1\ndeep.tif,5,,600,OME channel 2\n");
    m_choice.z = 4;
    EXPECT_EQ(refusal(path("deep.tif")), path("deep.tif") + ": there is no plane in depth (Z) 4, it has 3");
    EXPECT_EQ(m_finder.sizes().c, 2);
    EXPECT_EQ(m_finder.sizes().z, 3);
    EXPECT_EQ(m_finder.sizes().t, 1);
}

TEST_F(ImageFinderTest, AllPlanesInDepthMakeOneImageOfEachChannel)
{
    const QString ome = "<OME xmlns=\"x\"><Image><Pixels SizeC=\"2\" SizeZ=\"3\" SizeT=\"1\" DimensionOrder=\"%1\">"
                        "<Channel Name=\"DAPI\"/><Channel Name=\"GFP\"/><TiffData/></Pixels></Image></OME>";
    const QStringList pages{"", "", "", "", "", ""};
    writeStack("zc.tif", ome.arg("XYZCT"), pages);
    writeStack("cz.tif", ome.arg("XYCZT"), pages);
    m_choice.projection = PageProjection::Kind::Max;
    m_choice.projectsDepth = true;
    EXPECT_EQ(table(path("zc.tif")), "zc.tif,1..3,max,DAPI,\nzc.tif,4..6,max,GFP,\n");
    EXPECT_EQ(m_finder.images().value(0).name, "zc.tif max of the pages 1, 2, 3");
    m_choice.projection = PageProjection::Kind::Mean;
    EXPECT_EQ(table(path("cz.tif")), "cz.tif,1 3 5,mean,DAPI,\ncz.tif,2 4 6,mean,GFP,\n");
    EXPECT_EQ(m_finder.images().value(1).name, "cz.tif mean of the pages 2, 4, 6");
    // Of one plane there is nothing to be made.
    writeStack("flat.tif", omeOfThree, {"", "", ""});
    EXPECT_EQ(table(path("flat.tif")), "flat.tif,1,640,700,OME channel 1\nflat.tif,2,640,720,OME channel 2\n"
                                       "flat.tif,3,640,740,OME channel 3\n");
    writeStack("hyper.tif", "ImageJ=1.53\nimages=4\nchannels=2\nslices=2\nhyperstack=true\n", {"", "", "", ""});
    EXPECT_EQ(table(path("hyper.tif")), "hyper.tif,1 3,mean,,\nhyper.tif,2 4,mean,,\n");
    EXPECT_TRUE(m_finder.warnings().isEmpty());
}

TEST_F(ImageFinderTest, OfFilesThatTellNoDimensionsAllPagesArePlanesOfOneImage)
{
    writePages("in/ex640_em700.tif", 4);
    writePages("in/ex640_em720.tif", 1);
    m_choice.projection = PageProjection::Kind::Max;
    m_choice.projectsDepth = true;
    EXPECT_EQ(table(path("in")), "ex640_em700.tif,1..4,max,640,700,\"name: ex640, em700\"\n"
                                 "ex640_em720.tif,,,640,720,\"name: ex640, em720\"\n");
    EXPECT_EQ(m_finder.warnings(), QStringList("ex640_em700.tif tells no dimensions: all of its 4 pages are taken for "
                                               "planes of one image"));
}

TEST_F(ImageFinderTest, AllTimesMakeOneImageOfEachChannel)
{
    writeStack("both.tif",
               "<OME xmlns=\"x\"><Image><Pixels SizeC=\"2\" SizeZ=\"2\" SizeT=\"2\" TimeIncrement=\"5\" "
               "DimensionOrder=\"XYCZT\"><Channel EmissionWavelength=\"500\"/><Channel EmissionWavelength=\"600\"/>"
               "<TiffData/></Pixels></Image></OME>",
               {"", "", "", "", "", "", "", ""});
    m_choice.projection = PageProjection::Kind::Mean;
    m_choice.projectsTimes = true;
    EXPECT_TRUE(refusal(path("both.tif")).contains("it has 2 planes in depth (Z)")) << qPrintable(m_error);
    m_choice.z = 2;
    EXPECT_EQ(table(path("both.tif")), "both.tif,3 7,mean,,500,OME channel 1\nboth.tif,4 8,mean,,600,OME channel 2\n");
    m_choice.z = 0;
    m_choice.projectsDepth = true;
    EXPECT_EQ(table(path("both.tif")),
              "both.tif,1 3 5 7,mean,,500,OME channel 1\nboth.tif,2 4 6 8,mean,,600,OME channel 2\n");
    m_choice.projectsTimes = false;
    m_choice.c = 1;
    const QString times = table(path("both.tif"));
    EXPECT_TRUE(times.startsWith("both.tif,1 3,mean,,500,0,")) << qPrintable(times);
    EXPECT_TRUE(times.contains("\nboth.tif,5 7,mean,,500,5,")) << qPrintable(times);
}

TEST_F(ImageFinderTest, OfChannelsAtSeveralTimesTheChannelsOfOneOrTheTimesOfOneAreTaken)
{
    const QString sizes = "<OME xmlns=\"x\"><Image><Pixels SizeC=\"2\" SizeZ=\"1\" SizeT=\"3\" TimeIncrement=\"5\">"
                          "<Channel %1/><Channel %2/><TiffData/></Pixels></Image></OME>";
    const QStringList pages{"", "", "", "", "", ""};
    writeStack("both.tif", sizes.arg("EmissionWavelength=\"500\"", "EmissionWavelength=\"600\""), pages);
    writeStack("names.tif", sizes.arg("Name=\"DAPI\"", "Name=\"GFP\""), pages);
    for (const char* file : {"both.tif", "names.tif"}) {
        EXPECT_EQ(refusal(path(file)),
                  path(file) + ": it has 2 channels at 3 times, and a sequence is either spectral or temporal; --t N "
                               "takes the channels of one time, --t max or mean those of all, --c N the times of one "
                               "channel");
    }
    m_choice.t = 2;
    EXPECT_EQ(table(path("both.tif")), "both.tif,3,,500,OME channel 1\nboth.tif,4,,600,OME channel 2\n");
    EXPECT_EQ(table(path("names.tif")), "names.tif,3,DAPI,\nnames.tif,4,GFP,\n");
    m_choice = PlaneChoice();
    m_choice.c = 1;
    EXPECT_EQ(table(path("names.tif")),
              "names.tif,1,0,OME TimeIncrement\nnames.tif,3,5,OME TimeIncrement\nnames.tif,5,10,OME TimeIncrement\n");
}

TEST_F(ImageFinderTest, SlicesOfAPlainImageJStackAreImagesAndThoseOfAHyperstackDepth)
{
    writeStack("plain.tif", "ImageJ=1.53\nimages=2\nslices=2\n", {"", ""});
    EXPECT_EQ(table(path("plain.tif")), "plain.tif,1,,\nplain.tif,2,,\n");
    writeStack("hyper.tif", "ImageJ=1.53\nimages=4\nchannels=2\nslices=2\nhyperstack=true\n", {"", "", "", ""});
    EXPECT_TRUE(refusal(path("hyper.tif")).contains("it has 2 planes in depth (Z)")) << qPrintable(m_error);
    m_choice.z = 2;
    EXPECT_EQ(table(path("hyper.tif")), "hyper.tif,3,,\nhyper.tif,4,,\n");
    // Without sizes there is one of each.
    writePages("pages.tif", 2);
    EXPECT_EQ(refusal(path("pages.tif")), path("pages.tif") + ": there is no plane in depth (Z) 2, it has 1");
}

TEST_F(ImageFinderTest, AStackOfFramesWithoutSecondsIsNumberedAndSaysSo)
{
    writeStack("a.tif", "ImageJ=1.53\nimages=2\nframes=2\n", {"", ""});
    ASSERT_TRUE(find(path("a.tif"))) << qPrintable(m_error);
    const InferredTable table(m_finder.images(), m_finder.doubts(), std::nullopt);
    EXPECT_TRUE(table.isNumbered());
    EXPECT_TRUE(table.notes().join(' ').contains("said to be a series of times"))
        << qPrintable(table.notes().join(' '));
}

TEST_F(ImageFinderTest, PicturesCountWhereThereAreNoMeasuredImages)
{
    QDir().mkpath(path("in"));
    QImage grey(4, 3, QImage::Format_Grayscale8);
    grey.fill(7);
    ASSERT_TRUE(grey.save(path("in/700nm.png")));
    ASSERT_TRUE(grey.save(path("in/720nm.JPG"), "JPEG"));
    EXPECT_EQ(table(path("in")), "700nm.png,,700,name: 700nm\n720nm.JPG,,720,name: 720nm\n");
    EXPECT_TRUE(m_finder.warnings().isEmpty());
    writeRamp("in/em800.tif", 1);
    EXPECT_EQ(table(path("in")), "em800.tif,,800,name: em800\n");
    EXPECT_EQ(m_finder.warnings(), QStringList("700nm.png and 1 more files are passed over"));
}

TEST_F(ImageFinderTest, APictureOfSeveralHuesThatIsAloneGivesItsColours)
{
    QDir().mkpath(path("in"));
    QImage picture(4, 3, QImage::Format_RGB32);
    picture.fill(qRgb(200, 120, 160));
    picture.setPixel(1, 1, qRgb(20, 220, 60));
    ASSERT_TRUE(picture.save(path("in/stain.png")));
    EXPECT_EQ(table(path("in")), "stain.png,1,red,\nstain.png,2,green,\nstain.png,3,blue,\n");
    EXPECT_EQ(table(path("in/stain.png")), "stain.png,1,red,\nstain.png,2,green,\nstain.png,3,blue,\n");
}

TEST_F(ImageFinderTest, AFolderOfFoldersTellsTheirNamesWhereItIsNotClearWhichAreMeant)
{
    writeRamp("in/leaf/a.tif", 1);
    writeRamp("in/leaf/b.tif", 1);
    EXPECT_EQ(table(path("in")), "leaf/a.tif,a,\nleaf/b.tif,b,\n");
    EXPECT_EQ(m_finder.warnings(), QStringList("the images are those of the folder leaf"));
    writeRamp("in/soil/a.tif", 1);
    EXPECT_EQ(refusal(path("in")), path("in") + ": the images lie in the folders leaf, soil; import one of them");
    writeRamp("each/DAPI/img.tif", 1);
    writeRamp("each/GFP/img.tif", 1);
    EXPECT_EQ(table(path("each")), "DAPI/img.tif,DAPI,\nGFP/img.tif,GFP,\n");
    writeRamp("numbered/s10/img.tif", 1);
    writeRamp("numbered/s2/img.tif", 1);
    EXPECT_EQ(table(path("numbered")), "s2/img.tif,s2,\ns10/img.tif,s10,\n");
}
