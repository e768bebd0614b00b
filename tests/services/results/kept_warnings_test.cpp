// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/keptWarnings.h"

#include "services/support/SmallAnalysis.h"

namespace {

class KeptWarningsTest : public SmallAnalysis
{
};

const RunWarning mild{RunWarning::Severity::Warning, "too-few-components", "2 were unmixed: not enough", "try 3"};
const RunWarning bad{RunWarning::Severity::Error, "saturated", "too bright", ""};

} // namespace

TEST_F(KeptWarningsTest, TheyStandBehindTheOtherPropertiesAndComeBack)
{
    analyse();
    const QList<ResultProperty> before = engine().m_properties;
    keepWarnings({bad, mild}, engine());
    ASSERT_EQ(engine().m_properties.size(), before.size() + 2);
    EXPECT_EQ(engine().m_properties.mid(0, before.size()), before);
    EXPECT_EQ(engine().m_properties[before.size()], ResultProperty("Error", "saturated: too bright"));
    EXPECT_EQ(engine().m_properties.last(),
              ResultProperty("Warning", "too-few-components: 2 were unmixed: not enough; try 3"));
    const QList<RunWarning> back = warningsAmong(engine().m_properties);
    EXPECT_EQ(sentencesOf(back), sentencesOf({bad, mild}));
    EXPECT_EQ(codesOf(back), codesOf({bad, mild}));
    EXPECT_EQ(codesOf(errorsAmong(back)), QStringList("saturated"));
    EXPECT_EQ(withoutWarnings(engine().m_properties), before);
}

TEST_F(KeptWarningsTest, AnotherRunReplacesThem)
{
    analyse();
    const QList<ResultProperty> before = engine().m_properties;
    keepWarnings({bad, mild}, engine());
    keepWarnings({mild}, engine());
    EXPECT_EQ(warningsAmong(engine().m_properties).size(), 1);
    keepWarnings({}, engine());
    EXPECT_EQ(engine().m_properties, before);
}

TEST_F(KeptWarningsTest, ADocumentKeepsThem)
{
    analyse();
    keepWarnings({bad, mild}, engine());
    const QString document = engine().resultToXml();
    engine().m_properties.clear();
    ASSERT_TRUE(engine().loadResult(document));
    EXPECT_EQ(sentencesOf(warningsAmong(engine().m_properties)), sentencesOf({bad, mild}));
}

TEST(KeptWarningsFormTest, WhatIsNoWarningIsLeftAlone)
{
    for (const ResultProperty& property :
         {ResultProperty("Method", "saturated: too bright"), ResultProperty("Warning", "no code"),
          ResultProperty("Warning", "Code: text"), ResultProperty("Error", "saturated: "), ResultProperty("", "")}) {
        EXPECT_FALSE(isWarning(property)) << qPrintable(property.second);
    }
    EXPECT_TRUE(warningsAmong({}).isEmpty());
}
