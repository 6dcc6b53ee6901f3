#include "qor/array.h"

#include "tests/foundation/supportallocations.h"
#include "tests/foundation/supportarrays.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using qor::Array;
using support::AllocationProbe;
using support::Tracked;
using support::trackedArray;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
using ArrayTaken = support::TrackedTest;

TEST_F(ArrayTaken, HasTheBlockOfTheOtherArrayWithoutCopyingAnything)
{
    Array<Tracked> source = trackedArray(1, 9);
    const Tracked* const first = &source[0];
    Tracked::events.clear();
    {
        const AllocationProbe probe;

        const Array<Tracked> taken(source, {});

        EXPECT_EQ(0u, probe.count());
        EXPECT_EQ(9u, taken.size());
        EXPECT_EQ(16u, taken.capacity());
        EXPECT_EQ(first, &taken[0]);
        EXPECT_THAT(Tracked::events, IsEmpty());
    }
    EXPECT_EQ(0, Tracked::alive);
}

TEST_F(ArrayTaken, LeavesAnArrayThatMayBeClearedAndAssigned)
{
    Array<Tracked> source = trackedArray(1, 3);
    const Array<Tracked> taken(source, {});

    EXPECT_EQ(0u, source.size());
    EXPECT_EQ(0u, source.capacity());
    source = taken;
    EXPECT_EQ(3u, source.size());
    const Array<Tracked> again(source, {});
    source.clear();
    EXPECT_EQ(8u, source.capacity());
    source.append(Tracked(7));
    EXPECT_EQ(7, source[0].number());
}

/// An element whose copy at growth takes its text, unless the text is to stay.
struct GrowingOwner
{
    struct Taker
    {
        GrowingOwner& owner;
    };

    explicit GrowingOwner(const char* ownText) : text(ownText) {}
    GrowingOwner(const GrowingOwner& other) : text(other.text) { events.push_back("copies " + text); }
    explicit GrowingOwner(const Taker& taker) : text(std::move(taker.owner.text)) { events.push_back("takes " + text); }
    ~GrowingOwner() { events.push_back("ends with " + text); }

    static inline std::vector<std::string> events;

    std::string text;
};
}

template<>
struct qor::GrowthCopy<GrowingOwner>
{
    static constexpr bool takes = true;

    static bool isPossible(const GrowingOwner* elements, unsigned int count) noexcept
    {
        for (unsigned int i = 0; i < count; ++i)
        {
            if (elements[i].text == "fixed")
                return false;
        }
        return true;
    }

    static GrowingOwner::Taker of(GrowingOwner& element) noexcept { return {element}; }
};

namespace
{
/// An array of eight elements, of which the first two have these texts.
Array<GrowingOwner> fullArray(const char* first, const char* second)
{
    Array<GrowingOwner> owners;
    owners.emplace(first);
    owners.emplace(second);
    while (owners.size() < owners.capacity())
        owners.emplace("");
    GrowingOwner::events.clear();
    return owners;
}

std::vector<std::string> firstEvents(const char* start)
{
    std::vector<std::string> result;
    for (const std::string& event : GrowingOwner::events)
    {
        if (event.size() > std::string(start).size() && event.compare(0, std::string(start).size(), start) == 0)
            result.push_back(event);
    }
    return result;
}

TEST(ArrayGrowthCopy, TakesFromTheElementsThatAreDestroyedAfterAllAreCopied)
{
    Array<GrowingOwner> owners = fullArray("a", "b");

    owners.ensureCapacity(9);

    EXPECT_THAT(firstEvents("takes "), ElementsAre("takes a", "takes b"));
    EXPECT_THAT(firstEvents("copies "), IsEmpty());
    ASSERT_EQ(16u, GrowingOwner::events.size());
    EXPECT_EQ("takes ", GrowingOwner::events[7]);
    EXPECT_EQ("ends with ", GrowingOwner::events[8]);
    EXPECT_EQ("a", owners[0].text);
    EXPECT_EQ("b", owners[1].text);
}

TEST(ArrayGrowthCopy, CopiesAllElementsIfOneOfThemCannotBeTakenFrom)
{
    Array<GrowingOwner> owners = fullArray("a", "fixed");

    owners.ensureCapacity(9);

    EXPECT_THAT(firstEvents("takes "), IsEmpty());
    EXPECT_THAT(firstEvents("copies "), ElementsAre("copies a", "copies fixed"));
    EXPECT_EQ("ends with a", GrowingOwner::events[8]);
    EXPECT_EQ("a", owners[0].text);
}

TEST(ArrayGrowthCopy, CopiesWhenAnArrayIsCopied)
{
    const Array<GrowingOwner> owners = fullArray("a", "b");

    const Array<GrowingOwner> copy(owners);

    EXPECT_THAT(firstEvents("copies "), ElementsAre("copies a", "copies b"));
    EXPECT_EQ("a", owners[0].text);
}
}
