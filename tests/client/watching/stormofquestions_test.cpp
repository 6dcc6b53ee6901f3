#include "sonavit/capture.h"
#include "sonavit/diagnosis.h"
#include "tests/client/watching/watchtest.h"
#include "tests/support/storm.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

using namespace sonavit;

namespace
{
/// What takes long, asked on several threads while the machine changes: hardware, references, settings, captures.
class QuestionsInAStorm : public support::ClientTest
{
protected:
    using Random = std::minstd_rand;

    void begin()
    {
        simulation().journal().record(false);
        for (const sim::Endpoint& endpoint : simulation().machine().endpoints)
            m_ids.push_back(endpoint.id);
    }

    EndpointId any(Random& random) const { return EndpointId(m_ids[random() % m_ids.size()]); }

    /// A thread that repeats @p action, with random numbers of its own, until the storm is over and it has had an
    /// answer: endpoints that are unplugged have none.
    void start(const std::function<bool(Random&)>& action)
    {
        const auto seed = static_cast<unsigned>(m_threads.size() + 1);
        m_threads.emplace_back(
            [this, action, seed]
            {
                Random random(seed);
                bool isAnswered = false;
                while (!m_isOver || !isAnswered)
                    isAnswered = action(random) || isAnswered;
            });
    }

    void makeEvents(unsigned count)
    {
        Random random(20);
        sim::Events& events = simulation().events();
        for (; count > 0; --count)
        {
            const std::string& id = m_ids[random() % m_ids.size()];
            switch (random() % 8)
            {
            case 0:
                events.plugJack(id);
                break;
            case 1:
                events.unplugJack(id);
                break;
            case 2:
                events.setDefault(id, static_cast<ERole>(random() % 3));
                break;
            case 3:
                events.announceProperty(id, PKEY_Device_DeviceDesc);
                break;
            default:
                events.setVolume(id, -static_cast<float>(random() % 60), random() % 2 == 0);
            }
        }
    }

    void end()
    {
        m_isOver = true;
        for (std::thread& thread : m_threads)
            thread.join();
    }

    std::vector<std::string> m_ids;
    std::vector<std::thread> m_threads;
    std::atomic<bool> m_isOver{false};
};

TEST_F(QuestionsInAStorm, AreAnsweredOnEachThread)
{
    play("desktop");
    begin();
    System audio(options());
    const Snapshot first = audio.snapshot();
    const CardId card = first.cards().front().id();
    const Format format = *first.endpoints().front().format();
    // Each thread ends with an answer.
    start([&](Random& random) { return bool(audio.controls(any(random))) && bool(audio.selectors(card)); });
    start([&](Random&) { return bool(audio.watch(card)) && bool(audio.graph(card)); });
    start(
        [&](Random& random)
        {
            const Result<Reference> reference = audio.refer(any(random));
            return reference && !audio.resolve(*reference).candidates.empty();
        });
    start(
        [&](Random&)
        {
            const Result<Settings> settings = audio.settings();
            return settings && audio.restore(*settings);
        });
    start([&](Random&) { return bool(capture(audio)) && bool(diagnose(audio)); });
    start(
        [&](Random& random)
        {
            Result<FormatHold> hold = audio.holdFormat(any(random), format);
            return hold && hold->end();
        });

    makeEvents(support::stormEvents(500));
    end();

    simulation().events().waitForClients();
    ASSERT_TRUE(audio.refresh());
    const System fresh(options());
    EXPECT_EQ(support::withoutPast(fresh.snapshot()), support::withoutPast(audio.snapshot()));
    EXPECT_THAT(simulation().violations(), testing::IsEmpty());
}

TEST_F(QuestionsInAStorm, HaveAnswersThatManyThreadsShare)
{
    play("desktop");
    begin();
    System audio(options());
    const Snapshot shared = audio.snapshot();
    const Result<Graph> graph = audio.graph();
    ASSERT_TRUE(graph);
    const std::string text = testing::PrintToString(shared);
    const Endpoint first = shared.cards().front().endpoints().front();
    std::atomic<unsigned> wrong{0};
    for (int thread = 0; thread < 4; ++thread)
    {
        start(
            [&](Random&)
            {
                const Snapshot own = shared;
                const Snapshot newest = audio.snapshot();
                const Graph copy = *graph;
                const bool isRight = own.endpoint(first.id()) == first && copy == *graph && own == shared &&
                                     testing::PrintToString(own) == text &&
                                     sonavit::apply(own, difference(own, newest)) == newest;
                wrong += isRight ? 0 : 1;
                return true;
            });
    }

    makeEvents(support::stormEvents(500));
    end();

    EXPECT_EQ(0u, wrong.load());
}

TEST_F(QuestionsInAStorm, ReachAProgramThatPollsOnOneThreadAndAsksOnOthers)
{
    play("desktop");
    begin();
    std::atomic<unsigned> wakes{0};
    System::Options polled = options();
    polled.delivery = Delivery::poll;
    polled.wake = [&] { ++wakes; };
    System audio(polled);
    Snapshot told;
    unsigned calls = 0;
    const Subscription heard = audio.subscribe(
        [&](const Change& change)
        {
            ++calls;
            told = change.after();
        });
    start([&](Random& random) { return bool(audio.toggleMute(any(random))); });
    start([&](Random&) { return audio.subscribe([](const Change&) {}).isActive(); });

    const unsigned events = support::stormEvents(500);
    for (unsigned event = 0; event < events; event += 10)
    {
        makeEvents(10);
        audio.poll();
    }
    end();
    simulation().events().waitForClients();
    ASSERT_TRUE(audio.refresh());
    audio.poll();

    EXPECT_LT(0u, calls);
    EXPECT_LT(0u, wakes.load());
    EXPECT_EQ(audio.snapshot(), told);
}
}
