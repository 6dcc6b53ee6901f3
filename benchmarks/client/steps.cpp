#include "steps.h"

#include "client/watching/inbox.h"
#include "measured.h"
#include "playedmachine.h"

#include <memory>
#include <thread>
#include <vector>

namespace bench
{
namespace
{
void snapshot(const std::string& machine)
{
    PlayedMachine played(machine);
    played.simulation().journal().record(false);
    std::optional<sonavit::System> audio;
    measureSnapshot(audio, played.options());
}

void plainSnapshot(const std::string& machine)
{
    PlayedMachine played(machine);
    played.simulation().journal().record(false);
    plain::Client client;
    measurePlain(client);
}

void refresh(const std::string& machine, std::size_t subscribers)
{
    PlayedMachine played(machine);
    played.simulation().journal().record(false);
    sonavit::System audio(played.options());
    std::vector<sonavit::Subscription> subscriptions;
    for (std::size_t count = 0; count < subscribers; ++count)
        subscriptions.push_back(audio.subscribe([](const sonavit::Change&) {}));
    static_cast<void>(audio.snapshot());
    PlayedMachine::settle();
    played.simulation().events().setVolume(played.activeOutput(), -12.0F);
    measureRefresh(audio);
    PlayedMachine::settle();
}

/// Waits for the alarm as the worker does, so that waking it costs what it does in a program.
class Sleeper
{
public:
    explicit Sleeper(sonavit::worker::Alarm& alarm) : m_alarm(alarm), m_thread([this] { sleep(); }) {}
    ~Sleeper()
    {
        {
            const std::lock_guard<std::mutex> lock(m_alarm.mutex);
            m_isEnding = true;
        }
        m_alarm.changed.notify_all();
        m_thread.join();
    }
    Sleeper(const Sleeper&) = delete;
    Sleeper& operator=(const Sleeper&) = delete;

    /// Until it sleeps, and the alarm has not been rung.
    void waitUntilAsleep()
    {
        for (;;)
        {
            const std::lock_guard<std::mutex> lock(m_alarm.mutex);
            if (m_isAsleep && !m_alarm.isRung)
                return;
        }
    }

private:
    void sleep()
    {
        std::unique_lock<std::mutex> lock(m_alarm.mutex);
        while (!m_isEnding)
        {
            m_alarm.isRung = false;
            m_isAsleep = true;
            m_alarm.changed.wait(lock);
            m_isAsleep = false;
        }
    }

    sonavit::worker::Alarm& m_alarm;
    bool m_isAsleep = false;
    bool m_isEnding = false;
    std::thread m_thread;
};

/// Ids that differ at their ends, as most of real ones do.
std::vector<WCHAR> idOf(std::size_t number)
{
    std::string text = "{0.0.0.00000000}.{6f2b1c9e-4d3a-4be7-8c05-d19e7ab30000}";
    for (std::size_t place = text.size() - 2; number > 0; --place, number /= 10)
        text[place] = static_cast<char>('0' + number % 10);
    std::vector<WCHAR> id(text.begin(), text.end());
    id.push_back(0);
    return id;
}

void notification(bool isOfVolume, std::size_t noted)
{
    const auto alarm = std::make_shared<sonavit::worker::Alarm>();
    const auto inbox = std::make_shared<sonavit::watching::Inbox>(alarm, std::make_shared<StandingClock>());
    for (std::size_t number = 1; number <= noted; ++number)
        inbox->noteEndpoint(idOf(number).data(), sonavit::watching::announcedProperty);
    const std::vector<WCHAR> id = idOf(0);
    auto* const ofVolume =
        new sonavit::watching::VolumeListener(inbox, sonavit::EndpointId(std::string(id.begin(), id.end() - 1)));
    auto* const ofDevices = new sonavit::watching::DeviceListener(inbox);
    {
        Sleeper sleeper(*alarm);
        sleeper.waitUntilAsleep();
        AUDIO_VOLUME_NOTIFICATION_DATA data = {};
        if (isOfVolume)
            measureVolumeNotification(*ofVolume, data);
        else
            measurePropertyNotification(*ofDevices, id.data());
    }
    ofVolume->Release();
    ofDevices->Release();
}
}

bool performStep(const std::string& name, const std::string& machine, std::size_t count)
{
    if (name == "snapshot")
        snapshot(machine);
    else if (name == "plain")
        plainSnapshot(machine);
    else if (name == "refresh")
        refresh(machine, count);
    else if (name == "volume" || name == "property")
        notification(name == "volume", count);
    else
        return false;
    return true;
}
}
