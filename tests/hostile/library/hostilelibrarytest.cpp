#include "tests/hostile/library/hostilelibrarytest.h"

namespace hostile
{
namespace
{
/// More calls than anything costs on one of these machines, so that it shows if a number without limit is believed.
constexpr std::size_t mostCallsOfModel = 5000000;

/// The lists of neighbours that the platform has handed out: the object model releases none of them.
long listsOf(const sim::Journal& journal)
{
    long lists = 0;
    for (const char* const operation : {"IPart::EnumPartsIncoming", "IPart::EnumPartsOutgoing"})
    {
        const sim::JournalEntries calls = journal.of(operation);
        lists += static_cast<long>(calls.size() - calls.failed().size());
    }
    return lists;
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
    EXPECT_EQ(0, left.taskBlocks()) << left;
    EXPECT_TRUE(left.clients.empty()) << left;
    EXPECT_LT(simulation().journal().size(), mostCallsOfModel);
    log.clear();
}
}
