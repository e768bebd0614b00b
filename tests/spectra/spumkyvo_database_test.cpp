// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/SpumKyvoDatabase.h"

#include "host/orv_paths.h"
#include "platform/orvutils/LogSinks.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTemporaryDir>
#include <QTextStream>

#include <clocale>
#include <cmath>
#include <csignal>
#include <sys/resource.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace {

const char* const cannotOpen = "SpumKyvo: Unable to open the spectrum library file.";
const char* const cannotSave = "SpumKyvo: Unable to open the spum database file to save.";
const char* const noFolder = "SpumKyvo: cannot find the database folder path";

// A list that owns its spectra, as every list outside has an owner.
class Spectra : public QList<SpectrumPlotParams*>
{
public:
    Spectra() = default;
    Spectra(const Spectra&) = delete;
    Spectra& operator=(const Spectra&) = delete;
    ~Spectra() { qDeleteAll(*this); }

    SpectrumPlotParams& add(const QString& name, const QVector<SpectrumPoint>& points)
    {
        append(new SpectrumPlotParams);
        last()->settings.name = name;
        last()->points = points;
        return *last();
    }
};

class SpumKyvoDatabaseTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_folder.isValid());
        orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
        m_nSink = orv::addLogSink([this](const orv::LogRecord& line) { m_log.append(line); });
    }
    void TearDown() override { orv::removeLogSink(m_nSink); }

    QString path(const QString& name = "library.csv") const { return m_folder.filePath(name); }

    QString write(const QByteArray& text) const
    {
        QFile file(path());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return path();
    }
    QByteArray text(const QString& file) const
    {
        QFile f(file);
        EXPECT_TRUE(f.open(QIODevice::ReadOnly));
        return f.readAll();
    }
    bool load(const QByteArray& content) { return m_database.loadLibraryFile(write(content), m_spectra, m_note); }

    QStringList messages() const
    {
        QStringList result;
        for (const orv::LogRecord& line : m_log) {
            result.append(line.m_strMessage);
        }
        return result;
    }

    QTemporaryDir m_folder;
    QList<orv::LogRecord> m_log;
    int m_nSink = 0;
    SpumKyvoDatabase m_database;
    Spectra m_spectra;
    QString m_note;
};

// The user's folder of libraries.
QString libraries()
{
    return getORVPath(ORV_PATH_USER_DATA, true, nullptr) + "Spum/";
}

const QByteArray twoDyes = "$,Note,two dyes\n"
                           "$,NumSpec,2\n"
                           "$,Color,red,blue\n"
                           "$,Origin,lab,lab\n"
                           "$,Select,1,1\n"
                           "Excitation,Emission,A,B\n"
                           "500,540,0.5,0.1\n"
                           "500,560,1,0.2\n";

} // namespace

TEST_F(SpumKyvoDatabaseTest, WritesTheLinesInOrder)
{
    m_spectra.add("A", {{"500", "540", 0.5}, {"500", "560", 1}});
    m_spectra.add("B", {{"500", "540", 0.1}, {"500", "560", 0.2}});
    m_spectra[0]->settings.color = "red";
    m_spectra[1]->settings.color = "blue";
    m_spectra[0]->origin = m_spectra[1]->origin = "lab";
    ASSERT_TRUE(m_database.saveLibrary(path(), m_spectra, "two dyes"));
    EXPECT_EQ(text(path()), twoDyes);
    EXPECT_TRUE(m_log.isEmpty());
}

TEST_F(SpumKyvoDatabaseTest, ReadsTheLines)
{
    ASSERT_TRUE(load(twoDyes));
    EXPECT_EQ(m_note, "two dyes");
    ASSERT_EQ(m_spectra.size(), 2);
    const SpectrumPlotParams& b = *m_spectra[1];
    EXPECT_EQ(b.settings.name, "B");
    EXPECT_EQ(b.settings.color, "blue");
    EXPECT_EQ(b.origin, "lab");
    EXPECT_TRUE(b.settings.selected);
    ASSERT_EQ(b.points.size(), 2);
    EXPECT_EQ(b.points[1].first, "500");
    EXPECT_EQ(b.points[1].second, "560");
    EXPECT_EQ(b.points[1].value, 0.2);
    EXPECT_GE(b.points.capacity(), 1000);
    // What the file does not tell is as in a new record.
    EXPECT_EQ(b.settings.shape, 1);
    EXPECT_EQ(b.settings.curveId, -1);
    EXPECT_EQ(b.axis, 0);
}

TEST_F(SpumKyvoDatabaseTest, WritesSixSignificantDigits)
{
    m_spectra.add("A", {{"1", "1", 1.0 / 3}, {"1", "2", 1234567.0}, {"1", "3", 1e-9}, {"1", "4", -0.5}});
    ASSERT_TRUE(m_database.saveLibrary(path(), m_spectra, ""));
    const QByteArray content = text(path());
    EXPECT_TRUE(content.endsWith("1,1,0.333333\n1,2,1.23457e+06\n1,3,1e-09\n1,4,-0.5\n")) << content.constData();
}

TEST_F(SpumKyvoDatabaseTest, WritesNothingWithoutSpectra)
{
    EXPECT_FALSE(m_database.saveLibrary(path(), m_spectra, "note"));
    EXPECT_FALSE(QFileInfo::exists(path()));
    EXPECT_TRUE(m_log.isEmpty());
}

TEST_F(SpumKyvoDatabaseTest, WritesNothingWhenASpectrumIsShorterThanTheFirst)
{
    m_spectra.add("A", {{"1", "1", 1}, {"1", "2", 2}});
    m_spectra.add("B", {{"1", "1", 1}});
    EXPECT_FALSE(m_database.saveLibrary(path(), m_spectra, ""));
    EXPECT_FALSE(QFileInfo::exists(path()));
    m_spectra[1]->points = {{"x", "x", 1}, {"x", "x", 2}, {"x", "x", 3}};
    EXPECT_TRUE(m_database.saveLibrary(path(), m_spectra, ""));
    EXPECT_TRUE(text(path()).endsWith("1,1,1,1\n1,2,2,2\n"));
}

TEST_F(SpumKyvoDatabaseTest, WritesUnselectedAsZero)
{
    m_spectra.add("A", {}).settings.selected = false;
    m_spectra.add("B", {});
    ASSERT_TRUE(m_database.saveLibrary(path(), m_spectra, ""));
    EXPECT_TRUE(text(path()).contains("\n$,Select,0,1\n"));
    Spectra read;
    ASSERT_TRUE(m_database.loadLibraryFile(path(), read, m_note));
    EXPECT_FALSE(read[0]->settings.selected);
    EXPECT_TRUE(read[1]->settings.selected);
}

TEST_F(SpumKyvoDatabaseTest, ReplacesAnEarlierFile)
{
    write(QByteArray(5000, 'x'));
    m_spectra.add("A", {{"1", "1", 1}});
    ASSERT_TRUE(m_database.saveLibrary(path(), m_spectra, "n"));
    EXPECT_EQ(text(path()),
              "$,Note,n\n$,NumSpec,1\n$,Color,Black\n$,Origin,\n$,Select,1\nExcitation,Emission,A\n1,1,1\n");
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"library.csv"});
}

TEST_F(SpumKyvoDatabaseTest, SavingToWhereNoFileCanBeIsLogged)
{
    m_spectra.add("A", {{"1", "1", 1}});
    write("a file in the folder's place");
    EXPECT_FALSE(m_database.saveLibrary(path("library.csv/new.csv"), m_spectra, ""));
    EXPECT_FALSE(m_database.saveLibrary(m_folder.path(), m_spectra, ""));
    EXPECT_FALSE(m_database.saveLibrary(QString(), m_spectra, ""));
    // Each time with the reason ahead.
    EXPECT_EQ(messages().filter(cannotSave).size(), 3);
    EXPECT_EQ(messages().size(), 6);
    EXPECT_EQ(messages()[1], cannotSave);
    EXPECT_EQ(m_log[0].m_strExtra, "");
    EXPECT_EQ(m_log[0].m_nLevel, 3);
}

TEST_F(SpumKyvoDatabaseTest, AFullDiskLeavesTheEarlierFile)
{
    write(twoDyes);
    SpectrumPlotParams& spectrum = m_spectra.add("A", {});
    for (int i = 0; i < 20000; ++i) {
        spectrum.points.append({"500", QString::number(i), 0.5});
    }
    // A limit on the size of files stands for the end of the disk.
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit small = old;
    small.rlim_cur = 4096;
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool bSaved = m_database.saveLibrary(path(), m_spectra, "");
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_FALSE(bSaved);
    EXPECT_EQ(messages().size(), 2);
    EXPECT_EQ(messages().last(), cannotSave);
    EXPECT_EQ(text(path()), twoDyes);
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"library.csv"});
}

TEST_F(SpumKyvoDatabaseTest, LoadingWhatIsNotThereIsLogged)
{
    EXPECT_FALSE(m_database.loadLibraryFile(path("none.csv"), m_spectra, m_note));
    EXPECT_FALSE(m_database.loadLibraryFile(m_folder.path(), m_spectra, m_note));
    EXPECT_FALSE(m_database.loadLibrary("none", m_spectra, m_note));
    EXPECT_EQ(messages(), (QStringList{cannotOpen, cannotOpen, cannotOpen}));
}

TEST_F(SpumKyvoDatabaseTest, AnEmptyNameIsRefusedInSilence)
{
    EXPECT_FALSE(m_database.loadLibrary("", m_spectra, m_note));
    EXPECT_TRUE(m_log.isEmpty());
}

TEST_F(SpumKyvoDatabaseTest, AnEmptyFileLoadsAsNothing)
{
    EXPECT_TRUE(load(""));
    EXPECT_TRUE(m_spectra.isEmpty());
    EXPECT_TRUE(load("\n\n\n"));
    EXPECT_TRUE(m_spectra.isEmpty());
}

TEST_F(SpumKyvoDatabaseTest, WithoutACountTheFileLoadsAsNothing)
{
    EXPECT_TRUE(load("$,Note,x\nExcitation,Emission,A\n500,540,1\n"));
    EXPECT_TRUE(m_spectra.isEmpty());
    EXPECT_EQ(m_note, "x");
    EXPECT_TRUE(load("$,Color\n$,Origin\n$,Select\n")); // too few fields to be looked at
}

TEST_F(SpumKyvoDatabaseTest, WithoutACountAColorFails)
{
    EXPECT_FALSE(load("$,Note,x\n$,Color,red\n"));
    EXPECT_FALSE(load("$,Select,1\n$,NumSpec,1\n"));
    EXPECT_FALSE(load("$,Origin,a,b\n"));
    EXPECT_TRUE(m_log.isEmpty());
}

TEST_F(SpumKyvoDatabaseTest, CountsOutOfRangeFail)
{
    for (const char* count : {"0", "-1", "", "two", "1.5", "10001", "1000000000", "99999999999999999999"}) {
        EXPECT_FALSE(load(QByteArray("$,NumSpec,") + count + "\n")) << count;
        EXPECT_TRUE(m_spectra.isEmpty());
    }
    EXPECT_TRUE(load("$,NumSpec,10000\n"));
    EXPECT_EQ(m_spectra.size(), 10000);
    EXPECT_TRUE(m_log.isEmpty());
}

TEST_F(SpumKyvoDatabaseTest, TheCountReplacesEarlierSpectraAndIsTakenOnce)
{
    m_spectra.add("old", {{"1", "1", 1}});
    ASSERT_TRUE(load("$,NumSpec,2\n$,Color,red,blue\n$,NumSpec,1\n$,NumSpec,0\n"));
    ASSERT_EQ(m_spectra.size(), 2);
    EXPECT_EQ(m_spectra[0]->settings.name, "");
    EXPECT_EQ(m_spectra[0]->settings.color, "red");
    EXPECT_TRUE(m_spectra[0]->points.isEmpty());
}

TEST_F(SpumKyvoDatabaseTest, EarlierSpectraStayWithoutACount)
{
    m_spectra.add("old", {{"1", "1", 1}});
    ASSERT_TRUE(load("$,Note,new\nExcitation,Emission,A\n2,2,2\n"));
    ASSERT_EQ(m_spectra.size(), 1);
    EXPECT_EQ(m_spectra[0]->settings.name, "old");
    EXPECT_EQ(m_spectra[0]->points.size(), 1);
}

TEST_F(SpumKyvoDatabaseTest, LinesOfTheWrongWidthFailForKeysOnly)
{
    for (const char* line :
         {"$,Color,red", "$,Color,red,blue,green", "$,Origin,a", "$,Select,1,1,", "$,Select,1,1,1"}) {
        EXPECT_FALSE(load(QByteArray("$,NumSpec,2\n") + line + "\n")) << line;
        EXPECT_EQ(m_spectra.size(), 2); // as far as it came
    }
    EXPECT_TRUE(
        load("$,NumSpec,2\nExcitation,Emission,A\nExcitation,Emission,A,B\n500,540,1\n500,540,1,2,3\n1,2,3,4\n"));
    ASSERT_EQ(m_spectra[1]->points.size(), 1);
    EXPECT_EQ(m_spectra[1]->points[0].value, 4);
}

TEST_F(SpumKyvoDatabaseTest, UnknownKeysAreSkipped)
{
    EXPECT_TRUE(load("$,Author,me,you\n$,,\n$,NumSpec,1\n$, Color ,a,b,c,d\n"));
    EXPECT_EQ(m_spectra.size(), 1);
}

TEST_F(SpumKyvoDatabaseTest, KeysAreFoundInAnyCase)
{
    ASSERT_TRUE(load("$,NOTE,n\n$,numspec,1\n$,cOLOR,red\n$,ORIGIN,lab\n$,select,0\nEXCITATION,emission,A\n1,2,3\n"));
    ASSERT_EQ(m_spectra.size(), 1);
    EXPECT_EQ(m_note, "n");
    EXPECT_EQ(m_spectra[0]->settings.color, "red");
    EXPECT_EQ(m_spectra[0]->origin, "lab");
    EXPECT_FALSE(m_spectra[0]->settings.selected);
    EXPECT_EQ(m_spectra[0]->settings.name, "A");
    EXPECT_EQ(m_spectra[0]->points.size(), 1);
}

TEST_F(SpumKyvoDatabaseTest, LinesStandInAnyOrderBehindTheCount)
{
    ASSERT_TRUE(
        load("$,NumSpec,1\nExcitation,Emission,A\n1,2,3\n$,Select,0\n$,Origin,lab\n$,Note,late\n$,Color,red\n4,5,6\n"));
    EXPECT_EQ(m_note, "late");
    EXPECT_EQ(m_spectra[0]->settings.color, "red");
    ASSERT_EQ(m_spectra[0]->points.size(), 2);
    EXPECT_EQ(m_spectra[0]->points[1].value, 6);
}

TEST_F(SpumKyvoDatabaseTest, DataAheadOfTheHeaderAreSkipped)
{
    ASSERT_TRUE(load("$,NumSpec,1\n1,2,3\nEmission,Excitation,B\nExcitation,Emission,A\n4,5,6\n"));
    ASSERT_EQ(m_spectra[0]->points.size(), 1);
    EXPECT_EQ(m_spectra[0]->points[0].first, "4");
    EXPECT_EQ(m_spectra[0]->settings.name, "A");
}

TEST_F(SpumKyvoDatabaseTest, ASecondHeaderIsDataToo)
{
    ASSERT_TRUE(load("$,NumSpec,1\nExcitation,Emission,A\nExcitation,Emission,B\n"));
    EXPECT_EQ(m_spectra[0]->settings.name, "A");
    ASSERT_EQ(m_spectra[0]->points.size(), 1);
    EXPECT_EQ(m_spectra[0]->points[0].first, "Excitation");
    EXPECT_EQ(m_spectra[0]->points[0].value, 0);
}

TEST_F(SpumKyvoDatabaseTest, ANoteIsCutAtItsComma)
{
    m_spectra.add("A", {{"1", "1", 1}});
    ASSERT_TRUE(m_database.saveLibrary(path(), m_spectra, "first, second"));
    ASSERT_TRUE(m_database.loadLibraryFile(path(), m_spectra, m_note));
    EXPECT_EQ(m_note, "first");
}

TEST_F(SpumKyvoDatabaseTest, ACommaInANameShiftsTheColumns)
{
    m_spectra.add("A,B", {{"1", "1", 1}});
    ASSERT_TRUE(m_database.saveLibrary(path(), m_spectra, ""));
    ASSERT_TRUE(m_database.loadLibraryFile(path(), m_spectra, m_note));
    EXPECT_TRUE(m_spectra[0]->points.isEmpty()); // the header no longer fits
}

TEST_F(SpumKyvoDatabaseTest, SelectedIsTrueForAnyNumberButZero)
{
    ASSERT_TRUE(load("$,NumSpec,4\n$,Select,2,-1,0,yes\n"));
    EXPECT_TRUE(m_spectra[0]->settings.selected);
    EXPECT_TRUE(m_spectra[1]->settings.selected);
    EXPECT_FALSE(m_spectra[2]->settings.selected);
    EXPECT_FALSE(m_spectra[3]->settings.selected);
}

TEST_F(SpumKyvoDatabaseTest, LineEndsOfOtherSystemsAndAByteOrderMarkAreTaken)
{
    QByteArray windows = twoDyes;
    windows.replace("\n", "\r\n");
    for (const QByteArray& content :
         {windows, QByteArray("\xef\xbb\xbf") + twoDyes, QByteArray("\xef\xbb\xbf") + windows}) {
        m_note.clear();
        ASSERT_TRUE(load(content));
        EXPECT_EQ(m_note, "two dyes");
        ASSERT_EQ(m_spectra.size(), 2);
        EXPECT_EQ(m_spectra[1]->settings.name, "B");
        ASSERT_EQ(m_spectra[1]->points.size(), 2);
        EXPECT_EQ(m_spectra[1]->points[1].value, 0.2);
    }
}

TEST_F(SpumKyvoDatabaseTest, NumbersAndTextsDoNotFollowTheLocale)
{
    const std::string old = std::setlocale(LC_ALL, nullptr);
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    std::setlocale(LC_ALL, "C"); // a program without LANG: its text codec is ASCII
    m_spectra.add(QString::fromUtf8("Grün µ"), {{"500", "540", 1234.5}});
    ASSERT_TRUE(m_database.saveLibrary(path(), m_spectra, QString::fromUtf8("für später")));
    Spectra read;
    ASSERT_TRUE(m_database.loadLibraryFile(path(), read, m_note));
    std::setlocale(LC_ALL, old.c_str());
    QLocale::setDefault(QLocale::c());
    EXPECT_TRUE(text(path()).contains("500,540,1234.5\n"));
    EXPECT_EQ(m_note, QString::fromUtf8("für später"));
    EXPECT_EQ(read[0]->settings.name, QString::fromUtf8("Grün µ"));
    EXPECT_EQ(read[0]->points[0].value, 1234.5);
}

TEST_F(SpumKyvoDatabaseTest, AFileCutAnywhereLoadsOrFailsButKeepsItsShape)
{
    m_spectra.add("A", {{"500", "540", 0.5}, {"500", "560", 1}});
    m_spectra.add("B", {{"500", "540", 0.1}, {"500", "560", 0.2}});
    ASSERT_TRUE(m_database.saveLibrary(path(), m_spectra, "two dyes"));
    const QByteArray whole = text(path());
    for (int tenth = 0; tenth < 10; ++tenth) {
        Spectra read;
        write(whole.left(whole.size() * tenth / 10));
        m_database.loadLibraryFile(path(), read, m_note);
        EXPECT_TRUE(read.isEmpty() || read.size() == 2) << tenth;
        for (const SpectrumPlotParams* spectrum : read) {
            EXPECT_EQ(spectrum->points.size(), read[0]->points.size()) << tenth;
            EXPECT_LE(spectrum->points.size(), 2) << tenth;
        }
    }
}

TEST_F(SpumKyvoDatabaseTest, LinesOfGarbageAreSkipped)
{
    QByteArray garbage;
    for (int i = 0; i < 4096; ++i) {
        garbage.append(static_cast<char>((i * 131) % 256));
    }
    EXPECT_TRUE(load("$,NumSpec,1\n" + garbage + "\nExcitation,Emission,A\n1,2,3\n"));
    EXPECT_EQ(m_spectra.size(), 1);
}

TEST_F(SpumKyvoDatabaseTest, ListsNothingWithoutTheFolder)
{
    QDir(libraries()).removeRecursively();
    EXPECT_TRUE(m_database.listLibraries().isEmpty());
    EXPECT_TRUE(m_log.isEmpty());
}

TEST_F(SpumKyvoDatabaseTest, ListsNamesSortedWithoutRegardToCase)
{
    ASSERT_TRUE(QDir().mkpath(libraries() + "folder.csv"));
    for (const char* name : {"b.csv", "A.csv", "C two.csv", "x.csv.csv", "text.txt", "d.CSV"}) {
        QFile file(libraries() + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(twoDyes);
    }
    EXPECT_EQ(m_database.listLibraries(), (QStringList{"A", "b", "C two", "x"}));
    // The name is that of the file, whatever stands inside.
    EXPECT_TRUE(m_database.loadLibrary("C two", m_spectra, m_note));
    EXPECT_EQ(m_spectra.size(), 2);
    QDir(libraries()).removeRecursively();
}

TEST_F(SpumKyvoDatabaseTest, AHostWithoutAFolderIsLogged)
{
    // A file where the user's folder should be.
    const QByteArray old = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QFile::encodeName(write("in the way") + "/below"));
    if (getORVPath(ORV_PATH_USER_DATA, true, nullptr).isEmpty()) {
        EXPECT_TRUE(m_database.listLibraries().isEmpty());
        EXPECT_FALSE(m_database.loadLibrary("any", m_spectra, m_note));
        QStringList own;
        for (const QString& message : messages()) {
            if (message.startsWith("SpumKyvo")) {
                own.append(message);
            }
        }
        EXPECT_EQ(own, (QStringList{noFolder, cannotOpen}));
    } else {
        ADD_FAILURE() << "the folder in the way did not take the host's path away";
    }
    qputenv("XDG_DATA_HOME", old);
}

namespace {

rc::Gen<QString> csvText()
{
    const auto character =
        rc::gen::element<ushort>('a', 'Z', '0', '"', '\'', '&', ';', ' ', '$', '\t', 0x00e4, 0x03bc, 0x4e2d);
    return rc::gen::map(rc::gen::container<std::vector<ushort>>(character), [](const std::vector<ushort>& units) {
        return QString::fromUtf16(units.data(), static_cast<int>(units.size()));
    });
}

} // namespace

RC_GTEST_PROP(SpumKyvoDatabaseLaw, ALibraryComesBackToSixDigits, ())
{
    orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
    const QTemporaryDir folder;
    Spectra written;
    const int count = *rc::gen::inRange(1, 6);
    const int bands = *rc::gen::inRange(0, 10);
    for (int s = 0; s < count; ++s) {
        SpectrumPlotParams& spectrum = written.add(*csvText(), {});
        spectrum.settings.color = *csvText();
        spectrum.settings.selected = *rc::gen::arbitrary<bool>();
        spectrum.origin = *csvText();
        for (int b = 0; b < bands; ++b) {
            spectrum.points.append({QString::number(400 + b), QString::number(600 - b), *rc::gen::arbitrary<double>()});
        }
    }
    const QString note = *csvText();
    SpumKyvoDatabase database;
    RC_ASSERT(database.saveLibrary(folder.filePath("a.csv"), written, note));
    Spectra read;
    QString readNote;
    RC_ASSERT(database.loadLibraryFile(folder.filePath("a.csv"), read, readNote));
    RC_ASSERT(readNote == note);
    RC_ASSERT(read.size() == count);
    constexpr double sixDigits = 5.0000001e-6;
    for (int s = 0; s < count; ++s) {
        RC_ASSERT(read[s]->settings.name == written[s]->settings.name);
        RC_ASSERT(read[s]->settings.color == written[s]->settings.color);
        RC_ASSERT(read[s]->settings.selected == written[s]->settings.selected);
        RC_ASSERT(read[s]->origin == written[s]->origin);
        RC_ASSERT(read[s]->points.size() == bands);
        for (int b = 0; b < bands; ++b) {
            RC_ASSERT(read[s]->points[b].first == written[s]->points[b].first);
            RC_ASSERT(read[s]->points[b].second == written[s]->points[b].second);
            const double value = written[s]->points[b].value;
            RC_ASSERT(std::abs(read[s]->points[b].value - value) <= sixDigits * std::abs(value));
        }
    }
}

// The bands of a library in the user's folder.
class LibraryBandsTest : public SpumKyvoDatabaseTest
{
protected:
    void SetUp() override
    {
        SpumKyvoDatabaseTest::SetUp();
        ASSERT_TRUE(QDir().mkpath(libraries()));
    }
    void TearDown() override
    {
        QDir(libraries()).removeRecursively();
        SpumKyvoDatabaseTest::TearDown();
    }

    void loadBands(const QByteArray& content)
    {
        QFile file(libraries() + "bands.csv");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        m_database.loadBands("bands", m_excitations, m_emissions);
    }

    QStringList m_excitations{"kept"};
    QStringList m_emissions{"kept"};
};

TEST_F(LibraryBandsTest, AreTheFirstTwoFieldsOfTheDataLines)
{
    loadBands(twoDyes);
    EXPECT_EQ(m_excitations, (QStringList{"500", "500"}));
    EXPECT_EQ(m_emissions, (QStringList{"540", "560"}));
}

TEST_F(LibraryBandsTest, LinesThatALoadSkipsHaveNone)
{
    loadBands("500,1,1\n$,numspec,1\n500,2,1\n\nEXCITATION,emission,A\n500,3,1,1\n500,4\n500,5,1\n$,Other\n");
    EXPECT_EQ(m_emissions, QStringList{"5"});
}

TEST_F(LibraryBandsTest, EndWhereALoadFails)
{
    loadBands("$,NumSpec,1\nExcitation,Emission,A\n500,1,1\n$,Color,red,blue\n500,2,1\n");
    EXPECT_EQ(m_emissions, QStringList{"1"});
    loadBands("$,NumSpec,0\n$,NumSpec,1\nExcitation,Emission,A\n500,1,1\n");
    EXPECT_TRUE(m_emissions.isEmpty());
}

TEST_F(LibraryBandsTest, AnEmptyNameHasNoneAndSaysNothing)
{
    m_database.loadBands("", m_excitations, m_emissions);
    EXPECT_TRUE(m_excitations.isEmpty());
    EXPECT_TRUE(m_emissions.isEmpty());
    EXPECT_TRUE(m_log.isEmpty());
}

TEST_F(LibraryBandsTest, AFileThatIsNotThereIsLogged)
{
    m_database.loadBands("no such", m_excitations, m_emissions);
    EXPECT_TRUE(m_excitations.isEmpty());
    EXPECT_EQ(messages(), QStringList{cannotOpen});
}
