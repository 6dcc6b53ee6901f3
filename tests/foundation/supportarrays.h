#pragma once

#include "qor/array.h"
#include "tests/foundation/supporttracked.h"

#include <gtest/gtest.h>

#include <string>

namespace support
{
/// Starts each test without events and checks at its end that every Tracked is destroyed.
class TrackedTest : public testing::Test
{
protected:
    void SetUp() override { Tracked::reset(); }
    void TearDown() override { EXPECT_EQ(0, Tracked::alive); }
};

inline qor::Array<Tracked> trackedArray(int first, int last)
{
    qor::Array<Tracked> result;
    for (int number = first; number <= last; ++number)
        result.append(Tracked(number));
    return result;
}

/// Message of the NullPointer that @p operation throws.
template<class Operation>
std::string refusal(Operation operation)
{
    try
    {
        operation();
    }
    catch (const qor::NullPointer& error)
    {
        return error.what();
    }
    return "nothing was thrown";
}
}
