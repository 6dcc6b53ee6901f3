#include "tools/sonavit/ownernames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <array>
#include <string>

TEST(ProgramOwnerNames, AreThoseOfTheAccountAndOfTheComputer)
{
    const passwd* const account = getpwuid(getuid());
    if (account == nullptr)
        GTEST_SKIP() << "the system has no account for this process";
    const std::string person = account->pw_gecos == nullptr ? "" : account->pw_gecos;
    std::array<char, 256> computer{};
    ASSERT_EQ(0, gethostname(computer.data(), computer.size() - 1));

    EXPECT_THAT(sonavit::program::ownerNames(),
                testing::ElementsAre(account->pw_name, person.substr(0, person.find(',')), computer.data()));
}
