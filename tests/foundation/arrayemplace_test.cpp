#include "qor/array.h"

#include "tests/foundation/supportallocations.h"
#include "tests/foundation/supportarrays.h"
#include "tests/support/printers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

using qor::Array;
using qor::String;
using support::AllocationProbe;
using support::refusal;
using support::Tracked;
using support::trackedArray;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
using ArrayEmplace = support::TrackedTest;

/// Throws in its constructor on request; holds a Tracked, which must not outlive that.
struct Refusing
{
    explicit Refusing(int number) : tracked(number)
    {
        if (number < 0)
            throw support::Planned();
    }

    Tracked tracked;
};

TEST_F(ArrayEmplace, BuildsTheElementInPlaceWithoutACopy)
{
    Array<Tracked> array = trackedArray(0, 0);
    Tracked::events.clear();

    array.emplace(1);

    EXPECT_THAT(Tracked::events, IsEmpty());
    ASSERT_EQ(2u, array.size());
    EXPECT_EQ(1, array[1].number());
}

TEST_F(ArrayEmplace, ReturnsTheNewElement)
{
    Array<Tracked> array = trackedArray(0, 6);

    Tracked* const eighth = &array.emplace(7);
    EXPECT_EQ(&array[7], eighth);

    Tracked* const ninth = &array.emplace(8);
    EXPECT_EQ(&array[8], ninth);
}

TEST_F(ArrayEmplace, WithoutArgumentsAppendsADefaultElement)
{
    Array<unsigned int> numbers;
    Array<String> strings;

    numbers.emplace();
    strings.emplace();

    EXPECT_EQ(0u, numbers[0]);
    EXPECT_EQ(String(), strings[0]);
}

TEST_F(ArrayEmplace, PassesTemporariesOnAsTemporaries)
{
    Array<std::shared_ptr<int>> array;
    std::shared_ptr<int> owner = std::make_shared<int>(5);

    array.emplace(std::move(owner));

    EXPECT_EQ(nullptr, owner);
    EXPECT_EQ(1, array[0].use_count());
}

TEST_F(ArrayEmplace, AllocatesOnlyAtTheNinthAndTheSeventeenthElement)
{
    Array<unsigned int> array;
    for (unsigned int element = 1; element <= 32; ++element)
    {
        const AllocationProbe probe;

        array.emplace(element);

        EXPECT_EQ(element == 9 || element == 17 ? 1u : 0u, probe.count()) << element;
        EXPECT_EQ(0, probe.balance()) << element;
    }
    EXPECT_EQ(32u, array.capacity());
    for (unsigned int i = 0; i < 32; ++i)
        EXPECT_EQ(i + 1, array[i]);
}

TEST_F(ArrayEmplace, CopiesTheOldElementsAtGrowthThenDestroysThemFirstToLast)
{
    Array<Tracked> array = trackedArray(0, 7);
    Tracked::events.clear();

    array.emplace(8);

    EXPECT_THAT(Tracked::events,
                ElementsAre("copy 0", "copy 1", "copy 2", "copy 3", "copy 4", "copy 5", "copy 6", "copy 7", "destroy 0",
                            "destroy 1", "destroy 2", "destroy 3", "destroy 4", "destroy 5", "destroy 6", "destroy 7"));
    EXPECT_EQ(16u, array.capacity());
    EXPECT_EQ(8, array[8].number());
}

TEST_F(ArrayEmplace, OfAnElementOfTheArrayItselfSurvivesGrowth)
{
    Array<String> array;
    for (int i = 0; i < 8; ++i)
        array.emplace("a text of its own buffer");
    array[3] = "the chosen one";

    array.emplace(array[3]);

    ASSERT_EQ(9u, array.size());
    EXPECT_EQ(String("the chosen one"), array[8]);
    EXPECT_EQ(String("the chosen one"), array[3]);
}

TEST_F(ArrayEmplace, OfAnElementThatItMovesFromLeavesThatElementEmptyEvenAtGrowth)
{
    Array<String> array;
    for (int i = 0; i < 8; ++i)
        array.emplace("a text of its own buffer");

    array.emplace(std::move(array[3]));

    EXPECT_EQ(String("a text of its own buffer"), array[8]);
    EXPECT_EQ(String(), array[3]);
    EXPECT_EQ(String("a text of its own buffer"), array[4]);
}

TEST_F(ArrayEmplace, WithPartsOfAnElementAsArgumentsSurvivesGrowth)
{
    Array<Refusing> array;
    for (int i = 0; i < 8; ++i)
        array.emplace(i);
    const Refusing& fifth = array[5];

    array.emplace(fifth);

    EXPECT_EQ(5, array[8].tracked.number());
}

TEST_F(ArrayEmplace, WhoseConstructorThrowsLeavesTheArray)
{
    for (const int count : {3, 8})
    {
        Array<Refusing> array;
        for (int i = 0; i < count; ++i)
            array.emplace(i);
        const void* const block = array.m_block;
        const unsigned int capacity = array.capacity();
        Tracked::events.clear();
        const AllocationProbe probe;

        EXPECT_THROW(array.emplace(-2), support::Planned);

        EXPECT_EQ(block, array.m_block) << count;
        EXPECT_EQ(static_cast<unsigned int>(count), array.size());
        EXPECT_EQ(capacity, array.capacity());
        EXPECT_THAT(Tracked::events, ElementsAre("destroy -2"));
    }
}

TEST_F(ArrayEmplace, ThatCannotCopyAnOldElementAtGrowthDestroysTheNewOneAndLeavesTheArray)
{
    Array<Tracked> array = trackedArray(0, 7);
    const void* const block = array.m_block;
    Tracked::throwingCopy = 2;
    Tracked::events.clear();

    EXPECT_THROW(array.emplace(8), support::Planned);

    EXPECT_EQ(block, array.m_block);
    EXPECT_EQ(8u, array.size());
    EXPECT_THAT(Tracked::events, ElementsAre("copy 0", "copy 1", "destroy 8", "destroy 0", "destroy 1"));
}

TEST_F(ArrayEmplace, WhoseOldElementThrowsInItsDestructorHasTheNewElementNevertheless)
{
    Array<Tracked> array = trackedArray(0, 7);
    Tracked::throwingDestruction = 4;

    EXPECT_THROW(array.emplace(8), support::Planned);

    ASSERT_EQ(9u, array.size());
    EXPECT_EQ(0, array[0].number());
    EXPECT_EQ(8, array[8].number());
}

TEST_F(ArrayEmplace, WithoutMemoryThrowsNullPointerNamingTheRequiredNumberAndBuildsNothing)
{
    Array<Tracked> array = trackedArray(0, 7);
    Tracked::events.clear();
    AllocationProbe probe;
    probe.failNothrow();

    const std::string message = refusal([&] { array.emplace(8); });
    probe.succeed();

    EXPECT_EQ("Asked for array of size: 9", message);
    EXPECT_EQ(8u, array.size());
    EXPECT_EQ(8u, array.capacity());
    EXPECT_THAT(Tracked::events, IsEmpty());
}

TEST_F(ArrayEmplace, GivesAnArrayWithoutABlockOneOfItsOwn)
{
    const Array<Tracked> source = trackedArray(1, 3);
    Array<Tracked> target;
    Tracked::throwingCopy = 1;
    EXPECT_THROW(target = source, support::Planned);
    Tracked::throwingCopy = Tracked::noNumber;
    ASSERT_EQ(nullptr, target.m_block);

    target.emplace(5);

    EXPECT_EQ(8u, target.capacity());
    EXPECT_EQ(5, target[0].number());
}
}
