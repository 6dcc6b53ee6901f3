#include "tools/sonavit/endpoint.h"

#include "tools/sonavit/failure.h"
#include "tools/sonavit/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace sonavit
{
namespace
{
struct StateName
{
    unsigned state;
    const char* key;
    const char* words;
};

constexpr std::array<StateName, 4> stateNames = {{{DEVICE_STATE_ACTIVE, "active", "active"},
                                                  {DEVICE_STATE_DISABLED, "disabled", "disabled"},
                                                  {DEVICE_STATE_NOTPRESENT, "notPresent", "not present"},
                                                  {DEVICE_STATE_UNPLUGGED, "unplugged", "unplugged"}}};

const StateName* stateName(const std::optional<unsigned>& state)
{
    const auto* const found = std::find_if(stateNames.begin(), stateNames.end(),
                                           [&](const StateName& name) { return state && name.state == *state; });
    return found == stateNames.end() ? nullptr : found;
}

/// The state as the platform tells it now; the library's answer does not show a failure.
std::optional<unsigned> readState(AudioDevice& device)
{
    DWORD state = 0;
    const COMPtr<IMMDevice>::pointer platformDevice = device.device();
    if (platformDevice.get() == nullptr || FAILED(platformDevice->GetState(&state)))
        return std::nullopt;
    return static_cast<unsigned>(state);
}

/// The name that the endpoints give the card. Those without an instance path may belong to different devices and have
/// nothing in common but that.
std::string cardName(const Card& card)
{
    std::vector<std::string> names;
    for (const Endpoint& endpoint : card.endpoints)
    {
        if (endpoint.friendlyName && std::find(names.begin(), names.end(), *endpoint.friendlyName) == names.end())
            names.push_back(*endpoint.friendlyName);
    }
    if (names.size() == 1 || (!names.empty() && !card.id.empty()))
        return names.front();
    return card.id.empty() ? "Endpoints of no known card" : "Unnamed card";
}

Card readCard(const SoundCard& soundCard, const std::vector<Endpoint>& endpoints)
{
    Card card{soundCard, soundCard.deviceId().toUtf8(), std::nullopt, {}, {}};
    card.instanceId = textOrNothing(card.card.instanceId());
    for (const Endpoint& endpoint : endpoints)
    {
        if (endpoint.device.deviceProperty().instancePath == soundCard.deviceId())
            card.endpoints.push_back(endpoint);
    }
    card.name = cardName(card);
    return card;
}
}

std::optional<std::string> Endpoint::name() const
{
    if (!description && !friendlyName)
        return std::nullopt;
    if (!description || !friendlyName)
        return description ? *description : *friendlyName;
    return *description + " (" + *friendlyName + ")";
}

std::string Endpoint::title() const
{
    const std::optional<std::string> known = name();
    return known ? printable(*known) : "unnamed " + std::string(flowWords(flow)) + " " + id;
}

const char* flowKey(EDataFlow flow)
{
    return flow == eRender ? "render" : "capture";
}

const char* flowWords(EDataFlow flow)
{
    return flow == eRender ? "output" : "input";
}

std::optional<std::string> stateKey(const std::optional<unsigned>& state)
{
    const StateName* const name = stateName(state);
    if (name == nullptr)
        return std::nullopt;
    return name->key;
}

std::string stateWords(const std::optional<unsigned>& state)
{
    const StateName* const name = stateName(state);
    return name == nullptr ? nothing : name->words;
}

Endpoint readEndpoint(const AudioDevice& device, EDataFlow flow)
{
    Endpoint endpoint;
    endpoint.device = device;
    endpoint.flow = flow;
    const AudioDeviceInterface::Properties& properties = endpoint.device.deviceProperty();
    endpoint.id = properties.deviceId.toUtf8();
    endpoint.description = textOrNothing(properties.endpointType);
    endpoint.friendlyName = textOrNothing(properties.friendlyName);
    endpoint.jackType = typeOrNothing(properties.subType);
    endpoint.state = readState(endpoint.device);
    return endpoint;
}

std::vector<Endpoint> readEndpoints()
{
    const libSonavit::EndpointDeviceEnumerator enumerator;
    if (!enumerator.isInitialized())
        throw OperationFailure("Core Audio cannot be reached");
    std::vector<Endpoint> endpoints = readEndpoints(enumerator, eRender);
    const std::vector<Endpoint> inputs = readEndpoints(enumerator, eCapture);
    endpoints.insert(endpoints.end(), inputs.begin(), inputs.end());
    return endpoints;
}

std::vector<Endpoint> readEndpoints(const libSonavit::EndpointDeviceEnumerator& enumerator, EDataFlow flow)
{
    std::vector<Endpoint> endpoints;
    qor::Array<AudioDevice> devices;
    const unsigned count = enumerator.audioDevices(flow, devices);
    for (unsigned i = 0; i < count; ++i)
        endpoints.push_back(readEndpoint(devices[i], flow));
    return endpoints;
}

std::vector<Card> readCards()
{
    const std::vector<Endpoint> endpoints = readEndpoints();
    const qor::Array<SoundCard> soundCards = SoundCard::enumerateSystemSoundDevices();
    std::vector<Card> cards;
    for (unsigned i = 0; i < soundCards.size(); ++i)
        cards.push_back(readCard(soundCards[i], endpoints));
    return cards;
}

bool isDefault(const Endpoint& endpoint)
{
    return endpoint.device.isInitialized() && endpoint.device.isDefaultEndpoint();
}
}
