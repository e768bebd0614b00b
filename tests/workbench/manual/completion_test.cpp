// SPDX-License-Identifier: GPL-3.0-or-later
// The shells themselves read what is written for them.
#include "workbench/manual/completion.h"

#include "workbench/manual/aManual.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

CommandManual aProgram()
{
    CommandManual program;
    program.name = QStringLiteral("tool");
    program.commands = {aManual()};
    CommandManual list = aManual();
    list.name = QStringLiteral("tool list");
    list.arguments[0].value = QStringLiteral("all|some");
    list.arguments[0].words = QStringList{QStringLiteral("all"), QStringLiteral("some")};
    program.commands.append(list);
    return program;
}

// Standard output of a shell that is given those lines; the test fails on anything on standard error.
QString run(const QString& strShell, const QStringList& arguments, const QString& strFolder)
{
    QProcess shell;
    shell.setWorkingDirectory(strFolder);
    shell.start(strShell, arguments);
    EXPECT_TRUE(shell.waitForStarted()) << qPrintable(strShell) << " is missing";
    EXPECT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.exitCode(), 0);
    EXPECT_EQ(shell.readAllStandardError(), QByteArray());
    return QString::fromUtf8(shell.readAllStandardOutput());
}

class CompletionTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QFile file(m_folder.filePath("completion"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bashCompletion(aProgram()));
        ASSERT_TRUE(QDir(m_folder.path()).mkdir("work"));
        for (const char* name : {"work/a file", "work/b.txt"}) {
            QFile other(m_folder.filePath(name));
            ASSERT_TRUE(other.open(QIODevice::WriteOnly));
        }
        ASSERT_TRUE(QDir(m_folder.path()).mkdir("work/folder"));
    }

    // What bash offers for the last of those words.
    QStringList offered(const QString& strWords) const
    {
        const QString script =
            QStringLiteral("source ../completion; COMP_WORDS=(%1); COMP_CWORD=$((${#COMP_WORDS[@]} - 1));"
                           "_tool; printf '%s\\n' \"${COMPREPLY[@]}\"")
                .arg(strWords);
        QStringList lines =
            run("bash", {"--norc", "-c", script}, m_folder.filePath("work")).split('\n', Qt::SkipEmptyParts);
        lines.sort();
        return lines;
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(CompletionTest, TheFirstWordIsACommand)
{
    EXPECT_EQ(offered("tool ''"), (QStringList{"--help", "--version", "help", "list", "paint"}));
    EXPECT_EQ(offered("tool pa"), QStringList{"paint"});
    EXPECT_EQ(offered("tool x"), QStringList());
    EXPECT_EQ(offered("tool help ''"), (QStringList{"list", "paint"}));
}

TEST_F(CompletionTest, ADashAsksForOptions)
{
    EXPECT_EQ(offered("tool paint -"), (QStringList{"--color", "--help", "--out"}));
    EXPECT_EQ(offered("tool paint --o"), QStringList{"--out"});
    EXPECT_EQ(offered("tool nothing --"), QStringList());
}

TEST_F(CompletionTest, AValueIsOneOfItsWords)
{
    EXPECT_EQ(offered("tool paint --color ''"), (QStringList{"green", "red"}));
    EXPECT_EQ(offered("tool paint --color g"), QStringList{"green"});
    EXPECT_EQ(offered("tool paint --color = r"), QStringList{"red"});
    EXPECT_EQ(offered("tool paint --color ="), (QStringList{"green", "red"}));
}

TEST_F(CompletionTest, AFileIsOfferedWhereOneIsTaken)
{
    EXPECT_EQ(offered("tool paint --out ''"), (QStringList{"a file", "b.txt", "folder"}));
    EXPECT_EQ(offered("tool paint --out b"), QStringList{"b.txt"});
    EXPECT_EQ(offered("tool list s"), QStringList{"some"});
}

TEST_F(CompletionTest, OnlyFoldersWhereAFolderIsTaken)
{
    CommandManual program = aProgram();
    program.commands[0].arguments[0].value = QStringLiteral("SEQ...");
    QFile file(m_folder.filePath("completion"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bashCompletion(program));
    file.close();
    EXPECT_EQ(offered("tool paint ''"), QStringList{"folder"});
}

// Texts with quotes, brackets, colons and back slashes pass, and the function that is defined runs.
TEST_F(CompletionTest, ZshTakesItsCompletion)
{
    CommandManual program = aProgram();
    program.commands[0].options[0].entries[0].text += QStringLiteral(" [x]: 'y' $HOME `z` 100%");
    program.commands[0].options[0].entries[1].repeatable = true;
    const QByteArray text = zshCompletion(program);
    EXPECT_TRUE(text.startsWith("#compdef tool\n"));
    QFile file(m_folder.filePath("_tool"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
    file.close();
    // The helpers of zsh's own completion are replaced by ones that print what they are given.
    const QString script =
        QStringLiteral("_describe() { print -rl -- $commands }; _arguments() { print -rl -- \"$@\" };"
                       "words=(tool paint ''); CURRENT=3; source ../_tool;"
                       "words=(tool ''); CURRENT=2; _tool");
    const QString told = run("zsh", {"-f", "-c", script}, m_folder.filePath("work"));
    EXPECT_TRUE(told.contains("--color=[A colour\\: red or green. It's \"as is\", with a back\\\\slash and 5 ~ 6. "
                              "\\[x\\]\\: 'y' $HOME `z` 100%]:COLOR:(red green)\n"))
        << qPrintable(told);
    EXPECT_TRUE(told.contains("\n*--out=[.hidden files are written, too.]:FILE:_files\n")) << qPrintable(told);
    EXPECT_TRUE(told.contains("\n:PICTURE: \n")) << qPrintable(told);
    EXPECT_TRUE(told.contains("\npaint:Paint a picture.\n")) << qPrintable(told);
}
