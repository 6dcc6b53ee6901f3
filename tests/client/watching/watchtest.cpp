#include "tests/client/watching/watchtest.h"

#include "simulator/machine/file/machinefile.h"

#include <mutex>
#include <utility>

namespace support
{
void WatchTest::SetUp()
{
    ClientTest::SetUp();
    sonavit::worker::replaceClock(clock);
}

void WatchTest::TearDown()
{
    m_audio.reset();
    sonavit::worker::replaceClock(nullptr);
    ClientTest::TearDown();
}

sonavit::System& WatchTest::watch(const std::string& machineName)
{
    return watch(sim::findMachine(machineName));
}

sonavit::System& WatchTest::watch(sim::Machine machine)
{
    play(std::move(machine)).deliverAtOnce(true);
    m_audio = std::make_unique<sonavit::System>(polledOptions());
    static_cast<void>(m_audio->snapshot());
    settle();
    return *m_audio;
}

sonavit::System::Options WatchTest::polledOptions()
{
    sonavit::System::Options result = options();
    result.delivery = sonavit::Delivery::poll;
    return result;
}

void WatchTest::settle()
{
    if (const auto worker = sonavit::worker::Worker::current())
        worker->settle();
}

void WatchTest::advance(std::chrono::milliseconds duration)
{
    clock->advance(duration);
    settle();
}

bool WatchTest::isChangeWaiting()
{
    const auto worker = sonavit::worker::Worker::current();
    const std::lock_guard<std::mutex> lock(worker->m_alarm->mutex);
    return !worker->m_changes.empty();
}

std::size_t WatchTest::callsSince()
{
    const std::size_t calls = simulation()
                                  .journal()
                                  .entries()
                                  .without("CoTaskMemFree")
                                  .without("PropVariantClear")
                                  .without("IMMNotificationClient::*")
                                  .without("IAudioEndpointVolumeCallback::*")
                                  .without("IControlChangeNotify::*")
                                  .size();
    simulation().journal().clear();
    return calls;
}

sonavit::Snapshot withoutPast(const sonavit::Snapshot& snapshot)
{
    sonavit::Snapshot::Content content = snapshot.content();
    for (sonavit::Card& card : content.cards)
    {
        sonavit::Card::Content changed = card.content();
        for (sonavit::Endpoint& endpoint : changed.endpoints)
        {
            sonavit::Endpoint::Content each = endpoint.content();
            each.incarnation = 0;
            endpoint = sonavit::Endpoint(std::move(each));
        }
        card = sonavit::Card(std::move(changed));
    }
    return sonavit::Snapshot(std::move(content));
}

Receiver::Receiver(sonavit::System& audio)
    : m_audio(audio),
      m_subscription(audio.subscribe([this](const sonavit::Change& change) { m_changes.push_back(change); }))
{
}

std::vector<sonavit::Change> Receiver::take()
{
    m_audio.poll();
    return std::exchange(m_changes, {});
}

std::vector<sonavit::Event> Receiver::events()
{
    std::vector<sonavit::Event> all;
    for (const sonavit::Change& change : take())
        all.insert(all.end(), change.events().begin(), change.events().end());
    return all;
}
}
