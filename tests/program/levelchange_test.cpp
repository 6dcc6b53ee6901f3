#include "tools/sonavit/levelchange.h"

#include "tools/sonavit/commandlinevalues.h"

#include <gtest/gtest.h>

using namespace sonavit::program;

TEST(ProgramLevelChange, NeedsToKnowTheLevelForAStepAlone)
{
    const Level percentAlone{50u, std::nullopt};
    const Level decibelsAlone{std::nullopt, -6.0f};

    EXPECT_TRUE(readLevelChange("5%+").canStartAt(percentAlone));
    EXPECT_FALSE(readLevelChange("5%+").canStartAt(decibelsAlone));
    EXPECT_TRUE(readLevelChange("5dB+").canStartAt(decibelsAlone));
    EXPECT_FALSE(readLevelChange("5dB+").canStartAt(percentAlone));
    EXPECT_TRUE(readLevelChange("5%").canStartAt({}));
    EXPECT_TRUE(readLevelChange("-5dB").canStartAt({}));
}
