#include "tests/hostile/library/hostilelibrarytest.h"

namespace hostile
{
namespace
{
/// More calls than anything costs on one of these machines, so that it shows if a number without limit is believed.
constexpr std::size_t mostCallsOfModel = 5000000;

long answersOf(const sim::Journal& journal, const char* operation)
{
    const sim::JournalEntries calls = journal.of(operation);
    return static_cast<long>(calls.size() - calls.failed().size());
}

/// The lists of neighbours that the platform has handed out: the object model releases none of them.
long listsOf(const sim::Journal& journal)
{
    return answersOf(journal, "IPart::EnumPartsIncoming") + answersOf(journal, "IPart::EnumPartsOutgoing");
}
}

void HostileLibraryTest::TearDown()
{
    if (m_isRunning)
        end();
    LibraryTest::TearDown();
}

sim::Simulation& HostileLibraryTest::begin(const Platform& platform)
{
    m_simulation.reset(); // on Windows the last one to begin or to end decides who answers
    run(machineOf(platform));
    m_isRunning = true;
    if (platform.lie)
        m_references = platform.lie(simulation());
    simulation().journal().clear(); // of what a lie has asked for
    return simulation();
}

void HostileLibraryTest::beHonest()
{
    simulation().faults().clear();
    m_references.clear();
}

void HostileLibraryTest::end()
{
    m_isRunning = false;
    beHonest();
    endModule();
    simulation().events().waitForClients();
    kept.partsLists = listsOf(simulation().journal());
    const sim::Census left = simulation().census();
    EXPECT_EQ(kept.partsLists, left.references("IPartsList")) << left;
    EXPECT_EQ(kept.partsLists, left.references()) << left;
    kept.defaultDeviceIds = left.taskBlocks();
    EXPECT_LE(kept.defaultDeviceIds, answersOf(simulation().journal(), "IMMDeviceEnumerator::GetDefaultAudioEndpoint"))
        << left;
    for (const auto& block : left.taskMemory)
        EXPECT_EQ(0u, block.first.rfind("IMMDevice::GetId", 0)) << left;
    EXPECT_TRUE(left.clients.empty()) << left;
    EXPECT_LT(simulation().journal().size(), mostCallsOfModel);
    log.clear();
}
}
