#include "simulator/core/notifications.h"

#include "simulator/core/answeringscope.h"
#include "simulator/core/argumenttext.h"
#include "simulator/core/interfaces.h"
#include "simulator/core/utf16.h"
#include "simulator/machine/volumemath.h"

#include <cstddef>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

namespace sim
{
namespace
{
/// Calls a client and records the call in the journal. If the client throws, the entry stays pending.
template<class Call>
void callClient(State& state, const char* operation, const std::string& object, std::vector<std::string> arguments,
                const Call& call)
{
    const AnsweringScope answering(true);
    const CallbackScope scope(state.callbacks, operation, object, arguments);
    const auto callUser = [&]
    {
        const AnsweringScope user(false);
        return call();
    };
    if (!state.journal.recording())
    {
        callUser();
        return;
    }
    JournalEntry entry;
    entry.operation = operation;
    entry.object = object;
    entry.arguments = std::move(arguments);
    const Journal::Place place = state.journal.begin(std::move(entry));
    state.journal.end(place, CallEnd::returned, callUser());
}

/// Queues one call for each notification client.
template<class Call>
void notifyClients(const std::shared_ptr<State>& state, const char* operation, const std::string& object,
                   const std::vector<std::string>& arguments, const Call& call)
{
    if (state->clients.count() == 0)
        return;
    state->notifier.post(
        [state, operation, object, arguments, call]
        {
            state->clients.deliver([&](IMMNotificationClient& client)
                                   { callClient(*state, operation, object, arguments, [&] { return call(client); }); });
        });
}

/// AUDIO_VOLUME_NOTIFICATION_DATA with space for all channels.
class VolumeData
{
public:
    VolumeData(const EndpointVolume& volume, LPCGUID context)
        : m_units((offsetof(AUDIO_VOLUME_NOTIFICATION_DATA, afChannelVolumes) +
                   (volume.channels.size() + 1) * sizeof(FLOAT) + sizeof(Unit) - 1) /
                  sizeof(Unit))
    {
        AUDIO_VOLUME_NOTIFICATION_DATA& data = *get();
        data.guidEventContext = context != nullptr ? *context : GUID{};
        data.bMuted = volume.muted ? TRUE : FALSE;
        data.fMasterVolume = scalarLevel(volume, masterLevel(volume));
        data.nChannels = static_cast<UINT>(volume.channels.size());
        for (std::size_t channel = 0; channel < volume.channels.size(); ++channel)
        {
            const float level = scalarLevel(volume, volume.channels[channel]);
            char* const place = reinterpret_cast<char*>(m_units.data()) +
                                offsetof(AUDIO_VOLUME_NOTIFICATION_DATA, afChannelVolumes) + channel * sizeof(FLOAT);
            std::memcpy(place, &level, sizeof level);
        }
    }

    AUDIO_VOLUME_NOTIFICATION_DATA* get() { return reinterpret_cast<AUDIO_VOLUME_NOTIFICATION_DATA*>(m_units.data()); }

private:
    using Unit = std::max_align_t;
    std::vector<Unit> m_units;
};

/// An id as clients get it.
class GivenId
{
public:
    explicit GivenId(const Text& id) : m_units(utf16(id.value_or(""))), m_isNull(!id) {}

    LPCWSTR get() const { return m_isNull ? nullptr : m_units.data(); }

private:
    std::vector<WCHAR> m_units;
    bool m_isNull;
};

std::string idText(const Text& id)
{
    return id.value_or("null");
}

std::optional<GUID> copied(LPCGUID context)
{
    return context == nullptr ? std::nullopt : std::optional<GUID>(*context);
}
}

void notifyDeviceAdded(const std::shared_ptr<State>& state, const Text& endpointId)
{
    notifyClients(state, "IMMNotificationClient::OnDeviceAdded", endpointId.value_or(""), {idText(endpointId)},
                  [id = GivenId(endpointId)](IMMNotificationClient& client) { return client.OnDeviceAdded(id.get()); });
}

void notifyDeviceRemoved(const std::shared_ptr<State>& state, const Text& endpointId)
{
    notifyClients(state, "IMMNotificationClient::OnDeviceRemoved", endpointId.value_or(""), {idText(endpointId)},
                  [id = GivenId(endpointId)](IMMNotificationClient& client)
                  { return client.OnDeviceRemoved(id.get()); });
}

void notifyStateChanged(const std::shared_ptr<State>& state, const Text& endpointId, DWORD newState)
{
    notifyClients(state, "IMMNotificationClient::OnDeviceStateChanged", endpointId.value_or(""),
                  {idText(endpointId), argumentText(newState)},
                  [id = GivenId(endpointId), newState](IMMNotificationClient& client)
                  { return client.OnDeviceStateChanged(id.get(), newState); });
}

void notifyDefaultChanged(const std::shared_ptr<State>& state, EDataFlow flow, ERole role, const Text& endpointId)
{
    notifyClients(state, "IMMNotificationClient::OnDefaultDeviceChanged", endpointId.value_or(""),
                  {argumentText(flow), argumentText(role), idText(endpointId)},
                  [flow, role, id = GivenId(endpointId)](IMMNotificationClient& client)
                  { return client.OnDefaultDeviceChanged(flow, role, id.get()); });
}

void notifyPropertyChanged(const std::shared_ptr<State>& state, const Text& deviceId, const PROPERTYKEY& key)
{
    notifyClients(state, "IMMNotificationClient::OnPropertyValueChanged", deviceId.value_or(""),
                  {idText(deviceId), argumentText(key)},
                  [id = GivenId(deviceId), key](IMMNotificationClient& client)
                  { return client.OnPropertyValueChanged(id.get(), key); });
}

void notifyVolumeChanged(const std::shared_ptr<State>& state, const std::string& endpointId, LPCGUID context)
{
    const std::shared_ptr<State::VolumeListeners> listeners = state->volumeListeners(endpointId);
    if (listeners->count() == 0)
        return;
    const std::optional<EndpointVolume> volume = state->withHardware(
        [&](Hardware& hardware) -> std::optional<EndpointVolume>
        {
            const Endpoint* const endpoint = hardware.endpoint(endpointId);
            return endpoint == nullptr || !endpoint->volume ? std::nullopt
                                                            : std::optional(shownVolume(hardware, *endpoint));
        });
    if (!volume)
        return;
    state->notifier.post(
        [state, listeners, endpointId, data = VolumeData(*volume, context)]() mutable
        {
            listeners->deliver(
                [&](IAudioEndpointVolumeCallback& listener)
                {
                    callClient(*state, "IAudioEndpointVolumeCallback::OnNotify", endpointId,
                               {argumentText(&data.get()->guidEventContext)},
                               [&] { return listener.OnNotify(data.get()); });
                });
        });
}

void notifyLevelsChanged(const std::shared_ptr<State>& state, const LevelChanges& changes, LPCGUID context)
{
    for (const std::string& endpointId : changes.endpoints)
        notifyVolumeChanged(state, endpointId, context);
    for (const std::string& partId : changes.levels)
        notifyControlChanged(state, partId, InterfaceTraits<IAudioVolumeLevel>::name, context);
    for (const std::string& partId : changes.mutes)
        notifyControlChanged(state, partId, InterfaceTraits<IAudioMute>::name, context);
}

void notifyControlChanged(const std::shared_ptr<State>& state, const std::string& partId,
                          const std::string& interfaceName, LPCGUID context)
{
    const std::shared_ptr<State::ControlListeners> listeners = state->controlListeners(partId, interfaceName);
    if (listeners->count() == 0)
        return;
    state->notifier.post(
        [state, listeners, partId, context = copied(context)]
        {
            const GUID* const handedOn = context ? &*context : nullptr;
            listeners->deliver(
                [&](IControlChangeNotify& listener)
                {
                    callClient(*state, "IControlChangeNotify::OnNotify", partId, {argumentText(handedOn)},
                               [&] { return listener.OnNotify(0, handedOn); });
                });
        });
}
}
