#include "client/watching/endpointlist.h"

#include "tests/foundation/supportallocations.h"
#include "tests/support/manualclock.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace sonavit;

namespace
{
/// A list of endpoints that have an id and nothing else.
std::vector<reading::EndpointReading> listOf(std::size_t count)
{
    std::vector<reading::EndpointReading> list(count);
    for (std::size_t index = 0; index < count; ++index)
        list[index].content.id =
            EndpointId("{0.0.0.00000000}.{endpoint with the number " + std::to_string(index) + "}");
    return list;
}

/// What is allocated when a list replaces an equal one.
unsigned allocationsOfReplacing(std::size_t count)
{
    watching::EndpointList list(
        std::make_shared<watching::Inbox>(std::make_shared<worker::Alarm>(), std::make_shared<support::ManualClock>()));
    list.replace(listOf(count));
    std::vector<reading::EndpointReading> next = listOf(count);
    const support::AllocationProbe probe;
    list.replace(std::move(next));
    return probe.count();
}

TEST(EndpointListReplace, CopiesNoId)
{
    EXPECT_EQ(allocationsOfReplacing(10), allocationsOfReplacing(1000));
}

TEST(EndpointListReplace, ReturnsWhereTheNewOnesAreAndFindsAll)
{
    watching::EndpointList list(
        std::make_shared<watching::Inbox>(std::make_shared<worker::Alarm>(), std::make_shared<support::ManualClock>()));
    std::vector<reading::EndpointReading> first = listOf(4);
    first.erase(first.begin() + 1);
    list.replace(std::move(first));
    list[0].content.description = "kept";

    EXPECT_EQ(std::vector<std::size_t>{1}, list.replace(listOf(4)));

    EXPECT_EQ("kept", list[0].content.description);
    for (std::size_t index = 0; index < 4; ++index)
        EXPECT_EQ(index, list.find(list[index].content.id));
    EXPECT_EQ(std::vector<std::size_t>(), list.replace(listOf(2)));
    EXPECT_FALSE(list.find(EndpointId("{0.0.0.00000000}.{endpoint with the number 3}")));
    list.clear();
    EXPECT_FALSE(list.find(EndpointId("{0.0.0.00000000}.{endpoint with the number 0}")));
}
}
