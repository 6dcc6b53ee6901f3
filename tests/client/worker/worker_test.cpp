#include "client/worker/worker.h"

#include "tests/client/watching/watchtest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <vector>

using namespace sonavit;
using namespace testing;
using namespace std::chrono_literals;

namespace
{
class WorkerOfSystems : public support::ClientTest
{
};

TEST_F(WorkerOfSystems, StartsWithTheFirstQuestion)
{
    play("desktop");

    const System audio(options());

    EXPECT_EQ(nullptr, worker::Worker::current());
    EXPECT_EQ(0u, simulation().journal().size());
}

TEST_F(WorkerOfSystems, IsOneThreadInTheMultithreadedApartmentForAll)
{
    play("desktop");
    {
        const System first(options());
        const System second(options());
        static_cast<void>(first.snapshot());
        static_cast<void>(second.snapshot());
        static_cast<void>(first.graph());
    }

    const sim::JournalEntries calls = simulation().journal().entries();
    EXPECT_EQ(calls.size(), calls.onThread(calls[0].thread).size());
    EXPECT_EQ("CoInitializeEx", calls[0].operation);
    EXPECT_THAT(calls[0].arguments, Contains("0"));
    EXPECT_EQ(1u, calls.of("CoInitializeEx").size());
    EXPECT_EQ(1u, calls.of("CoUninitialize").size());
    EXPECT_EQ("CoUninitialize", calls[calls.size() - 1].operation);
}

TEST_F(WorkerOfSystems, EndsWithTheLastOfThem)
{
    play("desktop");
    auto first = std::make_unique<System>(options());
    auto second = std::make_unique<System>(options());
    static_cast<void>(first->snapshot());
    static_cast<void>(second->snapshot());

    first.reset();
    EXPECT_NE(nullptr, worker::Worker::current());
    EXPECT_TRUE(second->refresh(Depth::everything));
    second.reset();

    EXPECT_EQ(nullptr, worker::Worker::current());
}

TEST_F(WorkerOfSystems, LeavesNothingAfterAHundredOfThemInTurn)
{
    play("desktop");

    for (int count = 0; count < 100; ++count)
    {
        System audio(options());
        const Subscription heard = audio.subscribe([](const Change&) {});
        ASSERT_FALSE(audio.snapshot().cards().empty());
    }

    EXPECT_TRUE(simulation().census().empty()) << simulation().census();
    EXPECT_EQ(100u, simulation().journal().count("CoUninitialize"));
}

TEST_F(WorkerOfSystems, TellsWhyItCannotEnterItsApartment)
{
    play("desktop");
    simulation().faults().fail("CoInitializeEx", E_OUTOFMEMORY);

    const System audio(options());
    const Snapshot snapshot = audio.snapshot();

    EXPECT_THAT(snapshot.cards(), IsEmpty());
    ASSERT_EQ(1u, snapshot.problems().size());
    EXPECT_EQ("CoInitializeEx", snapshot.problems()[0].operation());
    EXPECT_EQ(E_OUTOFMEMORY, snapshot.problems()[0].code());
}

TEST_F(WorkerOfSystems, RunsTheProgramsFunctionBeforeItsFirstCallOfCoreAudio)
{
    play("desktop");
    System::Options given = options();
    std::vector<std::string> before;
    given.onWorkerStart = [&, former = given.onWorkerStart]
    {
        former();
        before = simulation().journal().operations();
    };

    const System audio(given);
    static_cast<void>(audio.snapshot());

    EXPECT_THAT(before, ElementsAre("CoInitializeEx"));
}

TEST_F(WorkerOfSystems, AnswersQuestionsOnItselfWithoutWaiting)
{
    play("desktop");
    System::Options given = options();
    std::unique_ptr<System> audio;
    std::vector<Problem> problems;
    given.onWorkerStart = [&, former = given.onWorkerStart]
    {
        former();
        problems = audio->snapshot().problems();
        problems.push_back(audio->refresh().problem());
        problems.push_back(audio->graph().problem());
    };
    audio = std::make_unique<System>(given);

    static_cast<void>(audio->refresh());

    ASSERT_EQ(3u, problems.size());
    for (const Problem& problem : problems)
        EXPECT_EQ(Problem::Kind::wouldWait, problem.kind());
}

TEST_F(WorkerOfSystems, TurnsItsExceptionsIntoProblems)
{
    play("desktop");
    System audio(options());
    static_cast<void>(audio.snapshot());
    simulation().faults().raise("IMMDeviceEnumerator::EnumAudioEndpoints").at(1);

    const Result<Snapshot> failed = audio.refresh(Depth::everything);

    ASSERT_FALSE(failed);
    EXPECT_EQ(Problem::Kind::internal, failed.problem().kind());
    EXPECT_TRUE(audio.refresh(Depth::everything));
}

/// A driver that hangs in one call until the test lets it go.
class HangingDriver : public support::ClientTest
{
protected:
    void hangIn(const char* operation)
    {
        simulation().faults().run(operation,
                                  [this]
                                  {
                                      if (m_hasHung.exchange(true))
                                          return;
                                      m_hangs.set_value();
                                      m_goOn.get_future().wait();
                                  });
    }

    System::Options impatient()
    {
        System::Options given = options();
        given.patience = 20ms;
        return given;
    }

    void letGo()
    {
        m_goOn.set_value();
        // The next worker begins when that one has ended.
        const System next(options());
        EXPECT_FALSE(next.snapshot().cards().empty());
    }

    std::promise<void> m_hangs;
    std::promise<void> m_goOn;
    std::atomic<bool> m_hasHung{false};
};

TEST_F(HangingDriver, DoesNotHoldUpTheFirstSnapshot)
{
    play("desktop");
    hangIn("IMMDevice::GetState");
    System audio(impatient());

    const Snapshot snapshot = audio.snapshot();
    const Result<Snapshot> refreshed = audio.refresh();

    EXPECT_THAT(snapshot.cards(), IsEmpty());
    ASSERT_EQ(1u, snapshot.problems().size());
    EXPECT_EQ(Problem::Kind::noAnswer, snapshot.problems()[0].kind());
    ASSERT_FALSE(refreshed);
    EXPECT_EQ(Problem::Kind::noAnswer, refreshed.problem().kind());
    m_goOn.set_value();
    while (audio.snapshot().cards().empty())
        std::this_thread::yield();
}

TEST_F(HangingDriver, DoesNotHoldUpSnapshotsAndSubscriptions)
{
    play("desktop");
    System audio(impatient());
    const Snapshot before = audio.snapshot();
    hangIn("IMMDevice::GetState");
    static_cast<void>(audio.refresh(Depth::everything));
    m_hangs.get_future().wait();

    Subscription heard = audio.subscribe([](const Change&) {});

    EXPECT_EQ(before, audio.snapshot());
    EXPECT_EQ(before, heard.initial());
    heard.stop();
    m_goOn.set_value();
}

TEST_F(HangingDriver, DoesNotHoldUpTheEndOfTheSystem)
{
    play("desktop");
    {
        System audio(impatient());
        static_cast<void>(audio.snapshot());
        hangIn("IMMDevice::GetState");
        EXPECT_FALSE(audio.refresh(Depth::everything));
        m_hangs.get_future().wait();
    }

    EXPECT_FALSE(simulation().census().empty());
    letGo();
    while (!simulation().census().empty())
        std::this_thread::yield();
}

TEST_F(HangingDriver, GetsNoReadingThatNobodyWaitsForAnyMore)
{
    play("desktop");
    System audio(impatient());
    static_cast<void>(audio.snapshot());
    hangIn("IMMDevice::GetState");
    EXPECT_FALSE(audio.refresh(Depth::everything));
    m_hangs.get_future().wait();
    EXPECT_FALSE(audio.graph());
    const auto endpoint = audio.snapshot().endpoints()[0].id();
    const auto walks = [this] { return simulation().journal().count("IDeviceTopology::GetConnectorCount"); };
    const std::size_t before = walks();

    m_goOn.set_value();
    while (!audio.refresh())
        std::this_thread::yield();

    EXPECT_EQ(before, walks());
}

TEST_F(HangingDriver, StillGetsAChangeThatNobodyWaitsForAnyMore)
{
    play("desktop");
    System audio(impatient());
    const EndpointId id = audio.defaultEndpoint(Flow::output)->id();
    hangIn("IMMDevice::GetState");
    EXPECT_FALSE(audio.refresh(Depth::everything));
    m_hangs.get_future().wait();
    const Result<Volume> changed = audio.setVolume(id, Decibels(-33));
    ASSERT_FALSE(changed);
    EXPECT_EQ(Problem::Kind::noAnswer, changed.problem().kind());

    m_goOn.set_value();

    while (audio.endpoint(id)->volume()->master.decibels != Decibels(-33))
        std::this_thread::yield();
}

TEST_F(HangingDriver, IsNotWaitedForWithoutPatience)
{
    play("desktop");
    System::Options given = options();
    given.patience = 0ms;
    {
        System audio(given);
        EXPECT_THAT(audio.snapshot().cards(), IsEmpty());
        while (audio.snapshot().cards().empty())
            std::this_thread::yield();
    }
    letGo();
}
}
