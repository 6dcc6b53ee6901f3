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
using testing::IsEmpty;

namespace
{
/// Three elements in a block of capacity 32.
Array<unsigned int> roomy()
{
    Array<unsigned int> result;
    for (unsigned int i = 0; i < 3; ++i)
        result.append(i);
    result.ensureCapacity(32);
    return result;
}

using ArrayCopy = support::TrackedTest;
using ArrayAssignment = support::TrackedTest;

TEST_F(ArrayCopy, OfAnArrayWithCapacity32And3ElementsHasCapacity32And3Elements)
{
    const Array<unsigned int> source = roomy();

    const Array<unsigned int> copy(source);

    EXPECT_EQ(32u, copy.capacity());
    ASSERT_EQ(3u, copy.size());
    EXPECT_EQ(2u, copy[2]);
}

TEST_F(ArrayCopy, CopiesEachElementInOrder)
{
    const Array<Tracked> source = trackedArray(1, 3);
    Tracked::events.clear();

    const Array<Tracked> copy(source);

    EXPECT_THAT(Tracked::events, ElementsAre("copy 1", "copy 2", "copy 3"));
}

TEST_F(ArrayCopy, IsAnIndependentList)
{
    Array<String> source;
    source.append(String("original"));

    Array<String> copy(source);
    copy[0] = "changed";
    copy.append(String("more"));

    ASSERT_EQ(1u, source.size());
    EXPECT_EQ(String("original"), source[0]);
}

TEST_F(ArrayCopy, WithoutMemoryThrowsNullPointerNamingTheCapacityOfTheSource)
{
    const Array<unsigned int> source = roomy();
    AllocationProbe probe;
    probe.failNothrow();

    EXPECT_EQ("Asked for array of size: 32", refusal([&] { const Array<unsigned int> copy(source); }));
}

TEST_F(ArrayCopy, OfAnElementThatThrowsLeavesTheSourceAndFreesTheRest)
{
    const Array<Tracked> source = trackedArray(1, 3);
    Tracked::throwingCopy = 3;
    Tracked::events.clear();

    EXPECT_THROW(const Array<Tracked> copy(source), support::Planned);

    EXPECT_THAT(Tracked::events, ElementsAre("copy 1", "copy 2", "destroy 1", "destroy 2"));
    EXPECT_EQ(3u, source.size());
    EXPECT_EQ(3, source[2].number());
}

TEST_F(ArrayAssignment, DestroysItsElementsBeforeItCopiesTheOthers)
{
    Array<Tracked> target = trackedArray(1, 2);
    const Array<Tracked> source = trackedArray(3, 4);
    Tracked::events.clear();

    target = source;

    EXPECT_THAT(Tracked::events, ElementsAre("destroy 1", "destroy 2", "copy 3", "copy 4"));
}

TEST_F(ArrayAssignment, TakesTheCapacityOfTheSourceEvenIfThatIsSmaller)
{
    Array<unsigned int> target = roomy();
    Array<unsigned int> other;

    other = target;
    target = Array<unsigned int>();

    EXPECT_EQ(32u, other.capacity());
    EXPECT_EQ(3u, other.size());
    EXPECT_EQ(8u, target.capacity());
    EXPECT_EQ(0u, target.size());
}

TEST_F(ArrayAssignment, ReturnsTheArray)
{
    Array<unsigned int> target;

    EXPECT_EQ(&target, &(target = roomy()));
}

TEST_F(ArrayAssignment, FreesTheOldBlock)
{
    const Array<unsigned int> source = roomy();
    Array<unsigned int> target;
    const AllocationProbe probe;

    target = source;

    EXPECT_EQ(1u, probe.count());
    EXPECT_EQ(0, probe.balance());
}

TEST_F(ArrayAssignment, ToItselfLeavesTheArrayAndAllocatesNothing)
{
    Array<Tracked> array = trackedArray(1, 3);
    const Array<Tracked>& same = array;
    const void* const block = array.m_block;
    Tracked::events.clear();
    const AllocationProbe probe;

    array = same;
    const unsigned int allocations = probe.count();

    EXPECT_EQ(0u, allocations);
    EXPECT_EQ(block, array.m_block);
    EXPECT_THAT(Tracked::events, IsEmpty());
}

TEST_F(ArrayAssignment, WithoutMemoryThrowsNullPointerNamingTheCapacityOfTheSource)
{
    const Array<unsigned int> source = roomy();
    Array<unsigned int> target;
    AllocationProbe probe;
    probe.failNothrow();

    EXPECT_EQ("Asked for array of size: 32", refusal([&] { target = source; }));
}

TEST_F(ArrayAssignment, ThatFailsLeavesAnEmptyArrayThatCanBeUsed)
{
    const Array<Tracked> source = trackedArray(1, 3);
    Array<Tracked> target = trackedArray(4, 4);
    Tracked::throwingCopy = 2;

    EXPECT_THROW(target = source, support::Planned);
    Tracked::throwingCopy = Tracked::noNumber;

    EXPECT_EQ(nullptr, target.m_block);
    EXPECT_EQ(0u, target.size());
    EXPECT_EQ(0u, target.capacity());
    EXPECT_THROW(target[0], qor::IndexOutOfBounds);
    const Array<Tracked> copy(target);
    EXPECT_EQ(0u, copy.size());
    target.append(Tracked(5));
    EXPECT_EQ(8u, target.capacity());
    EXPECT_EQ(5, target[0].number());
}

TEST_F(ArrayAssignment, GivesAnArrayWithoutABlockOneOfItsOwn)
{
    const Array<Tracked> source = trackedArray(1, 3);
    Array<Tracked> target;
    Tracked::throwingCopy = 1;
    EXPECT_THROW(target = source, support::Planned);
    Tracked::throwingCopy = Tracked::noNumber;

    target = source;

    EXPECT_EQ(3u, target.size());
}

TEST(ArrayWithoutMemory, ThrowsNullPointerNaming0WhenItIsMade)
{
    AllocationProbe probe;
    probe.failNothrow();

    EXPECT_EQ("Asked for array of size: 0", refusal([] { const Array<unsigned int> array; }));
}

TEST(ArrayWithoutMemory, ThrowsNullPointerNaming0WhenItIsCleared)
{
    Array<unsigned int> array = roomy();
    AllocationProbe probe;
    probe.failNothrow();

    EXPECT_EQ("Asked for array of size: 0", refusal([&] { array.clear(); }));

    EXPECT_EQ(0u, array.size());
}
}
