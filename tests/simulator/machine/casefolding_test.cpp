#include "simulator/machine/casefolding.h"

#include <gtest/gtest.h>

namespace
{
TEST(CaseFolding, ChangesTheLettersAToZOnly)
{
    EXPECT_EQ("az@[`{09 \xC3\x84", sim::lowerCase("AZ@[`{09 \xC3\x84"));
    EXPECT_EQ('z', sim::lowerCase('Z'));
}

TEST(CaseFolding, MakesStringsEqualThatDifferInTheCaseOfAToZ)
{
    EXPECT_TRUE(sim::equalNoCase("", ""));
    EXPECT_TRUE(sim::equalNoCase("{0.0.1.00000000}.{aB}", "{0.0.1.00000000}.{Ab}"));
    EXPECT_FALSE(sim::equalNoCase("ab", "abc"));
    EXPECT_FALSE(sim::equalNoCase("@", "`"));
    EXPECT_FALSE(sim::equalNoCase("\xC3\x84", "\xC3\xA4"));
}
}
