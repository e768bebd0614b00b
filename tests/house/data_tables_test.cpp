// SPDX-License-Identifier: GPL-3.0-or-later
// The shipped reference tables: what the script gives, complete, and true to figures worked out by hand.
#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <utility>

#include <gtest/gtest.h>

namespace {

const QString dataFolder = QStringLiteral(ORV_SOURCE_DIR "/data/");
const QStringList tableNames = {
    "library_sources.csv", "luminescent_sources.csv", "radioactive_sources.csv", "isotopes.csv",
    "tissues.csv",         "color_responses.csv",     "color_maps.csv",          "probes.csv"};

// Rows of fields, comments left out, the header first. The shipped tables quote nothing.
QVector<QStringList> readTable(const QString& name)
{
    QFile file(dataFolder + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(file.fileName());
    QVector<QStringList> rows;
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        if (!line.startsWith('#')) {
            rows.append(line.split(','));
        }
    }
    return rows;
}

double number(const QString& text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    EXPECT_TRUE(ok) << qPrintable(text);
    return value;
}

// Column name -> values by wavelength.
QMap<QString, QMap<int, double>> readSources(const QString& name)
{
    const QVector<QStringList> rows = readTable(name);
    QMap<QString, QMap<int, double>> sources;
    for (int r = 1; r < rows.size(); ++r) {
        for (int c = 1; c < rows[r].size(); ++c) {
            sources[rows[0].value(c)][rows[r][0].toInt()] = number(rows[r][c]);
        }
    }
    return sources;
}

int peak(const QMap<int, double>& curve)
{
    int at = 0;
    double top = -1.0;
    for (auto it = curve.cbegin(); it != curve.cend(); ++it) {
        if (it.value() > top) {
            top = it.value();
            at = it.key();
        }
    }
    return at;
}

// {absorption, reduced scattering} in 1/cm by wavelength.
QMap<int, std::pair<double, double>> readTissue(const QString& tissue)
{
    QMap<int, std::pair<double, double>> result;
    for (const QStringList& row : readTable("tissues.csv")) {
        if (row.value(0) == tissue) {
            result[row.value(1).toInt()] = {number(row.value(2)), number(row.value(3))};
        }
    }
    return result;
}

int runScript(const QStringList& arguments, const QString& locale = "C")
{
    QProcess script;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LC_ALL", locale);
    environment.insert("PYTHONDONTWRITEBYTECODE", "1");
    script.setProcessEnvironment(environment);
    script.setProcessChannelMode(QProcess::ForwardedChannels);
    script.start("python3", QStringList{dataFolder + "make_tables.py"} + arguments);
    EXPECT_TRUE(script.waitForFinished(120000)) << qPrintable(script.errorString());
    return script.exitStatus() == QProcess::NormalExit ? script.exitCode() : -1;
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return file.readAll();
}

} // namespace

TEST(DataTablesTest, TheCommittedTablesAreWhatTheFiguresGive)
{
    EXPECT_EQ(runScript({"--check"}), 0);
}

TEST(DataTablesTest, TheScriptWritesTheSameBytesInAnotherLocaleAndAFolderWithBlanks)
{
    QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir("with blanks"));
    const QString out = folder.filePath("with blanks");
    ASSERT_EQ(runScript({"--out", out}, "de_DE.UTF-8"), 0);
    for (const QString& name : tableNames) {
        EXPECT_EQ(contents(out + "/" + name), contents(dataFolder + name)) << qPrintable(name);
    }
}

TEST(DataTablesTest, TheCheckFailsOnAChangedAndOnAMissingTable)
{
    QTemporaryDir folder;
    ASSERT_EQ(runScript({"--out", folder.path()}), 0);
    ASSERT_EQ(runScript({"--check", "--out", folder.path()}), 0);
    QFile isotopes(folder.filePath("isotopes.csv"));
    ASSERT_TRUE(isotopes.open(QIODevice::Append));
    isotopes.write("X-1,1,no\n");
    isotopes.close();
    EXPECT_EQ(runScript({"--check", "--out", folder.path()}), 1);
    ASSERT_EQ(runScript({"--out", folder.path()}), 0);
    ASSERT_TRUE(QFile::remove(folder.filePath("tissues.csv")));
    EXPECT_EQ(runScript({"--check", "--out", folder.path()}), 1);
}

TEST(DataTablesTest, EveryTableHasLineFeedsAndRowsAsLongAsTheHeader)
{
    for (const QString& name : tableNames) {
        const QByteArray bytes = contents(dataFolder + name);
        EXPECT_FALSE(bytes.contains('\r')) << qPrintable(name);
        EXPECT_TRUE(bytes.endsWith('\n')) << qPrintable(name);
        const QVector<QStringList> rows = readTable(name);
        ASSERT_GT(rows.size(), 1) << qPrintable(name);
        for (const QStringList& row : rows) {
            ASSERT_EQ(row.size(), rows[0].size()) << qPrintable(name + ": " + row.join(','));
        }
    }
}

class SourceTableTest : public ::testing::TestWithParam<const char*>
{
};

TEST_P(SourceTableTest, EverySourceIsNonNegativeOnTheGridAndPeaksAtOne)
{
    const QMap<QString, QMap<int, double>> sources = readSources(GetParam());
    ASSERT_FALSE(sources.isEmpty());
    for (auto source = sources.cbegin(); source != sources.cend(); ++source) {
        SCOPED_TRACE(qPrintable(source.key()));
        ASSERT_EQ(source->size(), 601);
        EXPECT_EQ(source->firstKey(), 400);
        EXPECT_EQ(source->lastKey(), 1000);
        EXPECT_EQ(*std::max_element(source->cbegin(), source->cend()), 1.0);
        EXPECT_GE(*std::min_element(source->cbegin(), source->cend()), 0.0);
    }
}

TEST_P(SourceTableTest, NoSourceStandsTwice)
{
    QStringList header = readTable(GetParam()).value(0);
    EXPECT_EQ(header.removeDuplicates(), 0);
}

INSTANTIATE_TEST_SUITE_P(Tables, SourceTableTest,
                         ::testing::Values("library_sources.csv", "luminescent_sources.csv", "radioactive_sources.csv"),
                         [](const ::testing::TestParamInfo<const char*>& table) {
                             return QString(table.param).section('_', 0, 0).toStdString();
                         });

TEST(DataTablesTest, LibrarySourcesPeakWhereTheLiteratureHasThem)
{
    const QMap<QString, QMap<int, double>> sources = readSources("library_sources.csv");
    // Name, peak in nm as published or as measured on the spectrum that was fitted; a fit moves it by a few nanometres.
    const QVector<std::pair<QString, int>> peaks = {
        {"AlexaFluor 488Em", 520},
        {"AlexaFluor 488Ex", 499},
        {"AlexaFluor 647Em", 671},
        {"AlexaFluor 680Em", 704},
        {"AlexaFluor 700Em", 719},
        {"AlexaFluor 750Em", 776},
        {"AlexaFluor 750Ex", 752},
        {"AlexaFluor 790Em", 805},
        {"Cy5.5Em", 692},
        {"EGFPEm", 508},
        {"EGFPEx", 489},
        {"mCherryEm", 610},
        {"mCherryEx", 587},
        {"tdTomatoEm", 581},
        {"iRFP713Em", 713},
        {"QDot 525Em", 526},
        {"QDot 655Em", 655},
        {"QDot 705Em", 702},
        {"QDot 800Em", 792},
        {"ICGEm", 840},
        {"ICGEx", 810},
        {"ICG in waterEm", 820},
        {"ICG in waterEx", 780},
        {"NIR dye 800Em", 789},
        {"NIR dye 800Ex", 774},
        {"Chlorophyll_AEm", 666},
        {"Chlorophyll_BEm", 646},
        {"ALFoodEm", 673},
    };
    for (const auto& [name, wavelength] : peaks) {
        ASSERT_TRUE(sources.contains(name)) << qPrintable(name);
        EXPECT_NEAR(peak(sources[name]), wavelength, 3) << qPrintable(name);
    }
}

TEST(DataTablesTest, LibrarySourcesBearTheNamesThatProbeTextsTurnInto)
{
    const QStringList header = readTable("library_sources.csv").value(0);
    for (const QString& name : header.mid(1)) {
        EXPECT_TRUE(name.endsWith("Em") || name.endsWith("Ex")) << qPrintable(name);
        EXPECT_FALSE(name.contains("Alexa Fluor") || name.contains("Qdot") || name.contains("AF")) << qPrintable(name);
    }
}

TEST(DataTablesTest, AGaussianSumIsTabulatedAsWorkedOutByHand)
{
    // The figures of QDot 525 are one Gaussian: 525.9 nm, sigma 14.8. Largest on the grid at 526; at 550 the exponents
    // are (24.1 / 14.8)^2 / 2 = 1.325808 and (0.1 / 14.8)^2 / 2 = 0.0000228, so exp(-1.325785) = 0.265594.
    const QMap<int, double> curve = readSources("library_sources.csv").value("QDot 525Em");
    EXPECT_EQ(curve[526], 1.0);
    EXPECT_NEAR(curve[550], 0.265594, 1e-6);
    EXPECT_EQ(curve[900], 0.0);
}

TEST(DataTablesTest, AutofluorescenceHasBothCurvesAndItsShape)
{
    const QMap<QString, QMap<int, double>> sources = readSources("library_sources.csv");
    for (const char* name : {"ALFreeEm", "ALFreeEx", "ALFoodEm", "ALFoodEx"}) {
        ASSERT_TRUE(sources.contains(name)) << name;
    }
    const QMap<int, double> tissue = sources["ALFreeEm"];
    for (int w = 580; w < 1000; w += 20) {
        EXPECT_GT(tissue[w], tissue[w + 20]) << w;
    }
    EXPECT_GT(tissue[820], 0.05);
    const QMap<int, double> food = sources["ALFoodEm"];
    EXPECT_GT(food[730], 0.2);
    EXPECT_LT(food[730], 0.5);
    EXPECT_GT(food[730], food[708]);
    // Food is excited in the blue and in the red, hardly in the green.
    const QMap<int, double> foodExcitation = sources["ALFoodEx"];
    EXPECT_GT(foodExcitation[430], 0.9);
    EXPECT_GT(foodExcitation[668], 5.0 * foodExcitation[560]);
    EXPECT_GT(sources["ALFreeEx"][450], 5.0 * sources["ALFreeEx"][650]);
}

TEST(DataTablesTest, LuciferasesPeakAsAtBodyTemperature)
{
    const QMap<QString, QMap<int, double>> sources = readSources("luminescent_sources.csv");
    const QVector<std::pair<QString, int>> peaks = {{"Firefly LuciferaseEm", 612},
                                                    {"Click-Beetle Red LuciferaseEm", 611},
                                                    {"Click-Beetle Green LuciferaseEm", 544},
                                                    {"Renilla LuciferaseEm", 480},
                                                    {"Shrimp LuciferaseEm", 460}};
    EXPECT_EQ(sources.size(), peaks.size());
    for (const auto& [name, wavelength] : peaks) {
        EXPECT_NEAR(peak(sources.value(name)), wavelength, 1) << qPrintable(name);
    }
    int width = 0;
    for (double value : sources["Firefly LuciferaseEm"]) {
        width += value >= 0.5 ? 1 : 0;
    }
    EXPECT_NEAR(width, 100, 10);
}

TEST(DataTablesTest, CherenkovLightFallsWithTheSquareOfTheWavelength)
{
    const QMap<QString, QMap<int, double>> sources = readSources("radioactive_sources.csv");
    EXPECT_TRUE(sources.contains("F-18"));
    EXPECT_FALSE(sources.contains("Tc-99m"));
    EXPECT_FALSE(sources.contains("Undefined"));
    for (const QMap<int, double>& curve : sources) {
        EXPECT_EQ(curve[400], 1.0);
        EXPECT_NEAR(curve[500], 0.64, 1e-6);
        EXPECT_NEAR(curve[800], 0.25, 1e-6);
        EXPECT_NEAR(curve[1000], 0.16, 1e-6);
    }
}

TEST(DataTablesTest, IsotopesHaveTheirHalfLives)
{
    QMap<QString, QStringList> isotopes;
    for (const QStringList& row : readTable("isotopes.csv")) {
        isotopes[row.value(0)] = row;
    }
    EXPECT_EQ(isotopes.value("Undefined").mid(1), QStringList({"0", "no"}));
    EXPECT_NEAR(number(isotopes.value("F-18").value(1)) / 60.0, 109.734, 1e-3);
    EXPECT_NEAR(number(isotopes.value("Zr-89").value(1)) / 3600.0, 78.36, 1e-2);
    EXPECT_NEAR(number(isotopes.value("P-32").value(1)) / 86400.0, 14.269, 1e-3);
    EXPECT_NEAR(number(isotopes.value("Y-90").value(1)) / 3600.0, 64.05, 1e-2);
    EXPECT_EQ(isotopes.value("Tc-99m").value(2), "no");
    const QMap<QString, QMap<int, double>> sources = readSources("radioactive_sources.csv");
    isotopes.remove("isotope");
    for (const QStringList& row : qAsConst(isotopes)) {
        EXPECT_EQ(sources.contains(row[0]), row[2] == "yes") << qPrintable(row[0]);
    }
}

TEST(DataTablesTest, MuscleIsBloodAndWaterAsWorkedOutByHand)
{
    const auto muscle = readTissue("Muscle");
    ASSERT_EQ(muscle.size(), 551);
    EXPECT_EQ(muscle.firstKey(), 450);
    EXPECT_EQ(muscle.lastKey(), 1000);
    // 0.04 x 2.303 x 150 / 64500 = 2.142326e-4 a unit of extinction. At 800 nm the extinction is 0.75 x 816 + 0.25 x
    // 761.72 = 802.43 and water adds 0.7 x 0.01964 = 0.013748: 0.171907 + 0.013748. The scattering is 13 x 1.6^-0.926.
    EXPECT_NEAR(muscle[800].first, 0.185655, 2e-6);
    EXPECT_NEAR(muscle[800].second, 8.41256, 2e-5);
    EXPECT_NEAR(muscle[500].second, 13.0, 1e-9);
    // Half way between the figures of 600 and 610 nm: extinction (6069.3 + 3490.4) / 2 = 4779.85, water 0.0022854.
    EXPECT_NEAR(muscle[605].first, 1.025600, 1e-5);
    // Near-infrared window: a hundred times clearer than in the blue; the double peak of oxygenated blood in the green.
    EXPECT_GT(muscle[450].first, 50.0 * muscle[700].first);
    EXPECT_GT(muscle[542].first, muscle[510].first);
    EXPECT_GT(muscle[577].first, muscle[560].first);
}

TEST(DataTablesTest, OxygenatedAndDeoxygenatedBloodCrossAtTheIsosbesticPoint)
{
    // Below 790 nm deoxygenated blood absorbs more, above 800 nm oxygenated blood does: the well-known crossing near
    // 797 nm.
    const QVector<QStringList> rows = readTable("figures/absorbers.csv");
    int crossings = 0;
    for (int r = 1; r + 1 < rows.size(); ++r) {
        const double here = number(rows[r][1]) - number(rows[r][2]);
        const double next = number(rows[r + 1][1]) - number(rows[r + 1][2]);
        const double wavelength = number(rows[r][0]);
        if (wavelength >= 600.0 && here * next < 0.0) {
            ++crossings;
            EXPECT_NEAR(wavelength + 10.0 * here / (here - next), 797.0, 2.5);
        }
    }
    EXPECT_EQ(crossings, 1);
}

TEST(DataTablesTest, ThePhantomIsFlat)
{
    const auto phantom = readTissue("RMP-7");
    ASSERT_EQ(phantom.size(), 551);
    double before = 12.0;
    for (const auto& [absorption, scattering] : phantom) {
        EXPECT_EQ(absorption, 0.25);
        EXPECT_LT(scattering, before);
        EXPECT_GE(scattering, 10.0);
        before = scattering;
    }
}

TEST(DataTablesTest, TheNearInfraredResponseGoesFromBlueOverGreenToRed)
{
    QVector<QStringList> rows = readTable("color_responses.csv");
    rows.removeFirst();
    ASSERT_EQ(rows.size(), 601);
    EXPECT_EQ(rows.first(), QStringList({"NIR", "400", "0", "0", "1"}));
    EXPECT_EQ(rows[300], QStringList({"NIR", "700", "0", "1", "0"}));
    EXPECT_EQ(rows.last(), QStringList({"NIR", "1000", "1", "0", "0"}));
    QStringList colours;
    for (const QStringList& row : qAsConst(rows)) {
        const double red = number(row[2]);
        const double green = number(row[3]);
        const double blue = number(row[4]);
        EXPECT_EQ(std::min({red, green, blue}), 0.0) << qPrintable(row[1]);
        EXPECT_NEAR(red + green + blue, 1.0, 1e-5) << qPrintable(row[1]);
        colours.append(row.mid(2).join(','));
    }
    EXPECT_EQ(colours.removeDuplicates(), 0);
}

TEST(DataTablesTest, TheListOfProbesNamesExactlyTheSources)
{
    QStringList expected;
    QVector<QStringList> probes = readTable("probes.csv");
    ASSERT_EQ(probes.takeFirst(), QStringList({"name", "kind", "has_em", "has_ex", "aliases"}));
    for (const QStringList& probe : qAsConst(probes)) {
        const bool suffix = probe[1] != "radioactive";
        if (probe[2] == "yes") {
            expected.append(probe[0] + (suffix ? "Em" : ""));
        }
        if (probe[3] == "yes") {
            expected.append(probe[0] + "Ex");
        }
        if (probe[0] == "AlexaFluor 750") {
            EXPECT_EQ(probe[4], "Alexa Fluor 750;AF750");
        }
    }
    QStringList sources = readTable("library_sources.csv")[0].mid(1) + readTable("luminescent_sources.csv")[0].mid(1) +
                          readTable("radioactive_sources.csv")[0].mid(1);
    expected.sort();
    sources.sort();
    EXPECT_EQ(expected, sources);
}
