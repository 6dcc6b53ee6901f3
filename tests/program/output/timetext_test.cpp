#include "tools/sonavit/output/timetext.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace sonavit::program;
using std::chrono::milliseconds;
using std::chrono::system_clock;

TEST(ProgramTimeText, IsDateAndTimeInUtcForPrograms)
{
    EXPECT_EQ("1970-01-01T00:00:00.000Z", universalTimeText(system_clock::from_time_t(0)));
    EXPECT_EQ("2026-01-31T17:04:59.250Z", universalTimeText(system_clock::from_time_t(1769879099) + milliseconds(250)));
    EXPECT_EQ("2024-02-29T23:59:59.999Z", universalTimeText(system_clock::from_time_t(1709251199) + milliseconds(999)));
}

TEST(ProgramTimeText, IsTheTimeOfDayForPeople)
{
    const system_clock::time_point time = system_clock::from_time_t(1769879099) + milliseconds(250);

    const std::string text = localTimeText(time);

    EXPECT_EQ(12u, text.size()) << text; // "17:04:59.250" where clocks show UTC
    EXPECT_EQ("59.250", text.substr(6));
}
