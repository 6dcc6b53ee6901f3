#include "qor/array.h"

#include "tests/foundation/supportarrays.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <vector>

using qor::Array;
using qor::String;
using support::Tracked;
using support::trackedArray;

namespace
{
using ArrayLoop = support::TrackedTest;

TEST_F(ArrayLoop, VisitsTheElementsInOrderWithoutCopies)
{
    const Array<Tracked> array = trackedArray(1, 9);
    Tracked::events.clear();

    std::vector<int> visited;
    for (const Tracked& element : array)
        visited.push_back(element.number());

    EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9}), visited);
    EXPECT_EQ(std::vector<std::string>(), Tracked::events);
}

TEST_F(ArrayLoop, MayChangeTheElements)
{
    Array<String> array;
    array.append("a");
    array.append("b");

    for (String& element : array)
        element.append("!");

    EXPECT_EQ(String("a!"), array[0]);
    EXPECT_EQ(String("b!"), array[1]);
}

TEST_F(ArrayLoop, OverAnArrayWithoutElementsOrWithoutABlockVisitsNothing)
{
    const Array<Tracked> source = trackedArray(1, 1);
    Array<Tracked> broken;
    Tracked::throwingCopy = 1;
    EXPECT_THROW(broken = source, support::Planned);
    Tracked::throwingCopy = Tracked::noNumber;
    const Array<Tracked> empty;

    EXPECT_EQ(empty.begin(), empty.end());
    EXPECT_EQ(nullptr, broken.begin());
    EXPECT_EQ(nullptr, broken.end());
}
}
