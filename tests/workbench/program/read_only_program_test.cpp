// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ForkedChild.h"
#include "workbench/program/ProgramFixture.h"

#include <QDir>
#include <QFile>

#include <cstdio>
#include <fcntl.h>
#include <linux/capability.h>
#include <sys/prctl.h>

namespace {

// Root may write everywhere; without these two rights what it starts may not. It stays root, as others need not reach
// the folder in which the program was built.
bool heedsPermissions()
{
    return ::geteuid() != 0 ||
           (::prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE) == 0 && ::prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH) == 0);
}

// The program where it may read the sequence and not write into it.
class ReadOnlyProgramTest : public ProgramFixture
{
protected:
    void SetUp() override
    {
        ProgramFixture::SetUp();
        simulate();
        ASSERT_EQ(::chmod(QFile::encodeName(path("..")).constData(), 0755), 0);
        ASSERT_EQ(::chmod(QFile::encodeName(path(".")).constData(), 0755), 0);
        for (const char* folder : {"work", "temporary"}) {
            ASSERT_EQ(::mkdir(QFile::encodeName(path(folder)).constData(), 0777), 0);
            ASSERT_EQ(::chmod(QFile::encodeName(path(folder)).constData(), 0777), 0);
        }
        ASSERT_EQ(::chmod(QFile::encodeName(path("seq")).constData(), 0555), 0);
    }
    // The exit status; 98 or 99 where it could not be started so. What it says is in the files "out.txt" and "err.txt".
    int spumHeedingPermissions(const QStringList& arguments) const
    {
        std::vector<QByteArray> words = {"spum"};
        for (const QString& argument : arguments) {
            words.push_back(QFile::encodeName(argument));
        }
        std::vector<char*> pointers;
        for (QByteArray& word : words) {
            pointers.push_back(word.data());
        }
        pointers.push_back(nullptr);
        const QByteArray out = QFile::encodeName(path("out.txt"));
        const QByteArray err = QFile::encodeName(path("err.txt"));
        const QByteArray work = QFile::encodeName(path("work"));
        const QByteArray temporary = QFile::encodeName(path("temporary"));
        const QByteArray binary = QFile::encodeName(SpumProgram::path());
        return inForkedChild([&] {
            if (::freopen(out.constData(), "w", stdout) == nullptr ||
                ::freopen(err.constData(), "w", stderr) == nullptr ||
                ::setenv("TMPDIR", temporary.constData(), 1) != 0 || ::setenv("HOME", temporary.constData(), 1) != 0 ||
                ::chdir(work.constData()) != 0 || !heedsPermissions()) {
                return 99;
            }
            ::execv(binary.constData(), pointers.data());
            return 98;
        });
    }
    QString said(const char* pFile) const { return QString::fromUtf8(contentOf(path(pFile))); }
};

} // namespace

TEST_F(ReadOnlyProgramTest, ResultsLieInTheWorkingFolderAndThatIsSaid)
{
    const QStringList before = filesBelow(path("seq"));
    const int status = spumHeedingPermissions({"unmix", path("seq"), "--library", truth()});
    EXPECT_EQ(status, 0) << qPrintable(said("err.txt"));
    const QString folder = QDir(path("work")).canonicalPath() + "/seq-unmixed-library";
    EXPECT_TRUE(QFileInfo::exists(folder + "/summary.json"));
    EXPECT_TRUE(said("out.txt").contains("results in " + folder +
                                         "\nnothing can be written into the sequence's folder, so "
                                         "the results lie in the working folder; --out chooses another place\n"))
        << qPrintable(said("out.txt"));
    EXPECT_EQ(filesBelow(path("seq")), before);
    EXPECT_EQ(spumHeedingPermissions({"pca", path("seq")}), 0) << qPrintable(said("err.txt"));
    EXPECT_TRUE(QFileInfo::exists(path("work/seq-pca/pca.json")));
    EXPECT_EQ(spumHeedingPermissions({"compare", path("seq"), "seq-unmixed-library"}), 0)
        << qPrintable(said("err.txt"));
    EXPECT_TRUE(QFileInfo::exists(path("work/seq-comparison/comparison.csv")));
}

TEST_F(ReadOnlyProgramTest, ASavedResultIsRefusedAheadOfTheRun)
{
    const int status = spumHeedingPermissions({"unmix", path("seq"), "--library", truth(), "--save", "first"});
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(said("err.txt").contains("a saved result lies with its sequence, and nothing can be written into ") &&
                said("err.txt").contains("leave out --save"))
        << qPrintable(said("err.txt"));
    EXPECT_EQ(entriesOf(path("work")), QStringList());
}
