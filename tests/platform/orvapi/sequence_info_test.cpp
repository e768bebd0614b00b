// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/SequenceInfo.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

namespace {

TEST(SequenceInfoTest, PathsStayBelowOnlyWhenTheyDo)
{
    for (const char* pPath : {"a", "a/b", "a/../b", "./a", "a b", "..a", "a.."}) {
        EXPECT_TRUE(staysBelow(pPath)) << pPath;
    }
    for (const char* pPath : {"", ".", "..", "../a", "a/../..", "a/../../b", "/a", "/", "./.."}) {
        EXPECT_FALSE(staysBelow(pPath)) << pPath;
    }
}

RC_GTEST_PROP(SequenceInfoLaw, WhatIsWrittenReadsBack, ())
{
    SequenceInfo info;
    info.id = QString::number(*rc::gen::inRange(1, 1000000));
    info.name = QStringLiteral("name of ") + info.id;
    info.temporal = *rc::gen::arbitrary<bool>();
    info.fluorescence = *rc::gen::arbitrary<bool>();
    info.transillumination = *rc::gen::arbitrary<bool>();
    info.secondKind = *rc::gen::arbitrary<bool>();
    info.sceneOnly3D = *rc::gen::arbitrary<bool>();
    info.ctScan = *rc::gen::arbitrary<bool>();
    info.ctComplete = info.ctScan && *rc::gen::arbitrary<bool>();
    info.adjust.m_nColorTable = *rc::gen::inRange(0, 20);
    info.adjust.m_bReversed = *rc::gen::arbitrary<bool>();
    info.adjust.m_bLogScale = *rc::gen::arbitrary<bool>();
    for (int i = *rc::gen::inRange(0, 20); i > 0; --i) {
        info.folders.append(QStringLiteral("click %1").arg(i));
    }
    CPLClickInfo sections;
    QStringList warnings;
    RC_ASSERT(sections.parse(sequenceInfoSections(info).toText(), "file", &warnings) == 0);
    SequenceInfo read;
    RC_ASSERT(readSequenceInfo(sections, "file", &read, warnings));
    RC_ASSERT(warnings.isEmpty());
    RC_ASSERT(read.id == info.id && read.name == info.name && read.folders == info.folders);
    RC_ASSERT(read.temporal == info.temporal && read.fluorescence == info.fluorescence);
    RC_ASSERT(read.transillumination == info.transillumination && read.sceneOnly3D == info.sceneOnly3D);
    RC_ASSERT(read.secondKind == info.secondKind);
    RC_ASSERT(read.ctScan == info.ctScan && read.ctComplete == info.ctComplete);
    RC_ASSERT(read.adjust.m_nColorTable == info.adjust.m_nColorTable);
    RC_ASSERT(read.adjust.m_bReversed == info.adjust.m_bReversed && read.adjust.m_bLogScale == info.adjust.m_bLogScale);
    RC_ASSERT(read.announcedCount == std::optional<int>(info.folders.size()));
}

TEST(SequenceInfoTest, ABlankAheadOfALastSlashIsNoPartOfAFoldersName)
{
    CPLClickInfo sections;
    QStringList warnings;
    ASSERT_EQ(
        sections.parse("[Sequence]\nKind: spectral\n[Datasets]\nDataset: a /\nDataset: .. /\n", "file", &warnings), 0);
    SequenceInfo info;
    ASSERT_TRUE(readSequenceInfo(sections, "file", &info, warnings));
    EXPECT_EQ(info.folders, QStringList("a"));
    EXPECT_EQ(info.refusedFolders, 1);
}

TEST(SequenceInfoTest, FileWithoutTheSectionDescribesNoSequence)
{
    SequenceInfo info;
    QStringList warnings;
    EXPECT_FALSE(readSequenceInfo(CPLClickInfo(), "file", &info, warnings));
}

} // namespace
