// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/SpectrumSources.h"
#include "services/support/CliFixture.h"
#include "services/support/SmallSequence.h"

#include "host/CORVDatabase.h"
#include "host/orv_paths.h"
#include "spectra/SpectrumPlotParams.h"

#include <QDir>
#include <QFile>

#include <limits>

namespace {

// A user's table of sources, on a coarse grid so that values between its entries are easily worked out.
const QByteArray sourceTable = "wavelength_nm,HandEm,HandEx,BareEm\n"
                               "600,0,0.25,0.1\n"
                               "640,0.2,1,0.3\n"
                               "680,0.6,0.4,0.5\n"
                               "700,1,0.1,1\n"
                               "760,0.4,,0.2\n";

class SpectrumSourcesTest : public CliFixture
{
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        const QString folder = getORVPath(ORV_PATH_USER_DATA, true, nullptr);
        ASSERT_TRUE(QDir().mkpath(folder));
        m_table = folder + "library_sources.csv";
        QFile file(m_table);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(sourceTable);
        file.close();
        CORVDatabase::reload();
    }
    void TearDown() override
    {
        QFile::remove(m_table);
        CORVDatabase::reload();
    }

    // A sequence with an image for each pair of wavelengths.
    QString sequenceOf(const QList<QPair<int, int>>& pairs) const
    {
        SmallSequence sequence;
        for (const auto& pair : pairs) {
            SmallImage image;
            image.excitation = QStringLiteral("%1nm").arg(pair.first);
            image.emission = QStringLiteral("%1nm").arg(pair.second);
            const auto scale = static_cast<float>(sequence.images.size() + 1);
            image.value = [scale](int i) { return scale * static_cast<float>(i); };
            sequence.images.append(image);
        }
        sequence.writeTo(path("seq"));
        return path("seq");
    }
    QString databaseRefusal(const QString& strNames, const QString& strSequence) const
    {
        return failureOf([&] { SpectrumSources().fromDatabase(strNames, strSequence); });
    }
    QString regionRefusal(const QString& strRegion, const QString& strSequence) const
    {
        return failureOf([&] { SpectrumSources().fromRegions({strRegion}, strSequence); });
    }

private:
    QString m_table;
};

void expectValues(const SpectrumPlotParams& spectrum, const std::vector<double>& expected)
{
    ASSERT_EQ(spectrum.points.size(), static_cast<int>(expected.size()));
    for (std::size_t j = 0; j < expected.size(); ++j) {
        EXPECT_NEAR(spectrum.points[static_cast<int>(j)].value, expected[j], 1e-12) << j;
    }
}

} // namespace

// Excitation at 640 and 660: 1 and 0.7; emission at 700 and 730: 1 and 0.7.
TEST_F(SpectrumSourcesTest, ASourceIsItsExcitationTimesItsEmission)
{
    SpectrumSources made;
    made.fromDatabase("Hand", sequenceOf({{640, 700}, {660, 700}, {660, 730}}));
    ASSERT_EQ(made.spectra().size(), 1);
    const SpectrumPlotParams& spectrum = *made.spectra()[0];
    expectValues(spectrum, {1.0, 0.7, 0.49});
    EXPECT_EQ(spectrum.settings.name, "Hand");
    EXPECT_EQ(spectrum.origin, "database");
    EXPECT_EQ(spectrum.points[2].first, "660");
    EXPECT_EQ(spectrum.points[2].second, "730");
    EXPECT_FALSE(made.note().isEmpty());
}

// 0.7, 0.49 and 0.4 over the largest.
TEST_F(SpectrumSourcesTest, TheLargestValueIsOne)
{
    SpectrumSources made;
    made.fromDatabase("Hand", sequenceOf({{660, 700}, {660, 730}, {680, 700}}));
    expectValues(*made.spectra()[0], {1.0, 0.7, 4.0 / 7.0});
}

TEST_F(SpectrumSourcesTest, BeyondItsCurveASourceGivesNoLight)
{
    SpectrumSources made;
    made.fromDatabase("Hand", sequenceOf({{640, 700}, {640, 800}}));
    expectValues(*made.spectra()[0], {1.0, 0.0});
}

TEST_F(SpectrumSourcesTest, AtOneExcitationTheEmissionAloneServes)
{
    SpectrumSources made;
    made.fromDatabase(" Bare , Hand", sequenceOf({{640, 700}, {640, 730}}));
    ASSERT_EQ(made.spectra().size(), 2);
    expectValues(*made.spectra()[0], {1.0, 0.6});
    expectValues(*made.spectra()[1], {1.0, 0.7});
    EXPECT_NE(made.spectra()[0]->settings.color, made.spectra()[1]->settings.color);
    EXPECT_EQ(made.spectra()[1]->settings.index, 1);
}

TEST_F(SpectrumSourcesTest, SeveralExcitationsAskForTheExcitationCurve)
{
    const QString sequence = sequenceOf({{640, 700}, {640, 730}, {660, 700}});
    EXPECT_EQ(
        databaseRefusal("Bare", sequence),
        "the database has no excitation curve of \"Bare\", and the images have several excitations; --select "
        "\"640/*\" takes those of one, here and in \"spum unmix\"; at all of them it is measured by --region, or taken "
        "by --from out of the spectra.csv of an automatic run");
    SpectrumSources made;
    made.setImages("640/*", -1);
    made.fromDatabase("Bare", sequence);
    expectValues(*made.spectra()[0], {1.0, 0.6});
}

TEST_F(SpectrumSourcesTest, AnUnknownSourceIsNamed)
{
    const QString sequence = sequenceOf({{640, 700}, {640, 730}});
    EXPECT_TRUE(databaseRefusal("Hand,Nobody", sequence)
                    .startsWith("the database has no source \"Nobody\" (sources carry no suffix here)"));
    EXPECT_TRUE(databaseRefusal("", sequence).startsWith("the database has no source \"\""));
}

TEST_F(SpectrumSourcesTest, ASourceWithoutLightAtTheImagesIsNamed)
{
    EXPECT_EQ(databaseRefusal("Hand", sequenceOf({{640, 780}, {640, 800}})), "\"Hand\" gives no light at these images");
}

TEST_F(SpectrumSourcesTest, TheDatabaseHoldsNoTimeCourses)
{
    SmallSequence sequence;
    sequence.temporal = true;
    for (int n = 0; n < 2; ++n) {
        SmallImage image;
        image.kyvoTime = QString::number(10 * n);
        image.kyvoInterval = "1";
        sequence.images.append(image);
    }
    sequence.writeTo(path("seq"));
    EXPECT_EQ(databaseRefusal("Hand", path("seq")),
              "the database holds spectra; " + path("seq") + " is a temporal sequence");
}

// Pixels 0, 1, 4 and 5 have the mean 2.5; image j is j + 1 times that.
TEST_F(SpectrumSourcesTest, ARegionIsTheMeanOfItsPixels)
{
    SpectrumSources made;
    made.fromRegions({"corner=0,0,2,2", " one pixel = 3,3,1,1"}, sequenceOf({{640, 700}, {640, 720}, {640, 740}}));
    ASSERT_EQ(made.spectra().size(), 2);
    expectValues(*made.spectra()[0], {1.0 / 3.0, 2.0 / 3.0, 1.0});
    expectValues(*made.spectra()[1], {1.0 / 3.0, 2.0 / 3.0, 1.0});
    EXPECT_EQ(made.spectra()[1]->settings.name, "one pixel");
    EXPECT_EQ(made.spectra()[1]->points[1].second, "720");
    EXPECT_TRUE(made.note().contains("Radiant Efficiency")) << qPrintable(made.note());
}

TEST_F(SpectrumSourcesTest, AMalformedRegionIsAUsageError)
{
    const QString sequence = sequenceOf({{640, 700}, {640, 720}});
    for (const char* text : {"", "A", "A=1,2,3", "=0,0,1,1", " =0,0,1,1", "A=x,0,1,1", "A=0,0,0,1", "A=0,0,1,-1",
                             "A=0,0,1,1,1", "A=0.5,0,1,1", "A=99999999999,0,1,1"}) {
        EXPECT_EQ(regionRefusal(text, sequence),
                  QStringLiteral("[2] --region: \"%1\" is not of the form NAME=X,Y,W,H").arg(text));
    }
}

TEST_F(SpectrumSourcesTest, ARegionBeyondTheImageIsRefused)
{
    const QString sequence = sequenceOf({{640, 700}, {640, 720}});
    for (const char* text :
         {"A=3,0,2,1", "A=0,3,1,2", "A=-1,0,1,1", "A=0,-1,1,1", "A=2147483647,0,1,1", "A=0,0,2147483647,1"}) {
        EXPECT_EQ(regionRefusal(text, sequence), "the region \"A\" leaves the image of 4 x 4 pixels") << text;
    }
}

// The second image is twice the first, pixel by pixel, so a mean that is taken of other pixels in each would show.
TEST_F(SpectrumSourcesTest, ARegionMayBeAnOutline)
{
    SmallSequence sequence;
    sequence.addBands({[](int i) { return i == 5 || i == 6 || i == 9 ? 4.0F : 100.0F; },
                       [](int i) { return i == 5             ? 6.0F
                                          : i == 6 || i == 9 ? 9.0F
                                                             : 1000.0F; }});
    sequence.writeTo(path("seq"));
    for (const char* text : {"A=polygon:1,1,3,1,3,2,2,2,2,3,1,3", "A = freehand:1,1,3,1,3,2,2,2,2,3,1,3"}) {
        SpectrumSources made;
        made.fromRegions({text}, path("seq"));
        EXPECT_EQ(made.spectra()[0]->settings.name, "A");
        expectValues(*made.spectra()[0], {0.5, 1.0});
    }
}

TEST_F(SpectrumSourcesTest, OutlinesThatAreNoneOrLeaveTheImageAreRefused)
{
    const QString sequence = sequenceOf({{640, 700}, {640, 720}});
    EXPECT_EQ(regionRefusal("A=polygon:0,0,4,4", sequence),
              "[2] --region: \"A=polygon:0,0,4,4\": an outline takes three points at least");
    EXPECT_TRUE(
        regionRefusal("A=star:0,0,4,4", sequence).startsWith("[2] --region: \"A=star:0,0,4,4\": a shape begins"));
    EXPECT_EQ(regionRefusal("A=roi:", sequence), "[2] --region: \"A=roi:\": the region's name is missing");
    EXPECT_EQ(regionRefusal("A=polygon:0,0,5,0,0,4", sequence),
              "--region A: the shape polygon:0,0,5,0,0,4 leaves the images of 4 x 4 pixels at binning 1");
    EXPECT_EQ(regionRefusal("A=polygon:0,0,0.4,0,0,0.4", sequence),
              "--region A: the region holds no pixel of the images of 4 x 4 pixels at binning 1");
    EXPECT_TRUE(regionRefusal("A=roi:lung", sequence).startsWith("--region A: no image has a region of interest"));
}

TEST_F(SpectrumSourcesTest, ARegionWithoutLightIsRefused)
{
    EXPECT_EQ(regionRefusal("dark=0,0,1,1", sequenceOf({{640, 700}, {640, 720}})),
              "\"dark\" gives no light at these images");
}

TEST_F(SpectrumSourcesTest, ARegionWithPixelsThatAreNotFiniteIsRefused)
{
    SmallSequence sequence;
    sequence.addBands(
        {[](int) { return 1.0F; }, [](int i) { return i == 1 ? std::numeric_limits<float>::quiet_NaN() : 2.0F; }});
    sequence.writeTo(path("seq"));
    EXPECT_EQ(regionRefusal("A=0,0,2,2", path("seq")), "\"A\" has values that are not finite at these images");
    SpectrumSources made;
    made.fromRegions({"B=2,2,2,2"}, path("seq"));
    expectValues(*made.spectra()[0], {0.5, 1.0});
}

TEST_F(SpectrumSourcesTest, ALibraryIsTakenAsItIs)
{
    SpectrumSources made;
    made.fromLibrary(write("lib.csv", "$,Note,n\n$,NumSpec,1\n$,Color,red\n$,Origin,o\n$,Select,0\n"
                                      "Excitation,Emission,S\n640,700,3\n"));
    ASSERT_EQ(made.spectra().size(), 1);
    expectValues(*made.spectra()[0], {3.0});
    EXPECT_FALSE(made.spectra()[0]->settings.selected);
    EXPECT_EQ(made.note(), "n");
}

// What was made of the table besides goes with the refusal.
TEST_F(SpectrumSourcesTest, ATableWithANameThatIsTakenIsRefused)
{
    SpectrumSources made;
    made.fromLibrary(write("lib.csv", "$,NumSpec,1\nExcitation,Emission,S\n640,700,3\n640,720,1\n"));
    const QString table = write("table.csv", "wavelength,S,T\n690,1,2\n730,1,3\n");
    EXPECT_TRUE(failureOf([&] { made.fromLibrary(table); }).startsWith("two spectra would have the name \"S\""));
}

TEST_F(SpectrumSourcesTest, ASequenceThatCannotBeAnalysedIsRefusedWithTheReason)
{
    SmallSequence sequence;
    sequence.addBands({[](int) { return 1.0F; }});
    sequence.writeTo(path("seq"));
    for (const QString& refusal : {databaseRefusal("Hand", path("seq")), regionRefusal("A=0,0,1,1", path("seq"))}) {
        EXPECT_TRUE(refusal.startsWith(path("seq") + " cannot be analysed: it takes images at two wavelengths"));
    }
}

TEST_F(SpectrumSourcesTest, RegionsAreMeasuredInTheUnitThatIsAskedFor)
{
    const QString sequence = sequenceOf({{640, 700}, {640, 720}});
    SpectrumSources made;
    made.setImages(QString(), 0);
    made.fromRegions({"A=0,0,2,2"}, sequence);
    EXPECT_TRUE(made.note().endsWith(" in Counts")) << qPrintable(made.note());
    EXPECT_TRUE(failureOf([&] {
                    made.setImages(QString(), -1);
                    made.fromRegions({"B=0,0,2,2"}, sequence);
                }).contains("do not go together; --unit takes one that both have"));
}

TEST_F(SpectrumSourcesTest, ARegionsNameHasNoComma)
{
    EXPECT_TRUE(regionRefusal("A, B=1,1,1,1", sequenceOf({{640, 700}, {640, 720}})).contains("has no comma"));
}

TEST_F(SpectrumSourcesTest, ALibraryIsBroughtToTheImagesOfASequence)
{
    SpectrumSources made;
    made.fromLibrary(write("lib.csv",
                           "$,NumSpec,1\n$,Color,red\n$,Select,0\nExcitation,Emission,S\n640,800,9\n640,720,3\n"
                           "640,700,2\n"),
                     sequenceOf({{640, 700}, {640, 720}}));
    expectValues(*made.spectra()[0], {2.0, 3.0});
}
