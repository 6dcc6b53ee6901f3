#include "client/watching/registrations.h"
#include "tests/client/watching/watchtest.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

using namespace sonavit;
using namespace std::chrono_literals;

namespace
{
class SystemGrowth : public support::WatchTest
{
protected:
    /// SONAVIT_GROWTH_ROUNDS sets how often all is done.
    static unsigned rounds()
    {
        const char* const text = std::getenv("SONAVIT_GROWTH_ROUNDS");
        return text == nullptr ? 100U : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
    }

    void doAll(unsigned round)
    {
        const std::string id = audio().defaultEndpoint(Flow::output)->id().text();
        const Subscription heard = audio().subscribe([](const Change&) {});
        simulation().events().setVolume(id, -static_cast<float>(round % 50));
        simulation().events().driverUpdate(id);
        const Result<Watch> watch = audio().watch(audio().snapshot().cardOf(EndpointId(id))->id());
        static_cast<void>(audio().setMute(EndpointId(id), round % 2 == 0));
        static_cast<void>(audio().refresh(round % 10 == 0 ? Depth::everything : Depth::noted));
        audio().poll();
        simulation().journal().clear();
    }
};

TEST_F(SystemGrowth, IsNothingHoweverMuchHappens)
{
    watch("desktop");
    doAll(1);
    static_cast<void>(audio().refresh());
    const sim::Census before = simulation().census();
    const std::size_t kept = watching::keptListeners();

    for (unsigned round = rounds(); round > 0; --round)
        doAll(round);
    static_cast<void>(audio().refresh());

    EXPECT_EQ(before, simulation().census()) << simulation().census() - before;
    EXPECT_EQ(kept, watching::keptListeners());
}
}
