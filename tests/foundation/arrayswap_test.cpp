#include "qor/array.h"

#include "tests/foundation/supportallocations.h"
#include "tests/foundation/supportarrays.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using qor::Array;
using support::AllocationProbe;
using support::Tracked;
using support::trackedArray;
using testing::IsEmpty;

namespace
{
using ArraySwap = support::TrackedTest;

TEST_F(ArraySwap, ExchangesElementsAndCapacities)
{
    Array<Tracked> left = trackedArray(1, 3);
    Array<Tracked> right = trackedArray(11, 19);

    left.swap(right);

    ASSERT_EQ(9u, left.size());
    EXPECT_EQ(16u, left.capacity());
    EXPECT_EQ(11, left[0].number());
    ASSERT_EQ(3u, right.size());
    EXPECT_EQ(8u, right.capacity());
    EXPECT_EQ(1, right[0].number());
}

TEST_F(ArraySwap, CopiesAndDestroysNothingAndKeepsReferences)
{
    Array<Tracked> left = trackedArray(1, 3);
    Array<Tracked> right;
    const Tracked* const second = &left[1];
    Tracked::events.clear();
    const AllocationProbe probe;

    left.swap(right);

    EXPECT_EQ(0u, probe.count());
    EXPECT_EQ(0, probe.balance());
    EXPECT_THAT(Tracked::events, IsEmpty());
    EXPECT_EQ(second, &right[1]);
    EXPECT_TRUE(noexcept(left.swap(right)));
}

TEST_F(ArraySwap, WithItselfChangesNothing)
{
    Array<Tracked> array = trackedArray(1, 3);

    array.swap(array);

    ASSERT_EQ(3u, array.size());
    EXPECT_EQ(3, array[2].number());
}

TEST_F(ArraySwap, HandsAMissingBlockOver)
{
    const Array<Tracked> source = trackedArray(1, 3);
    Array<Tracked> broken;
    Tracked::throwingCopy = 1;
    EXPECT_THROW(broken = source, support::Planned);
    Tracked::throwingCopy = Tracked::noNumber;
    Array<Tracked> whole = trackedArray(4, 5);

    broken.swap(whole);

    EXPECT_EQ(2u, broken.size());
    EXPECT_EQ(nullptr, whole.m_block);
    whole.append(Tracked(6));
    EXPECT_EQ(6, whole[0].number());
}
}
