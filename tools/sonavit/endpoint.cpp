#include "tools/sonavit/endpoint.h"

#include "COM/identifiers.h"
#include "simulator/machine/namedvalues.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/text.h"
#include "tools/sonavit/systemreason.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <utility>

namespace sonavit::program
{
namespace
{
/// The present state. The program calls the platform because the library's answer does not show a failure.
std::optional<unsigned> readState(AudioDevice& device)
{
    DWORD state = 0;
    const COMPtr<IMMDevice>::pointer platformDevice = device.device();
    if (platformDevice.get() == nullptr || FAILED(platformDevice->GetState(&state)))
        return std::nullopt;
    return static_cast<unsigned>(state);
}

/// The name that the endpoints give the card: the first one. Endpoints without an instance path may belong to different
/// devices, so they get a name of their own unless they agree.
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

/// Whether @p store fails to return the description. If it returns one now, it failed a moment ago.
std::optional<HRESULT> descriptionFailure(IPropertyStore& store)
{
    PROPVARIANT value{};
    const HRESULT result = store.GetValue(propertykeys::deviceDescription, &value);
    const bool isThere = SUCCEEDED(result) && value.vt == VT_LPWSTR && value.pwszVal != nullptr;
    if (SUCCEEDED(result))
        PropVariantClear(&value);
    if (FAILED(result))
        return result;
    return isThere ? std::optional<HRESULT>(E_UNEXPECTED) : std::nullopt;
}

/// Why a device without a name has none: a failure of the platform, or none if the name is missing.
std::optional<HRESULT> readFailure(AudioDevice& device)
{
    const COMPtr<IMMDevice>::pointer platformDevice = device.device();
    if (platformDevice.get() == nullptr)
        return E_POINTER;
    IPropertyStore* store = nullptr;
    const HRESULT result = platformDevice->OpenPropertyStore(STGM_READ, &store);
    const COMPtr<IPropertyStore>::pointer holder(store);
    if (FAILED(result))
        return result;
    return store == nullptr ? std::optional<HRESULT>(E_POINTER) : descriptionFailure(*store);
}

/// ": " and the reason why the platform has no enumerator; empty if it has one now.
std::string enumeratorReason()
{
    void* object = nullptr;
    const HRESULT result =
        CoCreateInstance(CLSID_MMDeviceEnumerator, nullptr, CLSCTX_ALL, IID_IMMDeviceEnumerator, &object);
    const COMPtr<IMMDeviceEnumerator>::pointer holder(static_cast<IMMDeviceEnumerator*>(object));
    if (FAILED(result))
        return ": " + reasonText(result);
    return object == nullptr ? ": " + reasonText(E_POINTER) : "";
}

/// The library returns an empty list if the platform fails. Throws OperationFailure unless there is nothing to list.
void requireNone(IMMDeviceEnumerator& enumerator, EDataFlow flow)
{
    IMMDeviceCollection* collection = nullptr;
    HRESULT result = enumerator.EnumAudioEndpoints(flow, DEVICE_STATEMASK_ALL, &collection);
    const COMPtr<IMMDeviceCollection>::pointer holder(collection);
    UINT count = 0;
    if (SUCCEEDED(result))
        result = collection == nullptr ? E_POINTER : collection->GetCount(&count);
    if (SUCCEEDED(result) && count > 0) // the list was refused a moment ago
        result = E_UNEXPECTED;
    if (FAILED(result))
        throw OperationFailure("the system cannot list its " + std::string(flowWords(flow)) +
                               "s: " + reasonText(result));
}

/// Throws OperationFailure if @p endpoints belong to cards that the library did not find.
void requireAllCards(const std::vector<Card>& cards, const std::vector<Endpoint>& endpoints)
{
    std::set<std::string> ids;
    for (const Card& card : cards)
        ids.insert(card.id);
    for (const Endpoint& endpoint : endpoints)
    {
        if (ids.count(endpoint.device.deviceProperty().instancePath.toUtf8()) == 0)
            throw OperationFailure("the system cannot list its sound cards" + enumeratorReason());
    }
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

std::string flowKey(EDataFlow flow)
{
    return sim::nameOf(sim::flowNames, flow);
}

std::optional<std::string> stateKey(const std::optional<unsigned>& state)
{
    const std::string name = state ? sim::nameOf(sim::stateNames, std::uint32_t{*state}) : "";
    return name.empty() ? std::nullopt : std::optional<std::string>(name);
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
    if (endpoint.id.empty() || !endpoint.name())
        endpoint.failure = readFailure(endpoint.device);
    return endpoint;
}

std::vector<Endpoint> readEndpoints()
{
    const libSonavit::EndpointDeviceEnumerator enumerator;
    if (!enumerator.isInitialized())
        throw OperationFailure("the system's audio cannot be reached" + enumeratorReason());
    std::vector<Endpoint> all;
    for (const EDataFlow flow : {eRender, eCapture})
    {
        const std::vector<Endpoint> endpoints = readEndpoints(enumerator, flow);
        if (endpoints.empty())
            requireNone(*enumerator.enumerator(), flow);
        all.insert(all.end(), endpoints.begin(), endpoints.end());
    }
    return all;
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
    requireAllCards(cards, endpoints);
    return cards;
}

bool isDefault(const Endpoint& endpoint)
{
    return endpoint.device.isInitialized() && endpoint.device.isDefaultEndpoint();
}
}
