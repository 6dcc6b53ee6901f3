#include "client/watching/registrations.h"
#include "platform/coreaudio.h"
#include "tests/client/watching/watchtest.h"
#include "tests/support/pace.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

using namespace sonavit;
using namespace std::chrono_literals;

namespace
{
/// What the process holds of the operating system.
struct Holdings
{
    unsigned long handles = 0;   ///< elsewhere than on Windows file descriptors
    unsigned long threads = 0;   ///< on Windows 0: handles of threads are handles
    unsigned long kilobytes = 0; ///< of resident memory; on Windows 0
};

#if defined(_WIN32)
Holdings holdings()
{
    DWORD count = 0;
    EXPECT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &count));
    if (count > 0)
        return {count, 0, 0};
    // Wine does not count them, but gives a new handle the lowest number that is free: all below it are in use.
    const HANDLE next = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    EXPECT_NE(nullptr, next);
    CloseHandle(next);
    return {static_cast<unsigned long>(reinterpret_cast<ULONG_PTR>(next) / 4), 0, 0};
}
#else
unsigned long statusValue(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    std::string word;
    unsigned long value = 0;
    while (status >> word)
    {
        if (word == name && status >> value)
            return value;
    }
    ADD_FAILURE() << name;
    return 0;
}

Holdings holdings()
{
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    const auto count = std::distance(begin(descriptors), end(descriptors));
    return {static_cast<unsigned long>(count), statusValue("Threads:"), statusValue("VmRSS:")};
}
#endif

class SystemGrowth : public support::WatchTest
{
protected:
    /// SONAVIT_GROWTH_ROUNDS sets how often all is done.
    static unsigned rounds()
    {
        const char* const text = std::getenv("SONAVIT_GROWTH_ROUNDS");
        return text == nullptr ? support::cases(100, 40) : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
    }

    void doAll(unsigned round)
    {
        const std::string id = audio().defaultEndpoint(Flow::output)->id().text();
        const Subscription heard = audio().subscribe([](const Change&) {});
        simulation().events().setVolume(id, -static_cast<float>(round % 50));
        simulation().events().driverUpdate(id);
        const CardId card = audio().snapshot().cardOf(EndpointId(id))->id();
        const Result<Watch> watch = audio().watch(card);
        EXPECT_TRUE(audio().graph(card));
        EXPECT_TRUE(audio().controls(EndpointId(id)));
        static_cast<void>(audio().setMute(EndpointId(id), round % 2 == 0));
        static_cast<void>(audio().refresh(round % 10 == 0 ? Depth::everything : Depth::noted));
        audio().poll();
        simulation().journal().clear();
    }

    /// Another System, with a thread for its subscribers, from its begin to its end.
    void beginAndEnd(unsigned round)
    {
        {
            System another(options());
            const Subscription heard = another.subscribe([](const Change&) {});
            const std::optional<Endpoint> speakers = another.defaultEndpoint(Flow::output);
            ASSERT_TRUE(speakers);
            EXPECT_TRUE(another.watch(another.snapshot().cardOf(speakers->id())->id()));
            EXPECT_TRUE(another.setMute(speakers->id(), round % 2 == 0));
        }
        simulation().journal().clear();
    }

    void expectNoMoreThan(const Holdings& held)
    {
        const Holdings now = holdings();
        const unsigned few = rounds() / 2; // not even one in two rounds
        EXPECT_LT(0u, held.handles);
        EXPECT_LT(now.handles, held.handles + few);
        EXPECT_LT(now.threads, held.threads + few); // the kernel counts one for a moment after it was joined
        if (!support::isInstrumented)               // a sanitizer keeps what was freed, to find later uses of it
        {
            EXPECT_LT(now.kilobytes, held.kilobytes + 2048);
        }
        RecordProperty("kilobytesBefore", std::to_string(held.kilobytes));
        RecordProperty("kilobytesAfter", std::to_string(now.kilobytes));
        RecordProperty("handlesBefore", std::to_string(held.handles));
        RecordProperty("handlesAfter", std::to_string(now.handles));
    }
};

TEST_F(SystemGrowth, IsNothingHoweverMuchHappens)
{
    watch("desktop");
    for (unsigned round = 20; round > 0; --round) // until the allocator has what it needs
        doAll(round);
    static_cast<void>(audio().refresh());
    const Holdings held = holdings();
    const sim::Census before = simulation().census();
    const std::size_t kept = watching::keptListeners();

    for (unsigned round = rounds(); round > 0; --round)
        doAll(round);
    static_cast<void>(audio().refresh());

    EXPECT_EQ(before, simulation().census()) << simulation().census() - before;
    EXPECT_EQ(kept, watching::keptListeners());
    expectNoMoreThan(held);
}

/// Each of them has a worker and a thread for its subscribers.
TEST_F(SystemGrowth, IsNothingHoweverManySystemsBeginAndEnd)
{
    play("desktop").deliverAtOnce(true);
    for (unsigned round = 20; round > 0; --round)
        beginAndEnd(round);
    const Holdings held = holdings();
    const std::size_t kept = watching::keptListeners();

    for (unsigned round = rounds(); round > 0; --round)
        beginAndEnd(round);

    EXPECT_TRUE(simulation().census().empty()) << simulation().census();
    EXPECT_EQ(kept, watching::keptListeners());
    expectNoMoreThan(held);
}
}
