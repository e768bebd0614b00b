// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/manual/manPage.h"

#include "workbench/manual/aManual.h"

#include <QProcess>

#include <gtest/gtest.h>

namespace {

QByteArray page()
{
    ManPageFrame frame;
    frame.version = QStringLiteral("1.2.3");
    frame.date = QStringLiteral("2026-02-03");
    frame.seeAlso = QStringList{QStringLiteral("tool")};
    return manPage(aManual(), frame);
}

// What groff makes of a page; the test fails on any warning of its.
QString rendered(const QByteArray& bytes)
{
    QProcess groff;
    groff.start("groff", {"-man", "-Kutf8", "-Tutf8", "-P-c", "-P-b", "-P-u", "-P-o", "-ww", "-rLL=78n"});
    EXPECT_TRUE(groff.waitForStarted()) << "groff is missing";
    groff.write(bytes);
    groff.closeWriteChannel();
    EXPECT_TRUE(groff.waitForFinished());
    EXPECT_EQ(groff.exitCode(), 0);
    EXPECT_EQ(groff.readAllStandardError(), QByteArray());
    return QString::fromUtf8(groff.readAllStandardOutput());
}

} // namespace

TEST(ManPageTest, IsNamedAfterTheCommand)
{
    EXPECT_EQ(manPageFile(aManual()), "tool-paint.1");
}

TEST(ManPageTest, SaysWhatHelpSaysWithoutAWarningOfGroff)
{
    const QString text = rendered(page());
    EXPECT_TRUE(text.startsWith("TOOL-PAINT(1)")) << qPrintable(text);
    const QString words = text.simplified();
    for (const char* part :
         {"NAME tool-paint - Paint a picture", "SYNOPSIS tool paint [options] PICTURE",
          "ARGUMENTS PICTURE What to paint.",
          "OPTIONS Options --color COLOR A colour: red or green. It's \"as is\", with a back\\slash and 5 ~ 6.",
          "--out FILE .hidden files are written, too.", "Options of all -h, --help Tell the options.",
          "EXAMPLES A red house. tool paint house --color red", "SEE ALSO tool(1)", "spum 1.2.3", "2026-02-03"}) {
        EXPECT_TRUE(words.contains(QString::fromUtf8(part))) << part << "\n" << qPrintable(text);
    }
}

TEST(ManPageTest, OfOneTableAndDateIsAlwaysTheSame)
{
    EXPECT_EQ(page(), page());
}
