#include "tests/simulator/bench.h"

#include <chrono>
#include <ctime>

namespace
{
using bench::Held;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

using LatencyPlanOfAThread = bench::SimulationTest;

/// The time for which a processor has worked for this thread.
nanoseconds worked()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

TEST_F(LatencyPlanOfAThread, LeavesTheProcessorToOthersDuringALongCall)
{
    const Held<IMMDevice> speaker = device(speakerId);
    simulation.latency().set("IMMDevice::GetState", milliseconds(100));
    const nanoseconds before = worked();
    DWORD state = 0;

    EXPECT_EQ(S_OK, speaker->GetState(&state));

    EXPECT_LT(worked() - before, milliseconds(50));
    simulation.latency().clear();
}
}
