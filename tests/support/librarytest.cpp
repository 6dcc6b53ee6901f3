#include "tests/support/librarytest.h"

#include "libSonavit/endpointdeviceenumerator.h"

namespace support
{
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
    return *m_simulation;
}

void LibraryTest::endModule()
{
    libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // deletes the enumerator
}
}
