#include "tests/hostile/client/hostileclienttest.h"

#include <utility>

namespace hostile
{
namespace
{
/// More calls than anything costs on one of these small machines, so that it shows if a count is believed.
constexpr std::size_t mostCallsOfLayer = 1000000;
}

void HostileClientTest::TearDown()
{
    if (m_audio != nullptr)
        end();
    ClientTest::TearDown();
}

sonavit::System& HostileClientTest::begin(const Platform& platform)
{
    begin(machineOf(platform));
    if (platform.lie)
        m_references = platform.lie(simulation());
    return *m_audio;
}

sonavit::System& HostileClientTest::begin(sim::Machine machine)
{
    play(std::move(machine)).deliverAtOnce(true);
    sonavit::System::Options polled = options();
    polled.delivery = sonavit::Delivery::poll;
    m_audio = std::make_unique<sonavit::System>(polled);
    return *m_audio;
}

void HostileClientTest::beHonest()
{
    simulation().faults().clear();
    m_references.clear();
}

sonavit::Result<sonavit::Snapshot> HostileClientTest::newSnapshot()
{
    sonavit::System other(options());
    return other.refresh(sonavit::Depth::everything);
}

void HostileClientTest::end()
{
    m_audio.reset();
    beHonest();
    simulation().events().waitForClients();
    EXPECT_EQ(sim::Census(), simulation().census());
    EXPECT_LT(simulation().journal().size(), mostCallsOfLayer);
}
}
