// SPDX-License-Identifier: GPL-3.0-or-later
// Files are the same in every language of the system.
#include "workbench/program/ProgramFixture.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

namespace {

class LocalesProgramTest : public ProgramFixture, public ::testing::WithParamInterface<const char*>
{
protected:
    // Compiles the locale of the system's sources for this test and has the program use it.
    void SetUp() override
    {
        ProgramFixture::SetUp();
        const QString name = QLatin1String(GetParam());
        const QString place = m_place.filePath(name + ".UTF-8");
        QProcess compiler;
        compiler.start("localedef", {"-c", "--no-archive", "-i", name, "-f", "UTF-8", place});
        ASSERT_TRUE(compiler.waitForFinished(120000)) << "localedef does not run";
        ASSERT_TRUE(QDir(place).exists()) << compiler.readAllStandardError().constData();
        program().setVariable("LOCPATH", m_place.path());
        program().setVariable("LC_ALL", name + ".UTF-8");
    }

    static bool hasForeignDigit(const QByteArray& bytes)
    {
        const QString text = QString::fromUtf8(bytes);
        return std::any_of(text.cbegin(), text.cend(),
                           [](QChar c) { return c.unicode() > 127 && (c.isDigit() || c.unicode() == 0x2212); });
    }
    void expectPlainFiles(const QString& folder)
    {
        int looked = 0;
        for (const QString& file : filesBelow(path(folder))) {
            if (file.endsWith(".txt") || file.endsWith(".csv") || file.endsWith(".json") || file.endsWith(".hdr")) {
                ++looked;
                EXPECT_FALSE(hasForeignDigit(contentOf(path(folder + '/' + file)))) << qPrintable(file);
            }
        }
        EXPECT_GT(looked, 0);
    }

    QTemporaryDir m_place;
};

// Digits of their own, commas for points, a minus of their own, an i without a dot.
INSTANTIATE_TEST_SUITE_P(Nine, LocalesProgramTest,
                         ::testing::Values("ar_EG", "fa_IR", "bn_BD", "mr_IN", "my_MM", "de_DE", "fr_FR", "sv_SE",
                                           "tr_TR"));

} // namespace

TEST_P(LocalesProgramTest, FilesHaveTheDigitsOfCAndCanBeReadInAnyLocale)
{
    succeed({"simulate", "seq", "--size", "32", "--bands", "8"});
    expectPlainFiles("seq");
    ASSERT_TRUE(QDir().mkdir(path("cube")));
    succeed({"export", "seq", "--format", "envi", "--unit", "counts", "--out", "cube/cube.hdr"});
    expectPlainFiles("cube");
    succeed({"import", "cube/cube.hdr", "back"});
    expectPlainFiles("back");
    succeed({"unmix", "seq", "--library", truth("counts"), "--unit", "counts", "--out", path("run")});
    expectPlainFiles("run");
    const QJsonObject here = succeed({"info", "seq", "--json"}).json();
    program().setVariable("LC_ALL", "C");
    EXPECT_EQ(succeed({"info", "seq", "--json"}).json(), here);
    succeed({"export", "back", "--format", "csv", "--out", "again.csv"});
}
