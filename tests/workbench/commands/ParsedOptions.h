// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>
#include <QStringList>

#include <gtest/gtest.h>

#include <functional>

// A parser that has taken those arguments, of options that `declare` declares.
class ParsedOptions
{
public:
    ParsedOptions(const std::function<void(QCommandLineParser&)>& declare, const QStringList& arguments)
    {
        m_parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
        declare(m_parser);
        EXPECT_TRUE(m_parser.parse(QStringList{"spum"} + arguments)) << qPrintable(m_parser.errorText());
    }
    const QCommandLineParser& parser() const { return m_parser; }

private:
    QCommandLineParser m_parser;
};
