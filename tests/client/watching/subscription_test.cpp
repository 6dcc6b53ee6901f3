#include "tests/client/watching/watchtest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace sonavit;
using namespace testing;
using namespace std::chrono_literals;

namespace
{
/// On the computer's clock, with a thread for the subscribers unless a test says otherwise.
class SubscriptionCalls : public support::ClientTest
{
protected:
    System& start(System::Options options)
    {
        play("desktop");
        m_audio = std::make_unique<System>(std::move(options));
        for (const Endpoint& endpoint : m_audio->snapshot().endpoints())
        {
            if (endpoint.isActive() && endpoint.volume())
                m_endpoint = endpoint.id().text();
        }
        return *m_audio;
    }
    System& start() { return start(options()); }

    void TearDown() override
    {
        m_audio.reset();
        ClientTest::TearDown();
    }

    /// Changes the volume, each time to another level.
    void changeSomething() { simulation().events().setVolume(m_endpoint, m_level -= 0.5F); }

    std::unique_ptr<System> m_audio;
    std::string m_endpoint;
    float m_level = -10;
};

TEST_F(SubscriptionCalls, AreMadeOnAThreadOfTheSystem)
{
    System& audio = start();
    std::promise<std::thread::id> called;
    const Subscription heard = audio.subscribe(
        [&, isFirst = true](const Change&) mutable
        {
            if (std::exchange(isFirst, false))
                called.set_value(std::this_thread::get_id());
        });

    changeSomething();

    EXPECT_NE(std::this_thread::get_id(), called.get_future().get());
}

TEST_F(SubscriptionCalls, DoNotBeginAfterStop)
{
    System& audio = start();
    std::atomic<int> calls{0};
    std::promise<void> entered;
    std::promise<void> leave;
    Subscription heard = audio.subscribe(
        [&](const Change&)
        {
            if (calls++ > 0)
                return;
            entered.set_value();
            leave.get_future().wait();
        });
    changeSomething();
    entered.get_future().wait();
    changeSomething(); // waits for the subscriber
    static_cast<void>(audio.refresh());

    heard.stop();
    leave.set_value();
    std::promise<void> later;
    const Subscription other = audio.subscribe([&](const Change&) { later.set_value(); });
    changeSomething();
    later.get_future().wait();

    EXPECT_EQ(1, calls.load());
    EXPECT_FALSE(heard.isActive());
}

TEST_F(SubscriptionCalls, EndBeforeTheSubscriptionIsDestroyed)
{
    System& audio = start();
    std::promise<void> entered;
    std::atomic<bool> isEnding{false};
    std::atomic<bool> hasLeft{false};
    {
        const Subscription heard = audio.subscribe(
            [&, isFirst = true](const Change&) mutable
            {
                if (!std::exchange(isFirst, false))
                    return;
                entered.set_value();
                while (!isEnding)
                    std::this_thread::yield();
                for (int turn = 0; turn < 20; ++turn) // the destructor goes on meanwhile, unless it waits
                    std::this_thread::yield();
                hasLeft = true;
            });
        changeSomething();
        entered.get_future().wait();
        isEnding = true;
    }

    EXPECT_TRUE(hasLeft.load());
}

/// A subscription that tells when it has ended.
std::shared_ptr<Subscription> tellingItsEnd(Subscription subscription, std::promise<void>& ended)
{
    const auto end = [&ended](const Subscription* ending)
    {
        delete ending;
        ended.set_value();
    };
    return {new Subscription(std::move(subscription)), end};
}

TEST_F(SubscriptionCalls, MayOwnWhatUsesTheSystemAtItsEnd)
{
    System& audio = start();
    std::promise<void> ended;
    std::shared_ptr<Subscription> owned = tellingItsEnd(audio.subscribe([](const Change&) {}), ended);
    auto heard = std::make_unique<Subscription>();
    *heard = audio.subscribe([&heard, owned](const Change&) { heard.reset(); });
    owned.reset();

    changeSomething();

    ended.get_future().wait();
    EXPECT_EQ(nullptr, heard);
}

TEST_F(SubscriptionCalls, MayOwnTheirOwnSubscription)
{
    System& audio = start();
    std::promise<void> ended;
    std::shared_ptr<Subscription> heard = tellingItsEnd(Subscription(), ended);
    *heard = audio.subscribe([heard](const Change&) { heard->stop(); });
    heard.reset();

    changeSomething();

    ended.get_future().wait();
    EXPECT_TRUE(audio.refresh());
}

TEST_F(SubscriptionCalls, MayEndTheirOwnSubscription)
{
    System& audio = start();
    std::promise<void> called;
    std::unique_ptr<Subscription> heard;
    std::promise<void> isSet;
    std::shared_future<void> isKnown = isSet.get_future().share();
    heard = std::make_unique<Subscription>(audio.subscribe(
        [&](const Change&)
        {
            isKnown.wait();
            heard.reset();
            called.set_value();
        }));
    isSet.set_value();

    changeSomething();

    called.get_future().wait();
    EXPECT_EQ(nullptr, heard);
}

TEST_F(SubscriptionCalls, MayUseTheSystem)
{
    System& audio = start();
    std::promise<bool> answered;
    const Subscription heard = audio.subscribe(
        [&, isFirst = true](const Change& change) mutable
        {
            if (!std::exchange(isFirst, false))
                return;
            const Result<Snapshot> newest = audio.refresh(Depth::everything);
            const Subscription another = audio.subscribe([](const Change&) {});
            const bool isNewer = newest && newest->generation() >= change.after().generation();
            answered.set_value(isNewer && audio.graph().operator bool());
        });

    changeSomething();

    EXPECT_TRUE(answered.get_future().get());
}

TEST_F(SubscriptionCalls, ThatThrowEndTheSubscriptionWithAProblem)
{
    System& audio = start();
    std::promise<void> called;
    Subscription heard = audio.subscribe(
        [&](const Change&)
        {
            called.set_value();
            throw std::runtime_error("the file is full");
        });

    changeSomething();
    called.get_future().wait();
    while (heard.isActive())
        std::this_thread::yield();

    ASSERT_TRUE(heard.lastProblem());
    EXPECT_EQ(Problem::Kind::internal, heard.lastProblem()->kind());
    EXPECT_THAT(heard.lastProblem()->sentence(), HasSubstr("the file is full"));
}

TEST_F(SubscriptionCalls, ThatThrowContinueIfTheProgramHandlesExceptions)
{
    System::Options given = options();
    std::atomic<int> exceptions{0};
    given.onException = [&](const std::exception_ptr&) { ++exceptions; };
    System& audio = start(given);
    std::atomic<int> calls{0};
    const Subscription heard = audio.subscribe(
        [&](const Change&)
        {
            ++calls;
            throw std::runtime_error("the file is full");
        });

    while (calls < 3)
        changeSomething();

    EXPECT_TRUE(heard.isActive());
    while (exceptions < 3)
        std::this_thread::yield();
}

TEST_F(SubscriptionCalls, EndWithTheSystemWhileTheSubscriptionStays)
{
    System& audio = start();
    std::atomic<int> calls{0};
    Subscription heard = audio.subscribe([&](const Change&) { ++calls; });

    m_audio.reset();

    EXPECT_FALSE(heard.isActive());
    const int before = calls;
    changeSomething();
    EXPECT_EQ(before, calls);
    EXPECT_FALSE(heard.initial().cards().empty());
}

TEST_F(SubscriptionCalls, MayEndTheirSystem)
{
    System& audio = start();
    std::promise<void> ended;
    const Subscription heard = audio.subscribe(
        [&](const Change&)
        {
            m_audio.reset();
            ended.set_value();
        });

    changeSomething();

    ended.get_future().wait();
    EXPECT_EQ(nullptr, m_audio);
}

TEST_F(SubscriptionCalls, NeedAFunction)
{
    System& audio = start();

    EXPECT_THROW(static_cast<void>(audio.subscribe(nullptr)), std::invalid_argument);
}

TEST_F(SubscriptionCalls, CannotBePolledIfTheSystemHasAThread)
{
    System& audio = start();

    EXPECT_THROW(audio.poll(), std::logic_error);
}

class SystemPoll : public support::WatchTest
{
protected:
    std::string endpoint() { return audio().defaultEndpoint(Flow::output)->id().text(); }
};

TEST_F(SystemPoll, WakesTheProgramOnceUntilItPolls)
{
    play("desktop").deliverAtOnce(true);
    System::Options given = polledOptions();
    std::atomic<int> wakes{0};
    given.wake = [&] { ++wakes; };
    System polled(given);
    const Subscription heard = polled.subscribe([](const Change&) {});
    const std::string id = polled.defaultEndpoint(Flow::output)->id().text();

    simulation().events().setVolume(id, -10.0F);
    settle();
    simulation().events().setVolume(id, -11.0F);
    advance(20ms);
    EXPECT_EQ(1, wakes.load());
    EXPECT_EQ(1u, polled.poll());
    simulation().events().setVolume(id, -12.0F);
    advance(20ms);

    EXPECT_EQ(2, wakes.load());
}

TEST_F(SystemPoll, MayAskOnTheThreadThatWakes)
{
    play("desktop").deliverAtOnce(true);
    System::Options given = polledOptions();
    std::unique_ptr<System> polled;
    std::optional<Problem> problem;
    std::size_t cards = 0;
    given.wake = [&]
    {
        problem = polled->refresh().problem();
        cards = polled->snapshot().cards().size();
    };
    polled = std::make_unique<System>(given);
    const Subscription heard = polled->subscribe([](const Change&) {});

    simulation().events().setVolume(polled->defaultEndpoint(Flow::output)->id().text(), -10.0F);
    settle();

    ASSERT_TRUE(problem);
    EXPECT_EQ(Problem::Kind::wouldWait, problem->kind());
    EXPECT_LT(0u, cards);
}

TEST_F(SystemPoll, ReturnsAfterItsTimeoutIfNothingWaits)
{
    watch("desktop");
    const Subscription heard = audio().subscribe([](const Change&) {});
    std::future<std::size_t> calls = std::async(std::launch::async, [&] { return audio().poll(100ms); });

    // It may not have looked at the clock yet.
    while (calls.wait_for(1ms) != std::future_status::ready)
        clock->advance(100ms);

    EXPECT_EQ(0u, calls.get());
}

TEST_F(SystemPoll, ReturnsWhenSomethingWaits)
{
    watch("desktop");
    const Subscription heard = audio().subscribe([](const Change&) {});
    std::future<std::size_t> calls = std::async(std::launch::async, [&] { return audio().poll(1h); });

    simulation().events().setVolume(endpoint(), -10.0F);

    EXPECT_EQ(1u, calls.get());
}

TEST_F(SystemPoll, MakesNoCallIfWhatWaitedHasBecomeNothing)
{
    watch("desktop");
    int calls = 0;
    const Subscription heard = audio().subscribe([&](const Change&) { ++calls; });
    const float level = -10.0F;
    simulation().events().setVolume(endpoint(), level);
    settle();
    audio().poll();

    simulation().events().setVolume(endpoint(), -20.0F);
    advance(20ms);
    simulation().events().setVolume(endpoint(), level);
    advance(20ms);

    EXPECT_EQ(0u, audio().poll());
    EXPECT_EQ(1, calls);
}
}
