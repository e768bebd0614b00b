// SPDX-License-Identifier: GPL-3.0-or-later
// How often a program opens the images of a sequence: for the header when the sequence is opened, for the pixels, and
// where the result tells its origin for the hash of the bytes.
#include "support/OpenedFiles.h"
#include "workbench/program/ProgramFixture.h"

namespace {

class ReadOnceProgramTest : public ProgramFixture
{
protected:
    // The openings of each data image while the program runs, in the order of the images.
    QList<int> openings(const QStringList& arguments)
    {
        smallSequence().writeTo(path("seq"));
        library();
        testsupport::OpenedFiles opened(path("seq"));
        succeed(arguments);
        QList<int> found;
        const QMap<QString, int> counts = opened.counts();
        for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
            if (it.key().endsWith("/luminescent.TIF")) {
                found.append(it.value());
            }
        }
        return found;
    }
};

} // namespace

// Once more than a decomposition, for the hash by which the result tells its images.
TEST_F(ReadOnceProgramTest, AFitOfKnownSpectra)
{
    EXPECT_EQ(openings({"unmix", "seq", "--library", library(), "--out", path("out")}), (QList<int>{3, 3, 3}));
}

TEST_F(ReadOnceProgramTest, APrincipalComponentAnalysis)
{
    EXPECT_EQ(openings({"pca", "seq", "--mask", "none", "--out", path("out")}), (QList<int>{2, 2, 2}));
}
