#include "COM/comptr.h"

#include "tests/support/librarytest.h"

#include <stdexcept>
#include <thread>
#include <type_traits>

using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
static_assert(std::is_empty_v<COMInitializer>, "it exists for its constructor and destructor");

struct COMInitializerLife : support::LibraryTest
{
    /// Runs @p action on a new thread, where COM is not initialized.
    template<class Action>
    static void onFreshThread(const Action& action)
    {
        std::thread(action).join();
    }
};
}

TEST_F(COMInitializerLife, LogsTheResultOnAFreshThread)
{
    onFreshThread([] { const COMInitializer initializer; });

    EXPECT_THAT(log.texts(LoggerPriority::LOG_DEBUG, "comptr"), ElementsAre("CoInitialize returns 0"));
}

TEST_F(COMInitializerLife, LogsThatComIsAlreadyInitialized)
{
    {
        const COMInitializer initializer; // the fixture was first on this thread
    }

    EXPECT_THAT(log.texts(), ElementsAre("CoInitialize returns 1"));
}

TEST_F(COMInitializerLife, ShowsAFailureAsAVeryLargeNumber)
{
    onFreshThread(
        []
        {
            CoInitializeEx(nullptr, COINIT_MULTITHREADED);
            {
                const COMInitializer initializer;
            }
        });

    EXPECT_THAT(log.texts(LoggerPriority::LOG_DEBUG, "comptr"),
                ElementsAre("CoInitialize returns 18446744071562133766"));
}

TEST_F(COMInitializerLife, OpensItsScopeInTheConstructorOnly)
{
    {
        const COMInitializer initializer;
        EXPECT_THAT(log.left("comptr"), ElementsAre("COMInitializer::COMInitializer"));
        log.clear();
    }

    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(COMInitializerLife, LogsNothingAtAThresholdOfOne)
{
    log.setThreshold("comptr", LoggerPriority::LOG_DEBUG);

    onFreshThread([] { const COMInitializer initializer; });

    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(COMInitializerLife, LogsNothingAtAMinimumOfTwo)
{
    qor::LogFactory::setPriority(LoggerPriority::LOG_INFO);

    onFreshThread([] { const COMInitializer initializer; });

    EXPECT_THAT(log.records(), IsEmpty());
}

#if !defined(_WIN32) // the system's own COM keeps no journal
TEST_F(COMInitializerLife, InitializesInTheConstructorAndUninitializesInTheDestructor)
{
    sim::Simulation& machine = run({});
    {
        const COMInitializer initializer;
        EXPECT_THAT(machine.journal().operations(), ElementsAre("CoInitialize"));
    }

    EXPECT_THAT(machine.journal().operations(), ElementsAre("CoInitialize", "CoUninitialize"));
}

TEST_F(COMInitializerLife, UninitializesEvenAfterAFailure)
{
    sim::Simulation& machine = run({});
    const sim::PlannedFault fault = machine.faults().fail("CoInitialize", E_OUTOFMEMORY);

    onFreshThread([] { const COMInitializer initializer; });

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(machine.journal().operations(), ElementsAre("CoInitialize", "CoUninitialize"));
    EXPECT_EQ(1u, machine.comUnderflows());
}

/// A sink that throws for the message about CoInitialize.
void refuseTheResult(const qor::LogRecord& record)
{
    if (record.kind == qor::LogRecord::Kind::message)
        throw std::runtime_error("the sink is full");
}

TEST_F(COMInitializerLife, UninitializesIfTheMessageAboutASuccessThrows)
{
    sim::Simulation& machine = run({});
    qor::LogFactory::setSink(refuseTheResult);

    onFreshThread([] { EXPECT_THROW(COMInitializer(), std::runtime_error); });

    EXPECT_THAT(machine.journal().operations(), ElementsAre("CoInitialize", "CoUninitialize"));
    EXPECT_EQ(0u, machine.comUnderflows());
}

TEST_F(COMInitializerLife, LeavesTheCountOfTheThreadIfTheMessageAboutAFailureThrows)
{
    sim::Simulation& machine = run({});
    const sim::PlannedFault fault = machine.faults().fail("CoInitialize", E_OUTOFMEMORY);
    qor::LogFactory::setSink(refuseTheResult);

    onFreshThread([] { EXPECT_THROW(COMInitializer(), std::runtime_error); });

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(machine.journal().operations(), ElementsAre("CoInitialize"));
    EXPECT_EQ(0u, machine.comUnderflows());
}

TEST_F(COMInitializerLife, UninitializesInACopyThatHasNotInitialized)
{
    sim::Simulation& machine = run({});

    onFreshThread(
        []
        {
            const COMInitializer initializer;
            const COMInitializer copy(initializer);
        });

    EXPECT_THAT(machine.journal().operations(), ElementsAre("CoInitialize", "CoUninitialize", "CoUninitialize"));
    EXPECT_EQ(1u, machine.comUnderflows());
}
#endif
