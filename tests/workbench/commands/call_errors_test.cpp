// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/CallErrors.h"

#include "services/analysis/UnmixJob.h"
#include "services/support/CliFixture.h"
#include "workbench/commands/Options.h"
#include "workbench/commands/ParsedOptions.h"
#include "workbench/commands/UnmixOptions.h"

namespace {

void refuse(const char* pSentence)
{
    refuseUsage("unmix", QLatin1String(pSentence));
}

} // namespace

TEST(CallErrorsTest, WithNothingWrongNothingIsThrown)
{
    CallErrors errors(QStringLiteral("unmix"));
    errors.collect([] {});
    errors.throwAll();
    EXPECT_TRUE(errors.sentences().isEmpty());
}

TEST(CallErrorsTest, ASingleErrorComesAsItIs)
{
    CallErrors errors(QStringLiteral("unmix"));
    errors.collect([] { throw Failure(QStringLiteral("--unit is wrong"), Failure::Kind::BadRequest); });
    EXPECT_EQ(failureOf([&] { errors.throwAll(); }), "[2] --unit is wrong");
    CallErrors other(QStringLiteral("unmix"));
    other.collect([] { refuse("A."); });
    EXPECT_EQ(failureOf([&] { other.throwAll(); }), "[2] A. See \"spum unmix --help\".");
}

TEST(CallErrorsTest, SeveralAreToldInTheirOrderEachOnce)
{
    CallErrors errors(QStringLiteral("unmix"));
    for (const char* sentence : {"A.", "B.", "A.", "C."}) {
        errors.collect([sentence] { refuse(sentence); });
    }
    EXPECT_EQ(errors.sentences(), (QStringList{"A.", "B.", "C."}));
    EXPECT_EQ(failureOf([&] { errors.throwAll(); }), "[2] A. B. C. See \"spum unmix --help\".");
}

TEST(CallErrorsTest, WhatIsNoWrongCallGoesThrough)
{
    CallErrors errors(QStringLiteral("unmix"));
    EXPECT_EQ(failureOf([&] { errors.collect([] { throw Failure(QStringLiteral("no disk")); }); }), "no disk");
    EXPECT_TRUE(errors.sentences().isEmpty());
}

TEST(CallErrorsTest, AnUnmixingIsLookedAtAsAWhole)
{
    const ParsedOptions options(declareUnmixOptions, {"seq", "--method", "quick", "--unit", "lux", "--binning", "0",
                                                      "--mask", "rect:1", "--ncomponents", "two", "--decay", "soon"});
    try {
        unmixRequestOf(options.parser());
        FAIL() << "not refused";
    } catch (const CallRefusal& refusal) {
        ASSERT_EQ(refusal.sentences().size(), 6) << qPrintable(refusal.text());
        const char* const begins[] = {"--method takes",      "--mask: ",     "--unit takes", "--binning takes",
                                      "--ncomponents takes", "--decay takes"};
        for (int i = 0; i < 6; ++i) {
            EXPECT_TRUE(refusal.sentences()[i].startsWith(begins[i])) << qPrintable(refusal.sentences()[i]);
        }
    }
}
