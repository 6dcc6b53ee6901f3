#include "client/worker/worker.h"
#include "tests/support/clienttest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

using namespace sonavit;
using namespace testing;

namespace
{
/// Threads of every kind use Systems.
class SystemCallers : public support::ClientTest
{
protected:
    /// What a program does with a System; the number of endpoints that it has seen.
    std::size_t useSystem()
    {
        System audio(options());
        const Snapshot snapshot = audio.snapshot();
        const Subscription heard = audio.subscribe([](const Change&) {});
        const std::optional<Endpoint> speakers = snapshot.defaultEndpoint(Flow::output);
        if (!speakers)
            return 0;
        EXPECT_TRUE(audio.setVolume(speakers->id(), Percent(42)));
        EXPECT_TRUE(audio.controls(speakers->id()));
        EXPECT_TRUE(audio.watch(snapshot.cardOf(speakers->id())->id()));
        EXPECT_TRUE(audio.refresh());
        return snapshot.endpoints().size();
    }

    static void onThread(const std::function<void()>& work)
    {
        std::thread thread(work);
        thread.join();
    }
};

TEST_F(SystemCallers, MayBeInASingleThreadedApartment)
{
    play("desktop");
    const std::size_t all = System(options()).snapshot().endpoints().size();

    onThread(
        [&]
        {
            ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
            EXPECT_EQ(all, useSystem());
            CoUninitialize();
        });
}

TEST_F(SystemCallers, MayBeInTheMultithreadedApartment)
{
    play("desktop");
    const std::size_t all = System(options()).snapshot().endpoints().size();

    onThread(
        [&]
        {
            const support::ComOnThisThread com;
            EXPECT_EQ(all, useSystem());
        });
}

TEST_F(SystemCallers, NeedNoCom)
{
    play("desktop");
    const std::size_t all = System(options()).snapshot().endpoints().size();

    onThread([&] { EXPECT_EQ(all, useSystem()); });

    EXPECT_THAT(simulation().violations(), IsEmpty());
}

TEST_F(SystemCallers, MayBeManyWithASystemEachAtOnce)
{
    play("desktop");
    const std::size_t all = System(options()).snapshot().endpoints().size();
    std::vector<std::thread> threads;
    std::atomic<unsigned> complete{0};

    for (int number = 0; number < 8; ++number)
    {
        threads.emplace_back(
            [&]
            {
                for (int turn = 0; turn < 5; ++turn)
                    complete += useSystem() == all ? 1 : 0;
            });
    }
    for (std::thread& thread : threads)
        thread.join();

    EXPECT_EQ(40u, complete.load());
    EXPECT_EQ(nullptr, worker::Worker::current());
    const sim::JournalEntries calls = simulation().journal().entries();
    EXPECT_EQ(calls.of("CoInitializeEx").size(), calls.of("CoUninitialize").size());
    EXPECT_TRUE(simulation().census().empty()) << simulation().census();
}

/// Windows opens stores for writing to administrators alone.
TEST_F(SystemCallers, NeedAnAdministratorForNoReadingAndNoLevel)
{
    play("studio");
    const Snapshot ofAdministrator = System(options()).snapshot();
    simulation().setAccount(sim::Account::ordinary);
    System audio(options());

    EXPECT_EQ(ofAdministrator, audio.snapshot()) << difference(ofAdministrator, audio.snapshot());
    for (const Endpoint& endpoint : audio.snapshot().endpoints())
    {
        EXPECT_TRUE(audio.controls(endpoint.id()));
        if (endpoint.volume())
        {
            EXPECT_TRUE(audio.setMute(endpoint.id(), true)) << endpoint;
        }
    }
    EXPECT_TRUE(audio.graph());
    EXPECT_TRUE(audio.refresh(Depth::everything));
    const Result<Settings> settings = audio.settings();
    ASSERT_TRUE(settings);
    EXPECT_TRUE(audio.restore(*settings));
    for (const sim::JournalEntry& entry : simulation().journal().entries().failed())
        EXPECT_NE(E_ACCESSDENIED, entry.result) << entry.line();
}
}
