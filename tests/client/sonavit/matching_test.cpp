#include "sonavit/matching.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

using sonavit::matching::Matching;
using sonavit::matching::none;
using sonavit::matching::occurrences;
using sonavit::matching::Places;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
using Ids = std::vector<std::string_view>;

/// The ids of @p after that move.
std::vector<std::string> moved(const Ids& before, const Ids& after)
{
    const Matching matching(before, after);
    std::vector<std::string> result;
    for (std::size_t i = 0; i < after.size(); ++i)
    {
        if (matching.isMoved(i))
            result.emplace_back(after[i]);
    }
    return result;
}
}

TEST(Occurrences, CountEqualIdsInAnyCase)
{
    EXPECT_THAT(occurrences({"a", "", "A", "b", "", "a"}), ElementsAre(0, 0, 1, 0, 1, 2));
    EXPECT_THAT(occurrences({}), IsEmpty());
}

TEST(Occurrences, CountEqualIdsHoweverManyThereAre)
{
    const std::vector<std::string> texts = {"first id", "SECOND ID", "", "First Id", "second id"};
    Ids ids;
    std::vector<std::size_t> expected;
    for (std::size_t i = 0; i < 100; ++i)
    {
        ids.push_back(texts[i % texts.size()]);
        const std::size_t former = 2 * (i / texts.size()); // of ids that two of the texts make
        const std::size_t place = i % texts.size();
        expected.push_back(place == 2 ? i / texts.size() : former + (place > 2 ? 1 : 0));
    }

    EXPECT_EQ(expected, occurrences(ids));
}

TEST(Places, AreFoundByIdAndOccurrence)
{
    const Places places({"a", "b", "A"});

    EXPECT_EQ(0u, places.of({"A", 0}));
    EXPECT_EQ(2u, places.of({"a", 1}));
    EXPECT_EQ(none, places.of({"a", 2}));
    EXPECT_EQ(none, places.of({"c", 0}));
}

TEST(Matching, PairsTheOccurrencesOfAnId)
{
    const Matching matching({"a", "", "a", ""}, {"", "A", "b"});

    EXPECT_EQ(1u, matching.toAfter(0));
    EXPECT_EQ(0u, matching.toAfter(1));
    EXPECT_EQ(none, matching.toAfter(2));
    EXPECT_EQ(none, matching.toAfter(3));
    EXPECT_EQ(1u, matching.toBefore(0));
    EXPECT_EQ(0u, matching.toBefore(1));
    EXPECT_EQ(none, matching.toBefore(2));
    EXPECT_EQ(1u, matching.occurrenceBefore(2));
    EXPECT_EQ(0u, matching.occurrenceAfter(2));
}

TEST(Matching, PairsEqualListsPlaceByPlace)
{
    const Matching matching({"a", "b", "a"}, {"A", "b", "a"});

    EXPECT_EQ(2u, matching.toAfter(2));
    EXPECT_EQ(1u, matching.occurrenceAfter(2));
    EXPECT_FALSE(matching.isMoved(2));
}

TEST(Matching, MovesAsFewAsPossible)
{
    EXPECT_THAT(moved({"a", "b", "c", "d"}, {"b", "c", "d", "a"}), ElementsAre("a"));
    EXPECT_THAT(moved({"a", "b", "c", "d"}, {"d", "a", "b", "c"}), ElementsAre("d"));
    EXPECT_THAT(moved({"a", "b", "c"}, {"x", "a", "c"}), IsEmpty());
    EXPECT_EQ(2u, moved({"a", "b", "c"}, {"c", "b", "a"}).size());
    EXPECT_EQ(2u, moved({"a", "b", "c", "d", "e"}, {"a", "d", "b", "e", "c"}).size());
}
