// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/PcaRun.h"
#include "services/results/PcaFiles.h"
#include "services/support/CliFixture.h"
#include "services/support/QuietMonitor.h"
#include "services/support/SmallAnalysis.h"

#include <QDir>
#include <QDomDocument>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>

namespace {

class PcaRunTest : public SmallAnalysis
{
protected:
    void open()
    {
        m_sequence.writeTo(path("seq"));
        m_pOpened = std::make_unique<OpenedSequence>(path("seq"));
        engine().resetAnalysis(RUNMODE_AUTOMATIC);
        engine().m_analysisInput.maskImage = imageOf(side, side, [](int) { return 1.0F; });
    }
    XTNT::Vector<double> run()
    {
        QuietMonitor silent;
        return runPca(engine(), silent);
    }
    QString refusal()
    {
        return failureOf([this] { run(); });
    }
    static XTNT::Vector<double> vectorOf(std::initializer_list<double> values)
    {
        XTNT::Vector<double> vector(static_cast<long long>(values.size()));
        long long i = 0;
        for (const double value : values) {
            vector[i++] = value;
        }
        return vector;
    }
};

} // namespace

// Two sources in three images.
TEST_F(PcaRunTest, TheEigenvaluesTellTheSources)
{
    open();
    const auto eigenvalues = run();
    ASSERT_EQ(eigenvalues.size(), 3);
    EXPECT_GT(eigenvalues[0], eigenvalues[1]);
    EXPECT_GT(eigenvalues[1], 0.01);
    EXPECT_NEAR(eigenvalues[2], 0.0, 1e-9 * eigenvalues[0]);
}

TEST_F(PcaRunTest, ARunThatEndsInSilenceFailsWithTheLineOfTheLog)
{
    open();
    engine().m_analysisInput.maskImage = CILImage();
    EXPECT_EQ(refusal(), "SpumKyvo: unable to get a valid photo mask!");
}

TEST_F(PcaRunTest, AMissingImageIsToldAsTheEngineDoes)
{
    open();
    engine().m_imageRecords.clear();
    EXPECT_EQ(refusal(), "SpumKyvo: Unable to createImageList.");
}

// Not those of the run before.
TEST_F(PcaRunTest, AnOldResultIsNotTakenForANewOne)
{
    open();
    run();
    engine().m_analysisInput.maskImage = CILImage();
    EXPECT_EQ(refusal(), "SpumKyvo: unable to get a valid photo mask!");
}

TEST_F(PcaRunTest, AnImageThatCannotBeReadIsNamed)
{
    open();
    write("seq/" + m_sequence.click(1) + "/luminescent.TIF", "cut");
    EXPECT_EQ(refusal(), "the image " + m_sequence.click(1) + " cannot be read; --verbose tells more");
    // Of a run that looks at no image nothing is said of those before.
    engine().m_analysisInput.maskImage = CILImage();
    EXPECT_EQ(refusal(), "SpumKyvo: unable to get a valid photo mask!");
}

TEST_F(PcaRunTest, TheTableAndTheFilesTellTheExplainedVariance)
{
    open();
    run();
    PcaFiles files(engine(), vectorOf({90.0, 9.5, 0.5}));
    ASSERT_TRUE(files.isMeaningful());
    ASSERT_TRUE(QDir().mkpath(path("out")));
    files.write(path("out/"));
    EXPECT_EQ(entriesOf(path("out")), (QStringList{"pca.csv", "pca.json", "scree.png", "scree.svg"}));
    EXPECT_EQ(contentOf(path("out/pca.csv")), "components,explainedVariance,explainedByThisOne,eigenvalue\n"
                                              "1,0.9,0.9,90\n2,0.995,0.095,9.5\n3,1,0.005,0.5\n");
    const QJsonObject json = QJsonDocument::fromJson(contentOf(path("out/pca.json"))).object();
    EXPECT_EQ(json["suggested"], 2);
    EXPECT_EQ(json["suggestedExplains"], 0.995);
    EXPECT_EQ(json["eigenvalues"].toArray(), (QJsonArray{90.0, 9.5, 0.5}));
    EXPECT_EQ(json["pixels"], 16);
    EXPECT_FALSE(QImage(path("out/scree.png")).isNull());
    EXPECT_TRUE(QDomDocument().setContent(contentOf(path("out/scree.svg"))));
    const QString text = files.text();
    EXPECT_TRUE(text.contains("Suggested # of components: 2\nExplained variance (%): 99.5\nNote: Suggestion is made"))
        << qPrintable(text);
    EXPECT_TRUE(text.contains("# of Components"));
    EXPECT_TRUE(text.contains("Explained Variance(%)"));
}

TEST_F(PcaRunTest, APartOfThePixelsIsShown)
{
    open();
    engine().m_analysisInput.maskImage = imageOf(side, side, [](int i) { return i < 12 ? 1.0F : 0.0F; });
    PcaFiles files(engine(), run());
    ASSERT_TRUE(QDir().mkpath(path("out")));
    files.write(path("out/"));
    const QImage mask(path("out/mask.png"));
    EXPECT_EQ(qGray(mask.pixel(3, 2)), 255);
    EXPECT_EQ(qGray(mask.pixel(3, 3)), 0);
}

TEST_F(PcaRunTest, EigenvaluesThatExplainNothingAreNoResult)
{
    open();
    EXPECT_FALSE(PcaFiles(engine(), vectorOf({0.0, 0.0, 0.0})).isMeaningful());
    EXPECT_FALSE(PcaFiles(engine(), vectorOf({std::nan(""), 1.0, 0.0})).isMeaningful());
    EXPECT_FALSE(PcaFiles(engine(), XTNT::Vector<double>()).isMeaningful());
    EXPECT_TRUE(PcaFiles(engine(), vectorOf({2.0})).isMeaningful());
}
