#include "qor/array.h"

#include "tests/foundation/supportallocations.h"
#include "tests/foundation/supportarrays.h"
#include "tests/support/printers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>

using qor::Array;
using qor::IndexOutOfBounds;
using qor::String;
using support::AllocationProbe;
using support::Tracked;
using support::trackedArray;
using testing::ElementsAre;

namespace
{
Array<unsigned int> numbers(unsigned int count)
{
    Array<unsigned int> result;
    for (unsigned int i = 0; i < count; ++i)
        result.append(i);
    return result;
}

template<class Operation>
IndexOutOfBounds boundsError(Operation operation)
{
    try
    {
        operation();
    }
    catch (const IndexOutOfBounds& error)
    {
        return error;
    }
    ADD_FAILURE() << "nothing was thrown";
    return IndexOutOfBounds(0, 0, 0);
}

using ArrayDestruction = support::TrackedTest;
using ArrayRemove = support::TrackedTest;
using ArrayClear = support::TrackedTest;
using ArrayRelease = support::TrackedTest;

TEST(ArrayConstruction, GivesSize0AndCapacity8)
{
    const Array<unsigned int> array;

    EXPECT_EQ(0u, array.size());
    EXPECT_EQ(8u, array.capacity());
}

TEST(ArrayConstruction, AllocatesOneBlockForHeaderAndEightElements)
{
    const AllocationProbe probe;

    const Array<unsigned int> array;

    EXPECT_EQ(1u, probe.count());
    EXPECT_EQ(8u + 8u * sizeof(unsigned int), probe.largestSize());
}

TEST(ArrayConstruction, PutsTheElementsDirectlyAfterTwoHeaderWords)
{
    const Array<unsigned int> array = numbers(3);

    const unsigned int* const words = reinterpret_cast<const unsigned int*>(array.m_block);

    EXPECT_EQ(3u, words[0]);
    EXPECT_EQ(8u, words[1]);
    EXPECT_EQ(words + 2, &array[0]);
    EXPECT_EQ(words + 4, &array[2]);
}

TEST_F(ArrayDestruction, DestroysTheElementsFirstToLast)
{
    {
        const Array<Tracked> array = trackedArray(0, 2);
        Tracked::events.clear();
    }

    EXPECT_THAT(Tracked::events, ElementsAre("destroy 0", "destroy 1", "destroy 2"));
}

TEST_F(ArrayDestruction, FreesTheBlock)
{
    const AllocationProbe probe;

    {
        const Array<unsigned int> array;
        EXPECT_EQ(1, probe.balance());
    }

    EXPECT_EQ(0, probe.balance());
}

TEST_F(ArrayDestruction, PassesAnExceptionOfAnElementOnAfterTheOthersAreDestroyed)
{
    const auto destroy = []
    {
        const Array<Tracked> array = trackedArray(0, 2);
        Tracked::throwingDestruction = 1;
        Tracked::events.clear();
    };

    EXPECT_FALSE(std::is_nothrow_destructible_v<Array<Tracked>>);
    EXPECT_THROW(destroy(), support::Planned);

    EXPECT_THAT(Tracked::events, ElementsAre("destroy 0", "destroy 1", "destroy 2"));
}

TEST(ArrayIndex, GivesTheElementToReadAndToChange)
{
    Array<unsigned int> array = numbers(3);

    array[1] = 77;

    const Array<unsigned int>& readable = array;
    EXPECT_EQ(0u, readable[0]);
    EXPECT_EQ(77u, readable[1]);
    EXPECT_EQ(2u, readable[2]);
}

TEST(ArrayIndex, EqualToTheSizeThrowsIndexOutOfBoundsFrom0ToSizeMinus1)
{
    Array<unsigned int> array = numbers(3);
    const Array<unsigned int>& readable = array;

    for (const IndexOutOfBounds& error : {boundsError([&] { array[3] = 0; }), boundsError([&] { (void)readable[3]; })})
    {
        EXPECT_EQ(0, error.low());
        EXPECT_EQ(2, error.high());
        EXPECT_EQ(3, error.index());
    }
}

TEST(ArrayIndex, OfAnEmptyArrayThrowsIndexOutOfBoundsFrom0ToMinus1)
{
    const Array<unsigned int> array;

    const IndexOutOfBounds error = boundsError([&] { (void)array[5]; });

    EXPECT_EQ(0, error.low());
    EXPECT_EQ(-1, error.high());
    EXPECT_EQ(5, error.index());
}

TEST(ArrayIndex, IsComparedAsAnUnsignedNumberAndReportedAsASignedOne)
{
    const Array<unsigned int> array = numbers(3);

    EXPECT_EQ(-1, boundsError([&] { (void)array[0xFFFFFFFFu]; }).index());
}

TEST(ArrayIndex, OutOfBoundsLeavesTheArrayUnchanged)
{
    Array<unsigned int> array = numbers(3);
    const unsigned int* const first = &array[0];

    EXPECT_THROW(array[3] = 0, IndexOutOfBounds);

    EXPECT_EQ(3u, array.size());
    EXPECT_EQ(first, &array[0]);
}

TEST_F(ArrayClear, OfAnArrayOfCapacity32LeavesCapacity8AndNoElement)
{
    Array<unsigned int> array = numbers(17);
    ASSERT_EQ(32u, array.capacity());

    array.clear();

    EXPECT_EQ(8u, array.capacity());
    EXPECT_EQ(0u, array.size());
}

TEST_F(ArrayClear, DestroysTheElementsFirstToLast)
{
    Array<Tracked> array = trackedArray(0, 2);
    Tracked::events.clear();

    array.clear();

    EXPECT_THAT(Tracked::events, ElementsAre("destroy 0", "destroy 1", "destroy 2"));
}

TEST_F(ArrayClear, MakesANewBlockAndFreesTheOldOne)
{
    Array<unsigned int> array = numbers(3);
    const AllocationProbe probe;

    array.clear();

    EXPECT_EQ(1u, probe.count());
    EXPECT_EQ(0, probe.balance());
}

TEST_F(ArrayClear, LeavesAUsableArrayWhenAnElementThrows)
{
    Array<Tracked> array = trackedArray(0, 0);
    Tracked::throwingDestruction = 0;

    EXPECT_THROW(array.clear(), support::Planned);

    EXPECT_EQ(0u, array.size());
    array.append(Tracked(7));
    EXPECT_EQ(7, array[0].number());
}

TEST_F(ArrayRelease, DestroysTheElementsFirstToLast)
{
    Array<Tracked> array = trackedArray(0, 2);
    Tracked::events.clear();

    array.release();

    EXPECT_THAT(Tracked::events, ElementsAre("destroy 0", "destroy 1", "destroy 2"));
    EXPECT_EQ(0u, array.size());
    EXPECT_EQ(0u, array.capacity());
}

TEST_F(ArrayRelease, FreesTheBlockWithoutANewOne)
{
    Array<unsigned int> array = numbers(3);
    AllocationProbe probe;
    probe.failAll();

    array.release();

    EXPECT_EQ(0u, probe.count());
    EXPECT_EQ(-1, probe.balance());
}

TEST_F(ArrayRelease, LeavesAUsableArrayEvenWhenAnElementThrows)
{
    Array<Tracked> array = trackedArray(0, 0);
    Tracked::throwingDestruction = 0;

    EXPECT_THROW(array.release(), support::Planned);

    array.release();
    array.append(Tracked(7));
    EXPECT_EQ(8u, array.capacity());
    EXPECT_EQ(7, array[0].number());
}

TEST_F(ArrayRemove, MovesEachLaterElementDownByOnePlace)
{
    Array<unsigned int> array = numbers(5);

    array.remove(1);

    ASSERT_EQ(4u, array.size());
    EXPECT_EQ(0u, array[0]);
    EXPECT_EQ(2u, array[1]);
    EXPECT_EQ(3u, array[2]);
    EXPECT_EQ(4u, array[3]);
}

TEST_F(ArrayRemove, DestroysTheElementAndNeitherCopiesNorDestroysTheOthers)
{
    Array<Tracked> array = trackedArray(0, 3);
    Tracked::events.clear();

    array.remove(1);

    EXPECT_THAT(Tracked::events, ElementsAre("destroy 1"));
    EXPECT_EQ(3, array[2].number());
}

TEST_F(ArrayRemove, TakesTheLastElementToo)
{
    Array<Tracked> array = trackedArray(0, 1);
    Tracked::events.clear();

    array.remove(1);

    EXPECT_THAT(Tracked::events, ElementsAre("destroy 1"));
    EXPECT_EQ(1u, array.size());
}

TEST_F(ArrayRemove, LetsAnIndexEqualToTheCountThroughAndLeavesTheArray)
{
    Array<Tracked> array = trackedArray(0, 1);
    Array<Tracked> empty;
    Tracked::events.clear();

    EXPECT_NO_THROW(array.remove(2));
    EXPECT_NO_THROW(empty.remove(0));

    EXPECT_THAT(Tracked::events, ElementsAre());
    EXPECT_EQ(2u, array.size());
}

TEST_F(ArrayRemove, OfAnIndexBeyondTheCountThrowsIndexOutOfBounds)
{
    Array<Tracked> array = trackedArray(0, 1);

    const IndexOutOfBounds error = boundsError([&] { array.remove(3); });

    EXPECT_EQ(0, error.low());
    EXPECT_EQ(1, error.high());
    EXPECT_EQ(3, error.index());
    EXPECT_EQ(2u, array.size());
}

TEST_F(ArrayRemove, KeepsTheCapacity)
{
    Array<unsigned int> array = numbers(9);

    array.remove(0);

    EXPECT_EQ(16u, array.capacity());
}

TEST_F(ArrayRemove, FromAFullArrayMovesNothingBeyondTheLastElement)
{
    for (unsigned int index = 0; index < 8; ++index)
    {
        Array<unsigned int> array = numbers(8);
        ASSERT_EQ(8u, array.capacity());

        array.remove(index);

        ASSERT_EQ(7u, array.size());
        for (unsigned int i = 0; i < 7; ++i)
            EXPECT_EQ(i < index ? i : i + 1, array[i]) << index;
        EXPECT_EQ(7u, *array.element(7)) << "the last place keeps its bytes: there is nothing to move into it";
    }
}

TEST_F(ArrayRemove, FromAFullArrayMakesRoomForOneMore)
{
    Array<unsigned int> array = numbers(8);
    const void* const block = array.m_block;

    array.remove(7);
    array.append(70u);

    EXPECT_EQ(block, array.m_block);
    EXPECT_EQ(8u, array.size());
    EXPECT_EQ(70u, array[7]);
}

TEST_F(ArrayRemove, FromAFullArrayIgnoresAnIndexEqualToTheCountAndRefusesALargerOne)
{
    Array<unsigned int> array = numbers(8);

    EXPECT_NO_THROW(array.remove(8));
    EXPECT_THROW(array.remove(9), IndexOutOfBounds);

    EXPECT_EQ(8u, array.size());
}

TEST_F(ArrayRemove, ForgetsTheElementEvenWhenItsDestructorThrows)
{
    Array<Tracked> array = trackedArray(0, 2);
    Tracked::throwingDestruction = 1;

    EXPECT_THROW(array.remove(1), support::Planned);

    ASSERT_EQ(2u, array.size());
    EXPECT_EQ(0, array[0].number());
    EXPECT_EQ(2, array[1].number());
}

TEST(ArrayContains, ComparesTextsExactly)
{
    Array<String> array;
    array.append(String("{1}.card"));

    EXPECT_TRUE(array.contains(String("{1}.card")));
    EXPECT_FALSE(array.contains(String("{1}.CARD")));
    EXPECT_FALSE(Array<String>().contains(String()));
}

TEST(ArrayContains, ComparesNumbers)
{
    const Array<unsigned int> array = numbers(3);

    EXPECT_TRUE(array.contains(2));
    EXPECT_FALSE(array.contains(3));
}
}
