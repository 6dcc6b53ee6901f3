#include "sonavit/diagnosis.h"
#include "tests/support/clienttest.h"

#include <string>
#include <vector>

namespace
{
/// A machine that ships and what is found there, by rule.
struct Diagnosed
{
    const char* machine;
    std::vector<std::string> rules;
};

class DiagnosingShippedMachine : public support::ClientTest, public testing::WithParamInterface<Diagnosed>
{
};

TEST_P(DiagnosingShippedMachine, FindsWhatIsTrueAndUseful)
{
    play(GetParam().machine);
    sonavit::System system(options());

    const sonavit::Result<std::vector<sonavit::Finding>> findings = sonavit::diagnose(system);

    ASSERT_TRUE(findings);
    std::vector<std::string> rules;
    for (const sonavit::Finding& finding : *findings)
    {
        rules.push_back(finding.rule);
        EXPECT_FALSE(finding.cause.empty()) << finding;
    }
    EXPECT_EQ(GetParam().rules, rules);
}

TEST_P(DiagnosingShippedMachine, FindsTheSameForEachEndpointAlone)
{
    play(GetParam().machine);
    sonavit::System system(options());
    const sonavit::Result<std::vector<sonavit::Finding>> all = sonavit::diagnose(system);

    ASSERT_TRUE(all);
    for (const sonavit::Finding& finding : *all)
    {
        if (!finding.endpoint)
            continue;
        const sonavit::Result<std::vector<sonavit::Finding>> own = sonavit::diagnose(system, *finding.endpoint);
        ASSERT_TRUE(own);
        EXPECT_THAT(*own, testing::Contains(finding));
    }
}

INSTANTIATE_TEST_SUITE_P(Ships, DiagnosingShippedMachine,
                         testing::Values(Diagnosed{"desktop", {}}, Diagnosed{"studio", {"volume-missing"}},
                                         Diagnosed{"laptop", {}}, Diagnosed{"laptop-user", {"ordinary-account"}},
                                         Diagnosed{"crowded", {}}, Diagnosed{"published", {}},
                                         Diagnosed{"bluetooth", {}}, Diagnosed{"waking", {}}, Diagnosed{"virtual", {}},
                                         Diagnosed{"remote-desktop", {}}, Diagnosed{"empty", {}}));
}
