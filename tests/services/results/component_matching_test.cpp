// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ComponentMatching.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

using Shapes = std::vector<ComponentShape>;

ComponentShape named(const QString& strName)
{
    return {strName, {}, {}};
}

// What a pairing adds up to.
double total(const Shapes& found, const Shapes& reference, const std::vector<int>& partners)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < partners.size(); ++i) {
        if (partners[i] >= 0) {
            sum += likeness(found[i], reference[static_cast<std::size_t>(partners[i])]);
        }
    }
    return sum;
}

// The best total over every way to give away the places, one by one.
double bestTotal(const Shapes& found, const Shapes& reference)
{
    std::vector<int> places(std::max(found.size(), reference.size()));
    std::iota(places.begin(), places.end(), 0);
    double best = -HUGE_VAL;
    do {
        std::vector<int> partners(places.begin(), places.begin() + static_cast<std::ptrdiff_t>(found.size()));
        for (int& partner : partners) {
            partner = partner < static_cast<int>(reference.size()) ? partner : -1;
        }
        best = std::max(best, total(found, reference, partners));
    } while (std::next_permutation(places.begin(), places.end()));
    return best;
}

Shapes shapesOf(const std::vector<std::vector<int>>& numbers)
{
    Shapes shapes;
    for (const auto& row : numbers) {
        ComponentShape shape;
        for (std::size_t i = 0; i < row.size(); ++i) {
            (i < row.size() / 2 ? shape.map : shape.spectrum).push_back(row[i]);
        }
        shapes.push_back(shape);
    }
    return shapes;
}

} // namespace

TEST(ComponentMatchingTest, LikenessAddsAngleAndCorrelation)
{
    EXPECT_NEAR(likeness({"a", {1, 2, 3}, {1, 0}}, {"b", {2, 4, 6}, {3, 0}}), 2.0, 1e-12);
    EXPECT_NEAR(likeness({"a", {1, 2, 3}, {1, 0}}, {"b", {3, 2, 1}, {0, 3}}), -1.0, 1e-12);
}

TEST(ComponentMatchingTest, WhatIsNotKnownCountsAsNothing)
{
    EXPECT_NEAR(likeness({"a", {1, 2, 3}, {}}, {"b", {2, 4, 6}, {1, 1}}), 1.0, 1e-12);
    EXPECT_NEAR(likeness({"a", {1, 1, 1}, {1, 0}}, {"b", {2, 4, 6}, {1, 0}}), 1.0, 1e-12);
    EXPECT_EQ(likeness(named("a"), named("a")), 0.0);
}

TEST(ComponentMatchingTest, NamesFindTheirFirst)
{
    const Shapes reference = {named("A"), named("B"), named("B")};
    EXPECT_EQ(matchByName({named("B"), named("C"), named("A"), named("B")}, reference),
              (std::vector<int>{1, -1, 0, 1}));
    EXPECT_TRUE(matchByName({}, reference).empty());
}

// The first looks most like the second's only partner; giving it up gains more than it loses.
TEST(ComponentMatchingTest, TheBestSumCountsNotTheBestPair)
{
    const Shapes found = {{"1", {}, {1, 0.2, 0}}, {"2", {}, {1, 0, 0}}};
    const Shapes reference = {{"x", {}, {1, 0, 0}}, {"y", {}, {0.6, 1, 0}}};
    EXPECT_GT(likeness(found[0], reference[0]), likeness(found[0], reference[1]));
    EXPECT_EQ(matchByShape(found, reference), (std::vector<int>{1, 0}));
}

TEST(ComponentMatchingTest, ListsOfUnequalLengthLeaveTheRestAlone)
{
    const Shapes two = {{"1", {}, {0, 1}}, {"2", {}, {1, 0}}};
    const Shapes three = {{"x", {}, {1, 1}}, {"y", {}, {1, 0}}, {"z", {}, {0, 1}}};
    EXPECT_EQ(matchByShape(two, three), (std::vector<int>{2, 1}));
    EXPECT_EQ(matchByShape(three, two), (std::vector<int>{-1, 1, 0}));
    EXPECT_EQ(matchByShape(two, {}), (std::vector<int>{-1, -1}));
    EXPECT_TRUE(matchByShape({}, two).empty());
}

RC_GTEST_PROP(ComponentMatchingLaw, NoPairingIsBetter, ())
{
    const auto rows = [](std::size_t count) {
        return *rc::gen::container<std::vector<std::vector<int>>>(
            count, rc::gen::container<std::vector<int>>(6, rc::gen::inRange(-3, 9)));
    };
    const Shapes found = shapesOf(rows(*rc::gen::inRange<std::size_t>(0, 6)));
    const Shapes reference = shapesOf(rows(*rc::gen::inRange<std::size_t>(0, 6)));
    const auto partners = matchByShape(found, reference);
    RC_ASSERT(partners.size() == found.size());
    std::vector<int> used;
    for (const int partner : partners) {
        if (partner >= 0) {
            used.push_back(partner);
        }
    }
    RC_ASSERT(used.size() == std::min(found.size(), reference.size()));
    std::sort(used.begin(), used.end());
    RC_ASSERT(std::adjacent_find(used.begin(), used.end()) == used.end());
    // In parentheses: the macro would evaluate both sides.
    RC_ASSERT((used.empty() || used.back() < static_cast<int>(reference.size())));
    if (!found.empty()) {
        RC_ASSERT(std::abs(total(found, reference, partners) - bestTotal(found, reference)) < 1e-9);
    }
}
