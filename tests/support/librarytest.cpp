#include "tests/support/librarytest.h"

#include "libSonavit/endpointdeviceenumerator.h"
#include "simulator/machine/operations.h"

#include <set>

namespace support
{
namespace
{
/// What the journal writes is what a machine file can name in its faults, except the machine's own calls of its
/// clients: IMMNotificationClient::OnDeviceAdded and the like.
void expectKnownOperations(const std::vector<std::string>& operations)
{
    for (const std::string& operation : std::set<std::string>(operations.begin(), operations.end()))
    {
        const bool isCallOfClient = operation.find("::On") != std::string::npos;
        EXPECT_NE(isCallOfClient, sim::isOperation(operation)) << operation;
    }
}
}

void LibraryTest::SetUp()
{
    ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
}

void LibraryTest::TearDown()
{
    endModule();
    if (m_simulation != nullptr)
    {
        m_simulation->events().waitForClients();
        expectKnownOperations(m_simulation->journal().operations());
        const sim::Census left = m_simulation->census();
        EXPECT_EQ(kept.partsLists, left.references("IPartsList")) << left;
        EXPECT_EQ(kept.partsLists, left.references()) << left;
        EXPECT_EQ(kept.directSoundTexts + kept.defaultDeviceIds, left.taskBlocks()) << left;
        EXPECT_TRUE(left.clients.empty()) << left;
        m_simulation.reset();
    }
    CoUninitialize();
}

sim::Simulation& LibraryTest::run(sim::Machine machine)
{
    m_simulation = std::make_unique<sim::Simulation>(std::move(machine));
    m_simulation->deliverAtOnce(true);
    m_simulation->onViolation([](const sim::Violation& violation) { ADD_FAILURE() << violation; });
    return *m_simulation;
}

void LibraryTest::endModule()
{
    libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // deletes the enumerator
}
}
