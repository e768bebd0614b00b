// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/resultPlace.h"

#include "services/support/CliFixture.h"
#include "support/PlainUser.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

namespace {

class ResultPlaceTest : public CliFixture
{
protected:
    QString sequence() const
    {
        QDir().mkpath(path("my seq"));
        return path("my seq") + '/';
    }
};

} // namespace

TEST_F(ResultPlaceTest, IsWhereTheUserWantsIt)
{
    const ResultPlace place = resultPlace("some/where", sequence(), "unmixed-library");
    EXPECT_EQ(place.folder, "some/where");
    EXPECT_EQ(place.remark, QString());
}

TEST_F(ResultPlaceTest, IsElseTheSequencesFolder)
{
    const ResultPlace place = resultPlace(QString(), sequence(), "unmixed-library");
    EXPECT_EQ(place.folder, path("my seq/unmixed-library"));
    EXPECT_EQ(place.remark, QString());
}

TEST_F(ResultPlaceTest, IsTheWorkingFolderWhereTheSequenceIsReadOnly)
{
    const QString folder = sequence();
    ASSERT_EQ(::chmod(QFile::encodeName(folder).constData(), 0555), 0);
    const PlainUser user;
    ASSERT_TRUE(user.isPlain());
    const ResultPlace place = resultPlace(QString(), folder, "unmixed-library");
    EXPECT_EQ(place.folder, QDir::current().absoluteFilePath("my seq-unmixed-library"));
    EXPECT_TRUE(place.remark.contains("--out chooses another place")) << qPrintable(place.remark);
    EXPECT_EQ(resultPlace("x", folder, "unmixed-library").folder, "x");
}
