// SPDX-License-Identifier: GPL-3.0-or-later
// `spum sources`, and other names of sources where they are named.
#include "workbench/program/ProgramFixture.h"

namespace {

class SourcesProgramTest : public ProgramFixture
{
protected:
    QJsonArray sources(const QStringList& arguments = {}) const
    {
        return succeed(QStringList{"sources", "--json"} + arguments).json()["sources"].toArray();
    }
};

} // namespace

TEST_F(SourcesProgramTest, EveryProbeIsListedWithItsPeaksAndOtherNames)
{
    const QJsonArray all = sources();
    EXPECT_GT(all.size(), 60);
    const QJsonArray found = sources({"AF750"});
    ASSERT_EQ(found.size(), 1);
    const QJsonObject dye = found[0].toObject();
    EXPECT_EQ(dye["name"], "AlexaFluor 750");
    EXPECT_EQ(dye["kind"], "fluorophore");
    EXPECT_EQ(dye["aliases"].toArray(), (QJsonArray{"Alexa Fluor 750", "AF750"}));
    EXPECT_NEAR(dye["emissionPeak"].toDouble(), 776.0, 5.0);
    EXPECT_NEAR(dye["excitationPeak"].toDouble(), 753.0, 5.0);
    EXPECT_TRUE(sources({"AlexaFluor 790"})[0].toObject()["excitationPeak"].isNull());
    EXPECT_TRUE(sources({"F-18"})[0].toObject()["emissionPeak"].isNull());
}

TEST_F(SourcesProgramTest, ATextAKindOrAnotherNameChooses)
{
    for (const auto& source : sources({"luciferase"})) {
        EXPECT_EQ(source.toObject()["kind"], "luciferase");
    }
    EXPECT_EQ(sources({"luciferase"}).size(), 5);
    EXPECT_EQ(succeed({"sources", "tissueaf"}).out.count('\n'), 4);
    EXPECT_TRUE(succeed({"sources", "tissueaf"}).out.contains("ALFree"));
    EXPECT_TRUE(refusal({"sources", "AlexaFlour 750"}).contains("did you mean \"AlexaFluor 750\""));
    refusal({"sources", "a", "b"}, 2);
}

TEST_F(SourcesProgramTest, OtherNamesOfSourcesServeForALibrary)
{
    smallSequence().writeTo(path("seq"));
    succeed({"library", "save", "dyes", "--probes", "AF700, indocyanine green", "--sequence", "seq"});
    const QJsonArray saved = succeed({"library", "show", "dyes", "--json"}).json()["spectra"].toArray();
    ASSERT_EQ(saved.size(), 2);
    EXPECT_EQ(saved[0].toObject()["name"], "AlexaFluor 700");
    EXPECT_EQ(saved[1].toObject()["name"], "ICG");
    succeed({"library", "save", "tissue", "--probes", "tissueaf,ALFood", "--sequence", "seq"});
    const QJsonArray tissue = succeed({"library", "show", "tissue", "--json"}).json()["spectra"].toArray();
    EXPECT_EQ(tissue[0].toObject()["name"], "TissueAF");
    EXPECT_EQ(tissue[1].toObject()["name"], "Food");
    EXPECT_TRUE(refusal({"library", "save", "x", "--probes", "AlexaFlour 700", "--sequence", "seq"})
                    .contains("did you mean \"AlexaFluor 700\""));
}

// A dye without an excitation curve serves where one excitation is used.
TEST_F(SourcesProgramTest, TheDyesOfTheSimulatedMouseMakeALibrary)
{
    simulate({"--probes", "AlexaFluor 750,AlexaFluor 790"});
    succeed({"library", "save", "dyes", "--probes", "TissueAF,Food,AF750,AF790", "--sequence", "seq"});
    const ProgramResult fitted = spum({"unmix", "seq", "--library", "dyes", "--quiet", "--json"});
    EXPECT_EQ(fitted.status, 0) << fitted.err.constData();
    EXPECT_EQ(fitted.json()["components"].toArray().size(), 4);

    SmallSequence two = smallSequence();
    const int images = two.images.size();
    for (int j = 0; j < images; ++j) {
        two.images.append(two.images[j]);
        two.images.last().excitation = "675nm";
    }
    two.writeTo(path("two"));
    EXPECT_EQ(
        refusal({"library", "save", "x", "--probes", "AF790", "--sequence", "two"}),
        "the database has no excitation curve of \"AlexaFluor 790\", and the images have several excitations; --select "
        "\"675/*\" takes those of one, here and in \"spum unmix\"; at all of them it is measured by --region, or taken "
        "by --from out of the spectra.csv of an automatic run");
    succeed({"library", "save", "x", "--probes", "AF790", "--sequence", "two", "--select", "675/*"});
}
