// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/CommandParser.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <functional>

// A parser that has taken those arguments, of options that `declare` declares.
class ParsedOptions
{
public:
    ParsedOptions(const std::function<void(CommandParser&)>& declare, const QStringList& arguments)
    {
        declare(m_parser);
        EXPECT_TRUE(m_parser.parse(QStringList{"spum"} + arguments)) << qPrintable(m_parser.errorText());
    }
    const QCommandLineParser& parser() const { return m_parser; }

private:
    CommandParser m_parser;
};
