#include "tests/support/storm.h"

#include "simulator/machine/file/machinefile.h"
#include "tests/client/watching/watchtest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace sonavit;

namespace
{
/// Random events while eight threads use one System.
class SystemInAStorm : public support::ClientTest
{
protected:
    using Random = std::minstd_rand;

    const std::string& any(Random& random) const { return m_ids[random() % m_ids.size()]; }

    void makeEvent(Random& random)
    {
        sim::Events& events = simulation().events();
        const std::string& id = any(random);
        constexpr DWORD states[] = {DEVICE_STATE_ACTIVE, DEVICE_STATE_DISABLED, DEVICE_STATE_NOTPRESENT,
                                    DEVICE_STATE_UNPLUGGED};
        switch (random() % 12)
        {
        case 0:
            return events.remove(id);
        case 1:
        case 2:
            return events.add(id);
        case 3:
            return events.setState(id, states[random() % 4]);
        case 4:
            return events.plugUsb(id);
        case 5:
            return events.driverUpdate(id);
        case 6:
            return events.setDefault(id, static_cast<ERole>(random() % 3));
        case 7:
            return events.announceProperty(id, PKEY_Device_DeviceDesc);
        case 8:
            return events.plug(id);
        default:
            return events.setVolume(id, -static_cast<float>(random() % 60), random() % 2 == 0);
        }
    }

    /// What a program does all the time, as often as it can.
    void useSystem(System& audio, unsigned seed)
    {
        Random random(seed);
        std::unique_ptr<Subscription> heard;
        while (!m_isOver)
        {
            const EndpointId id(any(random));
            switch (random() % 6)
            {
            case 0:
                static_cast<void>(audio.setVolume(id, Percent(static_cast<double>(random() % 100))));
                break;
            case 1:
                static_cast<void>(audio.toggleMute(id));
                break;
            case 2:
                heard = std::make_unique<Subscription>(
                    audio.subscribe([this, &audio, id](const Change&) { useSystemInACall(audio, id); }));
                break;
            case 3:
                heard.reset();
                break;
            case 4:
                static_cast<void>(audio.refresh());
                break;
            default:
                m_endpoints += audio.snapshot().endpoints().size();
            }
        }
    }

    void useSystemInACall(System& audio, const EndpointId& id)
    {
        const unsigned call = ++m_calls;
        if (call % 3 == 0)
            static_cast<void>(audio.setVolume(id, Percent(static_cast<double>(call % 100))));
        if (call % 4 == 0)
            const Subscription nested = audio.subscribe([](const Change&) {});
        m_endpoints += audio.snapshot().endpoints().size();
    }

    std::vector<std::string> m_ids;
    std::atomic<bool> m_isOver{false};
    std::atomic<unsigned> m_calls{0};
    std::atomic<std::size_t> m_endpoints{0};
};

TEST_F(SystemInAStorm, EndsWithTheTruthAndHasToldAllOfIt)
{
    play("desktop");
    for (const sim::Endpoint& endpoint : simulation().machine().endpoints)
        m_ids.push_back(endpoint.id);
    System audio(options());
    std::mutex mutex;
    Snapshot first;
    Snapshot told;
    bool isFirst = true;
    std::atomic<unsigned> wrong{0};
    const Subscription heard = audio.subscribe(
        [&](const Change& change)
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (std::exchange(isFirst, false))
                told = first = change.before();
            told = sonavit::apply(told, change.events());
            wrong += told == change.after() ? 0 : 1;
        });
    std::vector<std::thread> users;
    for (unsigned number = 1; number <= 8; ++number)
        users.emplace_back([this, &audio, number] { useSystem(audio, number); });

    Random random(20);
    for (unsigned count = support::stormEvents(1500); count > 0; --count)
        makeEvent(random);
    while (m_calls == 0 || m_endpoints == 0) // on a busy computer the users may have only just begun
        makeEvent(random);
    m_isOver = true;
    for (std::thread& user : users)
        user.join();
    simulation().events().waitForClients();
    ASSERT_TRUE(audio.refresh());
    const Snapshot last = audio.snapshot();
    const auto isTold = [&]
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return told == last; // its generation is lower if the last changes have taken each other back
    };
    while (!isTold())
        std::this_thread::yield();

    EXPECT_EQ(heard.initial(), first);
    EXPECT_EQ(0u, wrong.load());
    EXPECT_LT(0u, m_calls.load());
    EXPECT_LT(0u, m_endpoints.load());
    const System fresh(options());
    EXPECT_EQ(support::withoutPast(fresh.snapshot()), support::withoutPast(last));
    EXPECT_THAT(simulation().violations(), testing::IsEmpty());
}
}
