#include "tests/support/clienttest.h"

#include "client/reading/endpointreading.h"
#include "simulator/machine/file/machinefile.h"

#include <chrono>
#include <utility>

namespace support
{
namespace
{
#if defined(_WIN32)
constexpr bool needsApartment = true; // for the machine's registration
#else
constexpr bool needsApartment = false;
#endif
}

ComOnThisThread::ComOnThisThread() : m_isInitialized(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {}

ComOnThisThread::~ComOnThisThread()
{
    if (m_isInitialized)
        CoUninitialize();
}

void ClientTest::SetUp()
{
    if (needsApartment)
    {
        ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
    }
    m_redirection =
        std::make_unique<sim::Redirection>(reinterpret_cast<const void*>(&sonavit::reading::createEnumerator));
}

void ClientTest::TearDown()
{
    if (m_simulation != nullptr)
    {
        m_simulation->events().waitForClients();
        const sim::Census left = m_simulation->census();
        EXPECT_TRUE(left.empty()) << left;
        EXPECT_EQ(0u, m_simulation->comUnderflows());
        m_simulation.reset();
    }
    m_redirection.reset();
    if (needsApartment)
        CoUninitialize();
}

sim::Simulation& ClientTest::play(const std::string& machineName)
{
    sim::Simulation& simulation = play(sim::findMachine(machineName));
    simulation.latency().clear(); // no test of the client measures time, and many read a machine a thousand times
    return simulation;
}

sim::Simulation& ClientTest::play(sim::Machine machine)
{
    m_simulation = std::make_unique<sim::Simulation>(std::move(machine));
    m_simulation->onViolation([](const sim::Violation& violation) { ADD_FAILURE() << violation; });
    return *m_simulation;
}

sonavit::System::Options ClientTest::options()
{
    sonavit::System::Options options;
    options.patience = std::chrono::minutes(10); // a busy computer must not change what a test sees
    options.onWorkerStart = [this] { static_cast<void>(m_simulation->registerOnThisThread()); };
    return options;
}
}
