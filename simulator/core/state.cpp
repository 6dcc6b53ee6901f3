#include "simulator/core/state.h"

#include "simulator/core/simulatedobject.h"
#include "simulator/core/taskmemory.h"
#include "simulator/core/threads.h"

#include <algorithm>
#include <utility>

namespace sim
{
namespace
{
std::uint64_t nextNumber()
{
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

bool givesThreadsCom(const std::shared_ptr<State>& state)
{
    const auto isCom = [](const Hardware& hardware)
    { return hardware.machine().callbackThread == CallbackThread::com; };
    return state == nullptr || state->withHardware(isCom);
}

/// Never destroyed: static objects of other modules call the runtime functions while the process ends.
struct CurrentStates
{
    Mutex mutex;
    std::vector<std::shared_ptr<State>> states;

    static CurrentStates& instance()
    {
        static CurrentStates* const states = new CurrentStates;
        return *states;
    }
};
}

State::State(Machine machine) : number(nextNumber()), m_hardware(std::move(machine))
{
    for (const FaultRule& rule : m_hardware.machine().faults)
        faults.add(rule);
    latency.usePreset(m_hardware.machine().latencyPreset);
    for (const LatencyRule& rule : m_hardware.machine().latency)
        latency.add(rule);
}

std::shared_ptr<State> State::create(Machine machine)
{
    const std::shared_ptr<State> state(new State(std::move(machine)));
    const std::weak_ptr<State> weak = state;
    const auto hasCom = std::make_shared<bool>(false); // decided when the thread starts
    const auto enter = [weak, hasCom]
    {
        *hasCom = givesThreadsCom(weak.lock());
        if (*hasCom)
            enterNotificationThread(weak);
    };
    const auto leave = [hasCom]
    {
        if (*hasCom)
            leaveNotificationThread();
    };
    state->notifier.prepare(weak, enter, leave);
    state->streams.prepare(weak);
    return state;
}

std::shared_ptr<State::VolumeListeners> State::volumeListeners(const std::string& endpoint)
{
    const std::lock_guard<Mutex> lock(m_listenersMutex);
    auto& listeners = m_volumeListeners[endpoint];
    if (!listeners)
        listeners = std::make_shared<VolumeListeners>();
    return listeners;
}

std::shared_ptr<State::ControlListeners> State::controlListeners(const std::string& part,
                                                                 const std::string& interfaceName)
{
    const std::lock_guard<Mutex> lock(m_listenersMutex);
    auto& listeners = m_controlListeners[part][interfaceName];
    if (!listeners)
        listeners = std::make_shared<ControlListeners>();
    return listeners;
}

std::vector<std::shared_ptr<State::ControlListeners>> State::controlListeners(const std::string& part)
{
    std::vector<std::shared_ptr<ControlListeners>> all;
    const std::lock_guard<Mutex> lock(m_listenersMutex);
    for (const auto& [name, listeners] : m_controlListeners[part])
        all.push_back(listeners);
    return all;
}

void State::recordMessage(const PostedMessage& message)
{
    const std::lock_guard<Mutex> lock(m_messagesMutex);
    m_messages.push_back(message);
}

std::vector<PostedMessage> State::postedMessages() const
{
    const std::lock_guard<Mutex> lock(m_messagesMutex);
    return m_messages;
}

Census State::census() const
{
    Census census;
    SimulatedObject::count(*this, census);
    for (const TaskMemory::Block& block : TaskMemory::instance().outstanding(number))
    {
        ++census.taskMemory[block.origin.text()];
        census.taskBytes += static_cast<long>(block.bytes);
    }

    const auto addClients = [&](const std::string& name, std::size_t count)
    {
        if (count > 0)
            census.clients[name] += static_cast<long>(count);
    };
    addClients("IMMNotificationClient", clients.count());
    const std::lock_guard<Mutex> lock(m_listenersMutex);
    for (const auto& [endpoint, listeners] : m_volumeListeners)
        addClients("IAudioEndpointVolumeCallback", listeners->count());
    for (const auto& [part, controls] : m_controlListeners)
    {
        for (const auto& [name, listeners] : controls)
            addClients("IControlChangeNotify", listeners->count());
    }
    return census;
}

std::shared_ptr<State> currentState()
{
    CurrentStates& current = CurrentStates::instance();
    const std::lock_guard<Mutex> lock(current.mutex);
    return current.states.empty() ? nullptr : current.states.back();
}

void pushCurrentState(const std::shared_ptr<State>& state)
{
    CurrentStates& current = CurrentStates::instance();
    const std::lock_guard<Mutex> lock(current.mutex);
    current.states.push_back(state);
}

void removeCurrentState(const std::shared_ptr<State>& state)
{
    CurrentStates& current = CurrentStates::instance();
    const std::lock_guard<Mutex> lock(current.mutex);
    current.states.erase(std::remove(current.states.begin(), current.states.end(), state), current.states.end());
}
}
