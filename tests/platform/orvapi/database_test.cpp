// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVDatabase.h"
#include "host/orv_paths.h"
#include "platform/orvapi/ReferenceTables.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

void writeFile(const QString& strPath, const QByteArray& bytes)
{
    QFile file(strPath);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << strPath.toStdString();
    file.write(bytes);
}

class ReferenceTablesTest : public ::testing::Test
{
protected:
    void write(const char* pName, const QByteArray& bytes) { writeFile(m_folder.filePath(pName), bytes); }
    void read() { m_tables.addFolder(m_folder.path() + "/", false); }
    std::string problems() const { return m_tables.problems.join("\n").toStdString(); }
    void expectProblem(const char* pFile, int nLine)
    {
        const QString place = QStringLiteral("%1:%2:").arg(m_folder.filePath(pFile)).arg(nLine);
        const auto& list = m_tables.problems;
        EXPECT_TRUE(std::any_of(list.cbegin(), list.cend(), [&](const QString& p) { return p.startsWith(place); }))
            << place.toStdString() << " not in:\n"
            << problems();
    }

    QTemporaryDir m_folder;
    ReferenceTables m_tables;
};

TEST_F(ReferenceTablesTest, SourcesAreColumnsWithACommentAndBlankLinesAround)
{
    write("library_sources.csv",
          "\xEF\xBB\xBF# where from\n\nwavelength_nm,DyeEm,DyeEx\r\n500,0.25,1\r\n501,1, 0.5 \n\n");
    read();
    EXPECT_TRUE(m_tables.problems.isEmpty()) << problems();
    ASSERT_TRUE(m_tables.librarySources.contains("DyeEm"));
    const sSourceSpecFileParameters source = m_tables.librarySources.value("DyeEx");
    EXPECT_EQ(source.n, 2);
    EXPECT_EQ(source.wavelength, (QVector<double>{500.0, 501.0}));
    EXPECT_EQ(source.intensity, (QVector<double>{1.0, 0.5}));
}

TEST_F(ReferenceTablesTest, EmptyCellsAreWavelengthsWithoutAFigure)
{
    write("radioactive_sources.csv", "wavelength_nm,A,B,C\n500,1,,\n510,2,3,\n520,,4,\n");
    read();
    EXPECT_EQ(m_tables.radioactiveSources.value("A").wavelength, (QVector<double>{500.0, 510.0}));
    EXPECT_EQ(m_tables.radioactiveSources.value("B").wavelength, (QVector<double>{510.0, 520.0}));
    EXPECT_FALSE(m_tables.radioactiveSources.contains("C"));
    EXPECT_EQ(m_tables.problems.size(), 1) << problems();
}

TEST_F(ReferenceTablesTest, GarbledRowsAreToldWithFileAndLineAndTheRestServes)
{
    write("luminescent_sources.csv",
          "wavelength_nm,A\n500,1\nfoo,2\n510,bar\n505\n520,nan\n499,3\n500,3\n530,0x1\n540,4\n");
    read();
    for (const int line : {3, 4, 5, 6, 7, 8, 9}) {
        expectProblem("luminescent_sources.csv", line);
    }
    EXPECT_EQ(m_tables.problems.size(), 7) << problems();
    EXPECT_EQ(m_tables.luminescentSources.value("A").wavelength, (QVector<double>{500.0, 540.0}));
}

TEST_F(ReferenceTablesTest, ColumnsWithoutANameOfTheirOwnAreLeftOut)
{
    write("luminescent_sources.csv", "wavelength_nm,A,,A\n500,1,2,3\n");
    read();
    EXPECT_EQ(m_tables.luminescentSources.keys(), QStringList{"A"});
    EXPECT_EQ(m_tables.luminescentSources.value("A").intensity, QVector<double>{1.0});
    EXPECT_EQ(m_tables.problems.size(), 2) << problems();
}

TEST_F(ReferenceTablesTest, WrongHeaderRefusesTheTableAlone)
{
    write("tissues.csv", "tissue;wavelength_nm\nMuscle;500\n");
    write("luminescent_sources.csv", "");
    write("library_sources.csv", "lambda,A\n500,1\n");
    write("isotopes.csv", "isotope,half_life_s,cherenkov\nX-1,10,yes\n");
    read();
    EXPECT_EQ(m_tables.problems.size(), 3) << problems();
    EXPECT_TRUE(m_tables.tissues.isEmpty());
    EXPECT_TRUE(m_tables.librarySources.isEmpty());
    EXPECT_EQ(m_tables.isotopes.size(), 1);
}

TEST_F(ReferenceTablesTest, TissuesSensorsIsotopesAndProbesAreRead)
{
    write("tissues.csv", "tissue,wavelength_nm,absorption_per_cm,reduced_scattering_per_cm\n"
                         "Fat,500,1,10\nSkin,500,2,20\nFat,510,3,30\nFat,505,9,9\nFat,520,x,9\n");
    write("color_responses.csv", "sensor,wavelength_nm,red,green,blue\nNIR,700,0.1,0.2,0.3\n,710,1,1,1\n");
    write("isotopes.csv", "isotope,half_life_s,cherenkov\nX-1,10.5,yes\nX-2,-1,no\nX-3,5,maybe\nx-1,11,no\n");
    write("probes.csv",
          "name,kind,has_em,has_ex,aliases\nDye 1,fluorophore,yes,no,D1; Dye One\nDye 2,fluorophore,da,no,\n");
    read();
    EXPECT_EQ(m_tables.tissues.value("Fat").absorption, (QVector<double>{1.0, 3.0}));
    EXPECT_EQ(m_tables.tissues.value("Fat").scattering, (QVector<double>{10.0, 30.0}));
    EXPECT_EQ(m_tables.tissues.value("Fat").n, 2);
    EXPECT_EQ(m_tables.tissues.value("Skin").n, 1);
    EXPECT_EQ(m_tables.colorResponses.value("NIR").green, QVector<double>{0.2});
    expectProblem("tissues.csv", 5);
    expectProblem("tissues.csv", 6);
    expectProblem("color_responses.csv", 3);
    expectProblem("isotopes.csv", 3);
    expectProblem("isotopes.csv", 4);
    expectProblem("probes.csv", 3);
    EXPECT_EQ(m_tables.problems.size(), 6) << problems();
    ASSERT_EQ(m_tables.isotopes.size(), 1);
    EXPECT_EQ(m_tables.isotopes.first().halfLifeSec, 11.0); // the later entry of the name
    ASSERT_EQ(m_tables.probes.size(), 1);
    EXPECT_EQ(m_tables.probes.first().aliases, (QStringList{"D1", "Dye One"}));
    EXPECT_TRUE(m_tables.probes.first().hasEmission);
    EXPECT_FALSE(m_tables.probes.first().hasExcitation);
}

TEST_F(ReferenceTablesTest, MissingTablesAreToldOnlyWhereTheyAreExpected)
{
    read();
    EXPECT_TRUE(m_tables.problems.isEmpty());
    m_tables.addFolder(m_folder.path() + "/", true);
    EXPECT_EQ(m_tables.problems.size(), 7) << problems();
    m_tables.addFolder(QString(), true); // no such folder at all
    EXPECT_EQ(m_tables.problems.size(), 7);
}

TEST_F(ReferenceTablesTest, BinaryAndUnreadableFilesAreToldAndHarmless)
{
    write("isotopes.csv", QByteArray("\x00\xff\xfe,\x01\n\n\n,,,", 12));
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("tissues.csv"));
    read();
    EXPECT_EQ(m_tables.problems.size(), 2) << problems();
}

class DatabaseTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_strUser = getORVPath(ORV_PATH_USER_DATA, true, nullptr);
        ASSERT_FALSE(m_strUser.isEmpty());
        CORVDatabase::reload();
    }
    void TearDown() override
    {
        for (const QString& file : QDir(m_strUser).entryList({"*.csv"})) {
            QFile::remove(m_strUser + file);
        }
        CORVDatabase::reload();
    }
    QString m_strUser;
};

TEST_F(DatabaseTest, InstalledTablesReadWithoutAProblem)
{
    EXPECT_TRUE(CORVDatabase::problems().isEmpty()) << CORVDatabase::problems().join("\n").toStdString();
    sSourceSpecFileParameters source;
    for (const char* pName :
         {"AlexaFluor 750Em", "AlexaFluor 750Ex", "QDot 800Em", "ALFreeEm", "ALFreeEx", "ALFoodEm", "ALFoodEx"}) {
        ASSERT_TRUE(CORVDatabase::readLIBSource(pName, &source)) << pName;
        ASSERT_GT(source.n, 100) << pName;
        EXPECT_EQ(source.n, source.wavelength.size());
        EXPECT_EQ(source.n, source.intensity.size());
        EXPECT_NEAR(*std::max_element(source.intensity.cbegin(), source.intensity.cend()), 1.0, 0.05) << pName;
        for (int i = 1; i < source.n; ++i) {
            ASSERT_EQ(source.wavelength.at(i), source.wavelength.at(i - 1) + 1.0) << pName;
        }
    }
    ASSERT_FALSE(CORVDatabase::getSourceList().isEmpty());
    for (const QString& name : CORVDatabase::getSourceList()) {
        EXPECT_TRUE(CORVDatabase::readSource(name + "Em", &source)) << name.toStdString();
    }
    EXPECT_TRUE(CORVDatabase::readRADSource("F-18", &source));
    sTissuePropFileParameters tissue;
    EXPECT_TRUE(CORVDatabase::readOpticalProperty("Muscle", &tissue));
    EXPECT_TRUE(CORVDatabase::readOpticalProperty("RMP-7", &tissue));
    EXPECT_EQ(tissue.n, tissue.scattering.size());
    sColorSensorRGBspecFileParameters sensor;
    EXPECT_TRUE(CORVDatabase::readColorResponse("NIR", &sensor));
    EXPECT_EQ(sensor.n, sensor.blue.size());
}

TEST_F(DatabaseTest, AbsentNamesGiveFalseAndAnEmptyRecord)
{
    sSourceSpecFileParameters source;
    source.n = 3;
    source.wavelength = {1.0, 2.0, 3.0};
    EXPECT_FALSE(CORVDatabase::readLIBSource("No such dyeEm", &source));
    EXPECT_EQ(source.n, 0);
    EXPECT_TRUE(source.wavelength.isEmpty());
    EXPECT_FALSE(CORVDatabase::readLIBSource("alexafluor 750em", &source)); // exact
    EXPECT_FALSE(CORVDatabase::readSource(QString(), &source));
    EXPECT_FALSE(CORVDatabase::readRADSource("Undefined", &source));
    sTissuePropFileParameters tissue;
    EXPECT_FALSE(CORVDatabase::readOpticalProperty("Stone", &tissue));
    EXPECT_FALSE(CORVDatabase::readColorResponse("UV", nullptr));
    EXPECT_TRUE(CORVDatabase::readColorResponse("NIR", nullptr));
}

TEST_F(DatabaseTest, IsotopesHaveHalfLivesAndBeginWithUndefined)
{
    const QStringList isotopes = CORVDatabase::isotopeList();
    ASSERT_GT(isotopes.size(), 5);
    EXPECT_EQ(isotopes.first(), "Undefined");
    EXPECT_EQ(isotopes.count("Undefined"), 1);
    EXPECT_NEAR(CORVDatabase::getCherenkovRADHalflife("F-18"), 6586.0, 10.0); // about 109.8 minutes
    EXPECT_EQ(CORVDatabase::getCherenkovRADHalflife("f-18"), CORVDatabase::getCherenkovRADHalflife("F-18"));
    EXPECT_EQ(CORVDatabase::getCherenkovRADHalflife("Undefined"), 0.0);
    EXPECT_EQ(CORVDatabase::getCherenkovRADHalflife("Unobtainium"), 0.0);
    QString name;
    EXPECT_TRUE(CORVDatabase::isCherenkovIsotope("CU-64", &name));
    EXPECT_EQ(name, "Cu-64");
    EXPECT_FALSE(CORVDatabase::isCherenkovIsotope("Tc-99m", &name));
    EXPECT_EQ(name, "Cu-64");
}

TEST_F(DatabaseTest, UserTablesAddAndWin)
{
    writeFile(m_strUser + "library_sources.csv", "wavelength_nm,My DyeEm,AlexaFluor 750Em\n700,1,0.5\nbroken\n");
    writeFile(m_strUser + "isotopes.csv", "isotope,half_life_s,cherenkov\nf-18,1,no\nUndefined,7,yes\n");
    writeFile(m_strUser + "tissues.csv",
              "tissue,wavelength_nm,absorption_per_cm,reduced_scattering_per_cm\nMuscle,600,0.5,5\n");
    CORVDatabase::reload();
    sSourceSpecFileParameters source;
    EXPECT_TRUE(CORVDatabase::readLIBSource("My DyeEm", &source));
    EXPECT_TRUE(CORVDatabase::readLIBSource("AlexaFluor 750Em", &source));
    EXPECT_EQ(source.intensity, QVector<double>{0.5});
    EXPECT_TRUE(CORVDatabase::readLIBSource("AlexaFluor 750Ex", &source));
    EXPECT_EQ(CORVDatabase::getCherenkovRADHalflife("F-18"), 1.0);
    EXPECT_FALSE(CORVDatabase::isCherenkovIsotope("F-18"));
    EXPECT_EQ(CORVDatabase::isotopeList().first(), "Undefined");
    EXPECT_EQ(CORVDatabase::getCherenkovRADHalflife("Undefined"), 0.0);
    sTissuePropFileParameters tissue;
    ASSERT_TRUE(CORVDatabase::readOpticalProperty("Muscle", &tissue));
    EXPECT_EQ(tissue.n, 1);
    EXPECT_TRUE(CORVDatabase::readOpticalProperty("RMP-7", &tissue));
    ASSERT_EQ(CORVDatabase::problems().size(), 1);
    EXPECT_TRUE(CORVDatabase::problems().first().startsWith(m_strUser + "library_sources.csv:3:"));
}

TEST_F(DatabaseTest, ProbesAreFoundByNameAndByOtherNames)
{
    EXPECT_GE(CORVDatabase::probeList().size(), 60);
    sProbeParameters probe;
    ASSERT_TRUE(CORVDatabase::findProbe("af750", &probe));
    EXPECT_EQ(probe.name, "AlexaFluor 750");
    ASSERT_TRUE(CORVDatabase::findProbe(" ALEXAFLUOR 750 ", &probe));
    EXPECT_TRUE(probe.hasEmission);
    EXPECT_FALSE(CORVDatabase::findProbe("No such dye", &probe));
    EXPECT_TRUE(probe.name.isEmpty());
}

TEST_F(DatabaseTest, ListsAreSortedWithoutRegardToCase)
{
    EXPECT_TRUE(CORVDatabase::insensitiveLessThan("alpha", "Beta"));
    EXPECT_FALSE(CORVDatabase::insensitiveLessThan("Beta", "alpha"));
    EXPECT_FALSE(CORVDatabase::insensitiveLessThan("same", "same"));
    EXPECT_NE(CORVDatabase::insensitiveLessThan("Same", "same"), CORVDatabase::insensitiveLessThan("same", "Same"));
    for (const QStringList& list : {CORVDatabase::getSourceList(), CORVDatabase::getLIBSourceList(),
                                    QStringList(CORVDatabase::getRADSourceList().mid(1))}) {
        EXPECT_FALSE(list.isEmpty());
        EXPECT_TRUE(std::is_sorted(list.cbegin(), list.cend(), CORVDatabase::insensitiveLessThan));
    }
}

TEST_F(DatabaseTest, LuminescentSourcesAreOfferedOnceAndWithoutASuffix)
{
    EXPECT_TRUE(CORVDatabase::getSourceList().contains("Firefly Luciferase"));
    EXPECT_FALSE(CORVDatabase::getSourceList().contains("Firefly LuciferaseEm"));
    writeFile(m_strUser + "luminescent_sources.csv", "wavelength_nm,MineEm,MineEx,NoSuffix\n600,1,1,1\n");
    CORVDatabase::reload();
    EXPECT_EQ(CORVDatabase::getSourceList().count("Mine"), 1);
    EXPECT_FALSE(CORVDatabase::getSourceList().contains("NoSuffix"));
    sSourceSpecFileParameters source;
    EXPECT_TRUE(CORVDatabase::readSource("MineEm", &source));
    EXPECT_FALSE(CORVDatabase::readSource("Mine", &source));
}

TEST_F(DatabaseTest, LibrarySourcesKeepTheirSuffix)
{
    EXPECT_TRUE(CORVDatabase::getLIBSourceList().contains("AlexaFluor 750Em"));
    EXPECT_TRUE(CORVDatabase::getLIBSourceList().contains("AlexaFluor 750Ex"));
}

TEST_F(DatabaseTest, RadioactiveSourcesBeginWithTheUndefinedOne)
{
    EXPECT_EQ(CORVDatabase::getRADSourceList().first(), "Undefined");
    EXPECT_TRUE(CORVDatabase::getRADSourceList().contains("F-18"));
    writeFile(m_strUser + "radioactive_sources.csv", "wavelength_nm,Undefined,A-1\n600,1,1\n");
    CORVDatabase::reload();
    EXPECT_EQ(CORVDatabase::getRADSourceList().count("Undefined"), 1);
    EXPECT_EQ(CORVDatabase::getRADSourceList().mid(0, 2), (QStringList{"Undefined", "A-1"}));
}

TEST_F(DatabaseTest, NumbersReadTheSameInAGermanLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    CORVDatabase::reload();
    EXPECT_NEAR(CORVDatabase::getCherenkovRADHalflife("F-18"), 6586.0, 10.0);
    EXPECT_TRUE(CORVDatabase::problems().isEmpty());
    QLocale::setDefault(before);
}

} // namespace
