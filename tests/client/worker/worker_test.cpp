#include "client/worker/worker.h"

#include "tests/support/clienttest.h"
#include "tests/support/manualclock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
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

TEST_F(WorkerOfSystems, IsOneThreadForAll)
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
    EXPECT_NE(std::this_thread::get_id(), calls[0].thread);
    EXPECT_EQ(2u, calls.of("CoCreateInstance").size());
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
    EXPECT_EQ(100u, simulation().journal().count("CoCreateInstance"));
}

TEST_F(WorkerOfSystems, RunsTheProgramsFunctionBeforeItsFirstCallOfCoreAudio)
{
    play("desktop");
    System::Options given = options();
    std::size_t before = 1;
    given.onWorkerStart = [&, former = given.onWorkerStart]
    {
        former();
        before = simulation().journal().entries().without("CoInitializeEx").size();
    };

    const System audio(given);
    static_cast<void>(audio.snapshot());

    EXPECT_EQ(0u, before);
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

/// A program may make and end Systems for days while another one of them keeps the worker running.
TEST_F(WorkerOfSystems, KeepsNoMemberThatHasLeft)
{
    struct Idle : worker::Member
    {
        worker::Clock::Time step(worker::Clock::Time) noexcept override { return worker::Clock::never; }
    };
    play("desktop");
    System audio(options());
    static_cast<void>(audio.snapshot());
    const std::shared_ptr<worker::Worker> current = worker::Worker::current();
    const auto former = std::make_shared<Idle>();
    const auto later = std::make_shared<Idle>();

    current->post(worker::Urgency::change,
                  [&]
                  {
                      current->add(former);
                      current->add(later);
                      current->remove(*former);
                  });
    current->settle();

    EXPECT_EQ(1, former.use_count());
    EXPECT_EQ(2, later.use_count());
    current->post(worker::Urgency::change, [&] { current->remove(*later); });
    current->settle();
    EXPECT_EQ(1, later.use_count());
}

/// What a program asks for in a function that the worker calls.
TEST_F(WorkerOfSystems, NamesEachOperationThatWouldWaitForItself)
{
    play("desktop");
    System::Options given = options();
    std::unique_ptr<System> audio;
    const EndpointId id("endpoint");
    const CardId card("card");
    const ControlId control("control");
    std::vector<Problem> problems;
    given.onWorkerStart = [&, former = given.onWorkerStart]
    {
        former();
        problems = {audio->setVolume(id, Percent(10)).problem(),
                    audio->setMute(id, true).problem(),
                    audio->toggleMute(id).problem(),
                    audio->setControl(id, "Volume", Percent(10)).problem(),
                    audio->setControl(id, control, Percent(10)).problem(),
                    audio->setControlMute(id, "Volume", true).problem(),
                    audio->setControlMute(id, control, true).problem(),
                    audio->controls(id).problem(),
                    audio->select(card, "Source", "Line").problem(),
                    audio->selectors(card).problem(),
                    audio->graph(card).problem(),
                    audio->watch(card).problem(),
                    audio->select("Source", "Line").problem(),
                    audio->refresh().problem(),
                    audio->graph().problem(),
                    audio->settings().problem(),
                    audio->restore(Settings()).problem()};
    };
    audio = std::make_unique<System>(given);

    static_cast<void>(audio->refresh());

    std::vector<std::string> told;
    for (const Problem& problem : problems)
    {
        EXPECT_EQ(Problem::Kind::wouldWait, problem.kind());
        told.push_back(problem.operation() + " " + problem.object());
    }
    EXPECT_THAT(told, ElementsAre("setVolume endpoint", "setMute endpoint", "toggleMute endpoint",
                                  "setControl endpoint", "setControl endpoint", "setControlMute endpoint",
                                  "setControlMute endpoint", "controls endpoint", "select card", "selectors card",
                                  "graph ", "watch card", "select ", "refresh ", "graph ", "settings ", "restore "));
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

/// A driver that hangs in one call until the test lets it go, on a clock that stands still.
class HangingDriver : public support::ClientTest
{
protected:
    void SetUp() override
    {
        ClientTest::SetUp();
        worker::replaceClock(clock);
    }

    void TearDown() override
    {
        worker::replaceClock(nullptr);
        ClientTest::TearDown();
    }

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

    /// Makes a call that waits, and lets its patience pass.
    template<class Call>
    auto outlast(const Call& call)
    {
        auto answer = std::async(std::launch::async, call);
        while (answer.wait_for(1ms) != std::future_status::ready)
            clock->advance(10s);
        return answer.get();
    }

    /// Lets the worker hang in a reading of everything for which no caller waits any more.
    void hang(System& audio)
    {
        hangIn("IMMDevice::GetState");
        std::future<void> hangs = m_hangs.get_future();
        auto refreshed = std::async(std::launch::async, [&] { return audio.refresh(Depth::everything); });
        hangs.wait();
        while (refreshed.wait_for(1ms) != std::future_status::ready)
            clock->advance(10s);
        const Result<Snapshot> snapshot = refreshed.get();
        ASSERT_FALSE(snapshot);
        EXPECT_EQ(Problem::Kind::noAnswer, snapshot.problem().kind());
    }

    std::shared_ptr<support::ManualClock> clock = std::make_shared<support::ManualClock>();
    std::promise<void> m_hangs;
    std::promise<void> m_goOn;
    std::atomic<bool> m_hasHung{false};
};

TEST_F(HangingDriver, DoesNotHoldUpTheFirstSnapshot)
{
    play("desktop");
    hangIn("IMMDevice::GetState");
    System audio(options());

    const Snapshot snapshot = outlast([&] { return audio.snapshot(); });
    const Result<Snapshot> refreshed = outlast([&] { return audio.refresh(); });

    EXPECT_THAT(snapshot.cards(), IsEmpty());
    ASSERT_EQ(1u, snapshot.problems().size());
    EXPECT_EQ(Problem::Kind::noAnswer, snapshot.problems()[0].kind());
    ASSERT_FALSE(refreshed);
    EXPECT_EQ(Problem::Kind::noAnswer, refreshed.problem().kind());
    EXPECT_THAT(audio.snapshot().cards(), IsEmpty()); // without another wait
    m_goOn.set_value();
    EXPECT_TRUE(audio.refresh());
    EXPECT_THAT(audio.snapshot().cards(), Not(IsEmpty()));
}

TEST_F(HangingDriver, DoesNotHoldUpSnapshotsAndSubscriptions)
{
    play("desktop");
    System audio(options());
    const Snapshot before = audio.snapshot();
    hang(audio);

    Subscription heard = audio.subscribe([](const Change&) {});

    EXPECT_EQ(before, audio.snapshot());
    EXPECT_EQ(before, heard.initial());
    heard.stop();
    m_goOn.set_value();
}

TEST_F(HangingDriver, DoesNotHoldUpTheEndOfTheSystem)
{
    play("desktop");
    auto audio = std::make_unique<System>(options());
    static_cast<void>(audio->snapshot());
    hang(*audio);
    const std::shared_ptr<worker::Worker> former = worker::Worker::current();

    outlast(
        [&]
        {
            audio.reset();
            return true;
        });

    EXPECT_EQ(nullptr, worker::Worker::current());
    EXPECT_FALSE(simulation().census().empty());
    m_goOn.set_value();
    former->settle(); // it ends by itself
    EXPECT_TRUE(simulation().census().empty()) << simulation().census();
}

TEST_F(HangingDriver, DoesNotHoldUpASystemThatBeginsAfterTheEndOfTheOneThatWaits)
{
    play("desktop");
    auto audio = std::make_unique<System>(options());
    const Snapshot whole = audio->snapshot();
    hang(*audio);
    const std::shared_ptr<worker::Worker> former = worker::Worker::current();
    outlast(
        [&]
        {
            audio.reset();
            return true;
        });

    {
        System later(options());
        EXPECT_EQ(whole, later.snapshot());
        EXPECT_TRUE(later.refresh(Depth::everything));
    }

    EXPECT_FALSE(former->m_hasEnded);
    m_goOn.set_value();
    former->settle(); // it ends by itself
}

TEST_F(HangingDriver, GetsNoReadingThatNobodyWaitsForAnyMore)
{
    play("desktop");
    System audio(options());
    static_cast<void>(audio.snapshot());
    const auto walks = [this] { return simulation().journal().count("IDeviceTopology::GetConnectorCount"); };
    hang(audio);
    EXPECT_FALSE(outlast([&] { return audio.graph(); }));
    const std::size_t before = walks();

    m_goOn.set_value();
    ASSERT_TRUE(audio.refresh());

    EXPECT_EQ(before, walks());
    EXPECT_TRUE(audio.graph());
    EXPECT_LT(before, walks());
}

TEST_F(HangingDriver, StillGetsAChangeThatNobodyWaitsForAnyMore)
{
    play("desktop");
    System audio(options());
    const EndpointId id = audio.defaultEndpoint(Flow::output)->id();
    hang(audio);
    const Result<Volume> changed = outlast([&] { return audio.setVolume(id, Decibels(-33)); });
    ASSERT_FALSE(changed);
    EXPECT_EQ(Problem::Kind::noAnswer, changed.problem().kind());

    m_goOn.set_value();
    ASSERT_TRUE(audio.refresh());

    EXPECT_EQ(Decibels(-33), audio.endpoint(id)->volume()->master.decibels);
}

TEST_F(HangingDriver, IsNotWaitedForWithoutPatience)
{
    play("desktop");
    hangIn("IMMDevice::GetState");
    System::Options given = options();
    given.patience = 0ms;
    std::shared_ptr<worker::Worker> former;
    {
        System audio(given);
        EXPECT_THAT(audio.snapshot().cards(), IsEmpty());
        m_goOn.set_value();
        while (audio.snapshot().cards().empty())
            std::this_thread::yield();
        former = worker::Worker::current();
    }
    former->settle(); // it ends by itself
    EXPECT_TRUE(simulation().census().empty()) << simulation().census();
}
}
