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
}
