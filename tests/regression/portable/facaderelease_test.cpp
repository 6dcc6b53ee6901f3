// A Release that threw at the end of the facade, or at the end of the cards that its constructor had copied, left COM
// initialised. On Windows COM is the system's own.
#include "libSonavit/sysinfohelper.h"

#include "simulator/portable/comapartment.h"
#include "tests/libSonavit/soundcard/supportvolumeresolution.h"

namespace
{
struct ThrowingReleaseOfTheFacade : support::VolumeResolution
{
    void SetUp() override
    {
        VolumeResolution::SetUp();
        CoUninitialize(); // of the fixture, whose apartment has one thread
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        graph.endpoint("out", 2);
        graph.adapter("board", 3);
        graph.join("out/1", "board/1").join("out/2", "board/2").path("board/1", "board/3");
        start();
        qor::LogFactory::setPriority(qor::LoggerPriority::LOG_FATAL);
    }

    void TearDown() override
    {
        CoUninitialize();
        CoInitialize(nullptr);
        VolumeResolution::TearDown();
    }
};
}

TEST_F(ThrowingReleaseOfTheFacade, LeavesCOMAsItWas)
{
    { // makes the shared enumerator, which initialises COM once more
        const libSonavit::SysInfoHelper helper;
    }
    const unsigned int depth = sim::comapartment::depth();
    unsigned int thrown = 0;
    for (bool hasThrown = true; hasThrown;)
    {
        hasThrown = false;
        const sim::PlannedFault fault = simulation().faults().raise("Release").at(thrown + 1);
        try
        {
            const libSonavit::SysInfoHelper helper;
        }
        catch (const sim::InjectedException&)
        {
            hasThrown = true;
            ++thrown;
        }
        simulation().faults().clear();
        ASSERT_EQ(depth, sim::comapartment::depth()) << "after a throw at Release number " << thrown;
    }
    EXPECT_GT(thrown, 10u);
}
