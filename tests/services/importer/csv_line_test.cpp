// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/CsvLine.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace {

QStringList split(const QString& line, QChar separator = ',')
{
    QStringList fields;
    QString error;
    EXPECT_TRUE(splitCsvLine(line, separator, &fields, &error)) << qPrintable(error);
    return fields;
}

QString refusal(const QString& line)
{
    QStringList fields;
    QString error;
    EXPECT_FALSE(splitCsvLine(line, ',', &fields, &error));
    return error;
}

// Fields that are written so come back from a line of them.
void expectBack(const std::vector<std::string>& texts, QString (*pWrite)(const QString&))
{
    RC_PRE(!texts.empty());
    QStringList fields;
    QStringList written;
    for (const std::string& text : texts) {
        fields.append(QString::fromLatin1(text.data(), static_cast<int>(text.size())));
        written.append(pWrite(fields.last()));
    }
    QStringList read;
    QString error;
    RC_ASSERT(splitCsvLine(written.join(','), ',', &read, &error));
    RC_ASSERT(read == fields);
}

} // namespace

TEST(CsvLineTest, KeepsEmptyFields)
{
    EXPECT_EQ(split(""), QStringList{""});
    EXPECT_EQ(split(","), (QStringList{"", ""}));
    EXPECT_EQ(split("a,,b,"), (QStringList{"a", "", "b", ""}));
}

TEST(CsvLineTest, DropsBlanksAroundFieldsButNotInsideQuotes)
{
    EXPECT_EQ(split(" a , \" b \" ,c d"), (QStringList{"a", " b ", "c d"}));
}

TEST(CsvLineTest, QuotesHoldSeparatorsAndDoubledQuotes)
{
    EXPECT_EQ(split("\"a,b\",\"say \"\"x\"\"\",\"\""), (QStringList{"a,b", "say \"x\"", ""}));
    EXPECT_EQ(split("5\" disk,x"), (QStringList{"5\" disk", "x"}));
}

TEST(CsvLineTest, TakesOtherSeparators)
{
    EXPECT_EQ(split("a;b,c;\"d;e\"", ';'), (QStringList{"a", "b,c", "d;e"}));
}

TEST(CsvLineTest, RefusesBrokenQuotes)
{
    EXPECT_EQ(refusal("a,\"b"), "a quote is not closed");
    EXPECT_EQ(refusal("\"a\"b,c"), "text follows a closing quote");
    EXPECT_EQ(refusal("\""), "a quote is not closed");
}

RC_GTEST_PROP(CsvLineLaw, QuotedFieldsComeBack, (const std::vector<std::string>& texts))
{
    expectBack(texts, [](const QString& field) { return '"' + QString(field).replace("\"", "\"\"") + '"'; });
}

RC_GTEST_PROP(CsvLineLaw, WrittenFieldsComeBack, (const std::vector<std::string>& texts))
{
    expectBack(texts, csvField);
}
