#include "sonavit/diagnosis.h"

#include "tests/support/clienttest.h"

#include <chrono>
#include <future>
#include <vector>

namespace
{
using namespace std::chrono_literals;

using Diagnosis = support::ClientTest;

TEST_F(Diagnosis, IsNoAnswerIfTheSnapshotIsLate)
{
    play("virtual");
    std::promise<void> goOn;
    const std::shared_future<void> released = goOn.get_future().share();
    simulation().faults().run("IMMDeviceEnumerator::RegisterEndpointNotificationCallback",
                              [released] { released.wait(); });
    sonavit::System::Options given = options();
    given.patience = 300ms; // for the walk, too, which takes some milliseconds
    sonavit::System system(given);

    const sonavit::Result<std::vector<sonavit::Finding>> findings = sonavit::diagnose(system);
    goOn.set_value();

    ASSERT_FALSE(findings);
    EXPECT_EQ(sonavit::Problem::Kind::noAnswer, findings.problem().kind());
}

TEST_F(Diagnosis, OfAnEndpointThatDoesNotExistNamesItself)
{
    play("virtual");
    sonavit::System system(options());

    const sonavit::Result<std::vector<sonavit::Finding>> findings =
        sonavit::diagnose(system, sonavit::EndpointId("nowhere"));

    ASSERT_FALSE(findings);
    EXPECT_EQ(sonavit::Problem(sonavit::Problem::Kind::notThere, "diagnose", "nowhere", "there is no endpoint nowhere"),
              findings.problem());
}

TEST_F(Diagnosis, OfASoundEndpointFindsNothing)
{
    play("virtual");
    sonavit::System system(options());

    const sonavit::Result<std::vector<sonavit::Finding>> findings =
        sonavit::diagnose(system, system.snapshot().endpoints().at(0).id());

    ASSERT_TRUE(findings);
    EXPECT_TRUE(findings->empty());
}

TEST(FindingKind, HasAKeyForPrograms)
{
    EXPECT_STREQ("failure", keyOf(sonavit::Finding::Kind::failure));
    EXPECT_STREQ("data", keyOf(sonavit::Finding::Kind::data));
    EXPECT_STREQ("oddity", keyOf(sonavit::Finding::Kind::oddity));
    EXPECT_STREQ("unknown", keyOf(static_cast<sonavit::Finding::Kind>(-1)));
}
}
