#include "qor/array.h"

#include "tests/foundation/supportallocations.h"
#include "tests/foundation/supportarrays.h"
#include "tests/support/printers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using qor::Array;
using qor::String;
using support::AllocationProbe;
using support::refusal;
using support::Tracked;
using support::trackedArray;
using testing::ElementsAre;
using testing::EndsWith;

namespace
{
template<class T>
Array<T> filled(unsigned int count, const T& value)
{
    Array<T> result;
    for (unsigned int i = 0; i < count; ++i)
        result.append(value);
    return result;
}

using ArrayAppend = support::TrackedTest;

TEST_F(ArrayAppend, AddsOneCopyAtTheEnd)
{
    Array<Tracked> array = trackedArray(0, 0);
    const Tracked value(1);
    Tracked::events.clear();

    array.append(value);

    EXPECT_THAT(Tracked::events, ElementsAre("copy 1"));
    ASSERT_EQ(2u, array.size());
    EXPECT_EQ(1, array[1].number());
}

TEST_F(ArrayAppend, TakesConstantAndChangeableValues)
{
    Array<String> array;
    String changeable("changeable");
    const String constant("constant");

    array.append(changeable);
    array.append(constant);
    array.append(String("temporary"));

    EXPECT_EQ(String("changeable"), array[0]);
    EXPECT_EQ(String("constant"), array[1]);
    EXPECT_EQ(String("temporary"), array[2]);
}

TEST_F(ArrayAppend, TheNinthElementGrowsTheCapacityTo16)
{
    Array<unsigned int> array = filled(8, 1u);
    ASSERT_EQ(8u, array.capacity());

    array.append(1u);

    EXPECT_EQ(16u, array.capacity());
}

TEST_F(ArrayAppend, TheSeventeenthElementGrowsTheCapacityTo32)
{
    Array<unsigned int> array = filled(16, 1u);
    ASSERT_EQ(16u, array.capacity());

    array.append(1u);

    EXPECT_EQ(32u, array.capacity());
}

TEST_F(ArrayAppend, AllocatesOnlyAtTheNinthAndTheSeventeenthElement)
{
    Array<unsigned int> array;
    for (unsigned int element = 1; element <= 32; ++element)
    {
        const AllocationProbe probe;

        array.append(element);

        EXPECT_EQ(element == 9 || element == 17 ? 1u : 0u, probe.count()) << element;
    }
}

TEST_F(ArrayAppend, CopiesAllElementsAtGrowthThenDestroysTheOldOnesThenAddsTheNewOne)
{
    Array<Tracked> array = trackedArray(0, 7);
    const Tracked ninth(8);
    Tracked::events.clear();

    array.append(ninth);

    EXPECT_THAT(Tracked::events, ElementsAre("copy 0", "copy 1", "copy 2", "copy 3", "copy 4", "copy 5", "copy 6",
                                             "copy 7", "destroy 0", "destroy 1", "destroy 2", "destroy 3", "destroy 4",
                                             "destroy 5", "destroy 6", "destroy 7", "copy 8"));
}

TEST_F(ArrayAppend, FreesTheOldBlockAtGrowth)
{
    Array<unsigned int> array = filled(8, 1u);
    const AllocationProbe probe;

    array.append(1u);

    EXPECT_EQ(0, probe.balance());
}

TEST_F(ArrayAppend, OfAnElementOfTheArrayItselfSurvivesGrowth)
{
    Array<String> array;
    for (int i = 0; i < 8; ++i)
        array.append(String("a text of its own buffer"));
    array[3] = "the chosen one";

    array.append(array[3]);

    ASSERT_EQ(9u, array.size());
    EXPECT_EQ(String("the chosen one"), array[8]);
    EXPECT_EQ(String("the chosen one"), array[3]);
}

TEST_F(ArrayAppend, WhoseValueCannotBeCopiedLeavesTheElements)
{
    Array<Tracked> array = trackedArray(0, 1);
    const Tracked value(2);
    Tracked::throwingCopy = 2;

    EXPECT_THROW(array.append(value), support::Planned);

    ASSERT_EQ(2u, array.size());
    EXPECT_EQ(1, array[1].number());
}

TEST_F(ArrayAppend, WhoseGrowthCannotCopyAnElementKeepsTheOldBlockAndFreesTheNewOne)
{
    Array<Tracked> array = trackedArray(0, 7);
    const Tracked value(8);
    const void* const block = array.m_block;
    Tracked::throwingCopy = 2;
    Tracked::events.clear();
    {
        const AllocationProbe probe;

        EXPECT_THROW(array.append(value), support::Planned);
    }

    EXPECT_THAT(Tracked::events, ElementsAre("copy 0", "copy 1", "destroy 0", "destroy 1"));
    EXPECT_EQ(block, array.m_block);
    EXPECT_EQ(8u, array.size());
    EXPECT_EQ(8u, array.capacity());
}

TEST_F(ArrayAppend, WithoutMemoryThrowsNullPointerNamingTheRequiredNumberAndKeepsTheBlock)
{
    Array<unsigned int> array = filled(8, 3u);
    const void* const block = array.m_block;
    AllocationProbe probe;
    probe.failNothrow();

    const std::string message = refusal([&] { array.append(4u); });

    EXPECT_EQ("Asked for array of size: 9", message);
    EXPECT_EQ(block, array.m_block);
    EXPECT_EQ(8u, array.size());
    EXPECT_EQ(3u, array[7]);
}

TEST(ArrayEnsureCapacity, WithinTheCapacityDoesNothing)
{
    Array<unsigned int> array = filled(3, 1u);
    const void* const block = array.m_block;
    const AllocationProbe probe;

    array.ensureCapacity(0);
    array.ensureCapacity(8);

    EXPECT_EQ(0u, probe.count());
    EXPECT_EQ(block, array.m_block);
}

TEST(ArrayEnsureCapacity, DoublesFrom8UntilTheNumberFits)
{
    for (const auto& [required, capacity] :
         {std::pair(9u, 16u), std::pair(16u, 16u), std::pair(17u, 32u), std::pair(1000u, 1024u)})
    {
        Array<unsigned int> array;

        array.ensureCapacity(required);

        EXPECT_EQ(capacity, array.capacity()) << required;
        EXPECT_EQ(0u, array.size());
    }
}

TEST(ArrayEnsureCapacity, KeepsTheElements)
{
    Array<unsigned int> array = filled(3, 7u);

    array.ensureCapacity(100);

    ASSERT_EQ(3u, array.size());
    EXPECT_EQ(7u, array[2]);
}

TEST(ArrayEnsureCapacity, WithANumberAbove2To31ThrowsNullPointerWhoseMessageEndsInThatNumber)
{
    Array<unsigned int> array = filled(3, 7u);

    EXPECT_THAT(refusal([&] { array.ensureCapacity(2147483649u); }), EndsWith(": 2147483649"));
    EXPECT_EQ("Asked for array of size: 4294967295", refusal([&] { array.ensureCapacity(4294967295u); }));

    EXPECT_EQ(3u, array.size());
    EXPECT_EQ(8u, array.capacity());
}

TEST(ArrayEnsureCapacity, AsksForBlocksBelow4GiB)
{
    Array<unsigned int> array;
    AllocationProbe probe;
    probe.failNothrow();

    const std::string message = refusal([&] { array.ensureCapacity(1u << 29); });

    EXPECT_EQ(8u + (1ULL << 31), probe.largestSize());
    EXPECT_EQ("Asked for array of size: 536870912", message);
}

TEST(ArrayEnsureCapacity, AsksForNoBlockOf4GiBOrMore)
{
    Array<unsigned int> array;
    const AllocationProbe probe;

    const std::string message = refusal([&] { array.ensureCapacity((1u << 29) + 1); });

    EXPECT_GT(1000u, probe.largestSize()) << "only the message takes memory";
    EXPECT_EQ("Asked for array of size: 536870913", message);
}

TEST(ArrayEnsureCapacity, AsksForTheLargestBlockBelow4GiBAndForNoneOfExactly4GiB)
{
    Array<char> array; // its blocks have any size from 2 GiB on
    constexpr unsigned int largest = 0xFFFFFFFFu - 8;
    AllocationProbe probe;
    probe.failNothrow();

    EXPECT_EQ("Asked for array of size: 4294967288", refusal([&] { array.ensureCapacity(largest + 1); }));
    const std::size_t asked = probe.largestSize();
    EXPECT_EQ("Asked for array of size: 4294967287", refusal([&] { array.ensureCapacity(largest); }));

    EXPECT_GT(1000u, asked) << "only the message takes memory";
    EXPECT_EQ(0xFFFFFFFFu, probe.largestSize());
}

TEST(ArrayEnsureCapacity, CountsTheBytesOfLargeElementsBeyond32Bits)
{
    struct Large
    {
        unsigned int words[4];
    };
    Array<Large> array;
    AllocationProbe probe;
    probe.failNothrow();

    EXPECT_EQ("Asked for array of size: 268435456", refusal([&] { array.ensureCapacity(1u << 28); }));

    EXPECT_GT(1000u, probe.largestSize()) << "2^32 bytes and a header are not taken for a header alone";
}

TEST(ArrayEnsureCapacity, TakesTheNumberItselfWhereDoublingLeaves32Bits)
{
    Array<char> array;
    AllocationProbe probe;
    probe.failNothrow();

    const std::string message = refusal([&] { array.ensureCapacity(2147483649u); });

    EXPECT_EQ(8u + 2147483649u, probe.largestSize());
    EXPECT_EQ("Asked for array of size: 2147483649", message);
}
}
