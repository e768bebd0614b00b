// SPDX-License-Identifier: GPL-3.0-or-later
// The program holds nothing of the product but the importer: what analyses images comes with the plug-in alone.
#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace {

const QDir root(QStringLiteral(ORV_SOURCE_DIR));

// The classes and functions that headers of a folder are named after.
QSet<QString> namesOf(const QString& strFolder, const QStringList& spared = {})
{
    QSet<QString> names;
    QDirIterator walk(root.filePath(strFolder), {QStringLiteral("*.h")}, QDir::Files, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString name = QFileInfo(walk.next()).baseName();
        if (!spared.contains(name) && !name.startsWith(QLatin1String("xtnt_"))) {
            names.insert(name);
        }
    }
    return names;
}

QSet<QString> namesOfOtherRooms()
{
    // Where saved results lie is known to the importer, which must not replace them.
    QSet<QString> names = {"XTNT"};
    names |= namesOf("storage", {"resultsIndex", "savedResultsAtStake"});
    for (const char* pRoom : {"XTNT", "algorithms", "spectra", "windows", "engine", "plugin", "services/analysis",
                              "services/regions", "services/transfer", "services/results", "services/pictures",
                              "services/session", "services/basis", "workbench/simulator", "workbench/commands"}) {
        names |= namesOf(pRoom);
    }
    return names;
}

// What the symbols that the program defines begin with: a class, a namespace or a function.
QSet<QString> symbolsOf(const QString& strProgram)
{
    QProcess nm;
    nm.start("nm", {"-C", "--defined-only", strProgram});
    EXPECT_TRUE(nm.waitForFinished(120000));
    EXPECT_EQ(nm.exitCode(), 0) << nm.readAllStandardError().constData();
    static const QRegularExpression start(QStringLiteral("^[0-9a-f]+ \\w (?:[a-z ]+ for )?(\\w+)"),
                                          QRegularExpression::MultilineOption);
    QSet<QString> symbols;
    for (auto match = start.globalMatch(QString::fromUtf8(nm.readAllStandardOutput())); match.hasNext();) {
        symbols.insert(match.next().captured(1));
    }
    return symbols;
}

TEST(NoRoomSymbolsTest, TheWindowHoldsNoSymbolOfARoom)
{
    const QSet<QString> symbols = symbolsOf(ORV_BINARY_DIR "/bin/spum-workbench");
    EXPECT_TRUE(symbols.contains("MainWindow"));
    const QSet<QString> others = namesOfOtherRooms();
    EXPECT_GT(others.size(), 150);
    const QStringList found = (symbols & others).values();
    EXPECT_TRUE(found.isEmpty()) << qPrintable(found.join(", "));
}

// The test itself sees them where they are.
TEST(NoRoomSymbolsTest, TheCommandLineHoldsThem)
{
    const QSet<QString> found = symbolsOf(ORV_BINARY_DIR "/bin/spum") & namesOfOtherRooms();
    for (const char* pName : {"CORVSpumKyvo", "XTNT", "MCR", "CImageCube", "SpumKyvoDatabase"}) {
        EXPECT_TRUE(found.contains(pName)) << pName;
    }
}

} // namespace
