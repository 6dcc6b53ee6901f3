/// The size of the storms: many events while several threads work.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

namespace support
{
/// How many events a storm makes: @p usual, or as many as the environment says in SONAVIT_STORM_EVENTS. The number
/// becomes the property "events" of the test that runs.
inline unsigned stormEvents(unsigned usual)
{
    const char* const text = std::getenv("SONAVIT_STORM_EVENTS");
    const unsigned count = text == nullptr ? usual : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
    testing::Test::RecordProperty("events", static_cast<int>(count));
    return count;
}
}
