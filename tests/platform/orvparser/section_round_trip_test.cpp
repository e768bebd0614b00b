// SPDX-License-Identifier: GPL-3.0-or-later
// Law: for every list of sections, parsing the text gives the list.
#include "platform/orvparser/SectionSupport.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace {

// Characters that have a meaning in a file, or that readers like to drop.
const std::vector<ushort> awkward = {' ',    '\t',   '\n',   '\r',   0x00,   0x0b,   0x0c,   0x1f,   0x7f,   0x85,
                                     0xa0,   0xad,   0x2028, 0x2029, 0x3000, 0xfeff, 0xfffd, 0xfffe, 0xffff, 0xd800,
                                     0xdbff, 0xdc00, 0xdfff, ':',    '[',    ']',    '#',    '"',    '\\',   '%',
                                     'n',    'u',    '0',    'a',    0xe4,   0x4e00, 0x200b, '='};

rc::Gen<QString> anyText()
{
    const auto unit =
        rc::gen::oneOf(rc::gen::elementOf(awkward), rc::gen::inRange<ushort>(0x20, 0x7f), rc::gen::arbitrary<ushort>());
    // Short: a section holds many texts.
    return rc::gen::map(rc::gen::scale(0.3, rc::gen::container<std::vector<ushort>>(unit)),
                        [](const std::vector<ushort>& units) {
                            return QString::fromUtf16(units.data(), static_cast<int>(units.size()));
                        });
}

rc::Gen<CPLSection> anySection()
{
    using Entries = std::vector<std::pair<QString, QString>>;
    return rc::gen::map(
        rc::gen::tuple(anyText(), anyText(), rc::gen::container<Entries>(rc::gen::pair(anyText(), anyText()))),
        [](const std::tuple<QString, QString, Entries>& parts) {
            CPLSection section(std::get<0>(parts), std::get<1>(parts));
            for (const auto& [key, value] : std::get<2>(parts)) {
                section.addKeyValue(key, value);
            }
            return section;
        });
}

CPLClickInfo infoOf(const std::vector<CPLSection>& sections)
{
    CPLClickInfo info;
    for (const auto& section : sections) {
        info.addSection(&section);
    }
    return info;
}

void requireRoundTrip(const CPLClickInfo& info, const QByteArray& text)
{
    CPLClickInfo again;
    QStringList warnings;
    RC_ASSERT(again.parse(text, QStringLiteral("x"), &warnings) == 0);
    RC_ASSERT(warnings.isEmpty());
    RC_ASSERT(contentOf(again) == contentOf(info));
}

RC_GTEST_PROP(SectionRoundTripTest, AnySectionsSurviveTheText, ())
{
    const CPLClickInfo info = infoOf(*rc::gen::container<std::vector<CPLSection>>(anySection()));
    requireRoundTrip(info, info.toText());
}

RC_GTEST_PROP(SectionRoundTripTest, AnySectionsSurviveAnotherEndOfLine, ())
{
    const CPLClickInfo info = infoOf(*rc::gen::container<std::vector<CPLSection>>(anySection()));
    requireRoundTrip(info, info.toText().replace('\n', "\r\n"));
    requireRoundTrip(info, info.toText().replace('\n', '\r'));
}

RC_GTEST_PROP(SectionRoundTripTest, WhatWasReadFromAnyBytesSurvivesToo, ())
{
    const auto bytes = *rc::gen::container<std::string>(
        rc::gen::oneOf(rc::gen::elementOf(std::string("[]:\"\\\n\r# a")), rc::gen::arbitrary<char>()));
    CPLClickInfo info;
    if (info.parse(QByteArray::fromStdString("[a]\n" + bytes), QStringLiteral("x")) == 0) {
        requireRoundTrip(info, info.toText());
    }
}

RC_GTEST_PROP(SectionRoundTripTest, OrdinaryValuesStandUnquoted, ())
{
    const auto value = *rc::gen::nonEmpty(
        rc::gen::container<std::string>(rc::gen::elementOf(std::string("abcXYZ0189 \\%:;,[]#'()/._-+\""))));
    const QString text = QString::fromStdString(value);
    RC_PRE(text == text.trimmed() && !text.startsWith('"'));
    CPLSection section(QStringLiteral("s"));
    section.addKeyValue(QStringLiteral("k"), text);
    CPLClickInfo info;
    info.addSection(&section);
    RC_ASSERT(info.toText().contains("\nk: " + text.toUtf8() + "\n"));
}

} // namespace
