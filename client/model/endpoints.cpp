#include "client/model/endpoints.h"

#include "COM/interfacequery.h"
#include "COM/tasktext.h"
#include "client/model/endpointvolume.h"
#include "client/model/format.h"
#include "client/model/values.h"
#include "client/reading/judge.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "platform/propertykeys.h"
#include "sonavit/defaultcalls.h"

#include <utility>

namespace sonavit::model
{
namespace
{
using Enumerator = libSonavit::EndpointDeviceEnumerator;

constexpr unsigned noWaveId = 0xFFFFFFFF;
/// The platform says that there is no default.
constexpr auto notFound = static_cast<HRESULT>(0x80070490);

/// For calls that name no object. Never destroyed: a program may read until its end.
const std::string& noObject()
{
    static const std::string& none = *new std::string;
    return none;
}

EDataFlow platformFlow(Flow flow)
{
    return flow == Flow::output ? eRender : eCapture;
}

std::optional<State> stateOf(DWORD state)
{
    switch (state)
    {
    case DEVICE_STATE_ACTIVE:
        return State::active;
    case DEVICE_STATE_DISABLED:
        return State::disabled;
    case DEVICE_STATE_NOTPRESENT:
        return State::notPresent;
    case DEVICE_STATE_UNPLUGGED:
        return State::unplugged;
    default:
        return std::nullopt;
    }
}

/// @p result, but a failure if the call stores nothing in spite of its success.
template<class T>
HRESULT withResult(HRESULT result, const T* stored)
{
    return SUCCEEDED(result) && stored == nullptr ? E_POINTER : result;
}

/// The present state. The platform is asked because the object model's answer does not show a failure.
std::optional<State> readState(IMMDevice& device, Judge judge)
{
    DWORD state = 0;
    if (!judge.passes(device.GetState(&state), "IMMDevice::GetState"))
        return std::nullopt;
    return stateOf(state);
}

/// The store of an endpoint; nil, with a problem, if it cannot be opened.
COMPtr<IPropertyStore>::pointer openStore(IMMDevice& device, Judge judge)
{
    IPropertyStore* store = nullptr;
    const HRESULT result = device.OpenPropertyStore(STGM_READ, &store);
    const COMPtr<IPropertyStore>::pointer holder(store);
    if (!judge.passes(withResult(result, store), "IMMDevice::OpenPropertyStore"))
        return {};
    return holder;
}

/// The object model leaves 0 if the platform has no such value, but 0 is a valid mask, too.
std::optional<std::uint32_t> readSpeakers(IPropertyStore& store, const AudioDevice& device)
{
    PROPVARIANT value{};
    const HRESULT result = store.GetValue(platform::propertykeys::physicalSpeakers, &value);
    const bool isThere = SUCCEEDED(result) && value.vt == VT_UI4;
    if (SUCCEEDED(result))
        PropVariantClear(&value);
    if (!isThere)
        return std::nullopt;
    return device.deviceProperty().speakerConfig;
}

/// Why an endpoint without names has none, if the platform fails.
void explainMissingName(IPropertyStore& store, Judge judge)
{
    PROPVARIANT value{};
    const HRESULT result = store.GetValue(platform::propertykeys::deviceDescription, &value);
    if (judge.passes(result, "IPropertyStore::GetValue(deviceDescription)"))
        PropVariantClear(&value);
}

/// What the platform itself is asked for.
void askPlatform(AudioDevice& device, Endpoint::Content& content)
{
    const COMPtr<IMMDevice>::pointer platformDevice = device.device();
    const auto ask = [&](EndpointField field, const auto& question)
    {
        std::vector<Problem> problems;
        question(Judge(content.id.text(), problems));
        for (Problem& problem : problems)
            content.problems.push_back({field, std::move(problem)});
    };
    if (platformDevice.get() == nullptr)
    {
        ask(EndpointField::id, [](Judge judge) { judge.passes(E_POINTER, "IMMDeviceCollection::Item"); });
        return;
    }
    ask(EndpointField::state, [&](Judge judge) { content.state = readState(*platformDevice, judge); });
    ask(EndpointField::description,
        [&](Judge judge)
        {
            const COMPtr<IPropertyStore>::pointer store = openStore(*platformDevice, judge);
            if (store.get() == nullptr)
                return;
            content.speakers = readSpeakers(*store, device);
            if (!content.description && !content.interfaceName)
                explainMissingName(*store, judge);
        });
}

/// Volume and wave id, which only listed endpoints are asked for.
void addListedValues(AudioDevice& device, Endpoint::Content& content)
{
    std::vector<Problem> problems;
    content.volume = readVolume(device, content.id.text(), problems);
    for (Problem& problem : problems)
        content.problems.push_back({EndpointField::volume, std::move(problem)});
    const unsigned waveId = device.isInitialized() ? device.waveLegacyDeviceID() : noWaveId;
    if (waveId != noWaveId)
        content.waveId = waveId;
}

/// The id of a default; empty if there is none, or if it is not known. The object model asks for the console role
/// alone.
EndpointId readDefault(IMMDeviceEnumerator& enumerator, Flow flow, Role role, Judge judge)
{
    static constexpr std::array<ERole, 3> roles = {eConsole, eMultimedia, eCommunications};
    const char* const arguments = argumentsOf(flow, role);
    IMMDevice* device = nullptr;
    const HRESULT result =
        enumerator.GetDefaultAudioEndpoint(platformFlow(flow), roles[static_cast<std::size_t>(role)], &device);
    const COMPtr<IMMDevice>::pointer holder(device);
    if (result == notFound || !judge.passes(withResult(result, device), callForDefault, arguments))
        return {};
    TaskText text(TaskText::NullText::skipped);
    const HRESULT idResult = device->GetId(text.put());
    if (!judge.passes(withResult(idResult, text.get()), callForIdOfDefault, arguments))
        return {};
    EndpointId id(qor::String(platform::ucs2(text.get())).toUtf8());
    judge.passes(id.isEmpty() ? reading::invalidData : S_OK, callForIdOfDefault, arguments);
    return id;
}

Defaults readDefaults(IMMDeviceEnumerator& enumerator, Judge judge)
{
    Defaults defaults;
    for (const Flow flow : allFlows)
    {
        for (const Role role : allRoles)
            defaults[static_cast<std::size_t>(flow)][static_cast<std::size_t>(role)] =
                readDefault(enumerator, flow, role, judge);
    }
    return defaults;
}

/// The roles of an endpoint. The object model compares ids with regard to case, and so does this.
Roles rolesOf(const EndpointId& id, const std::array<EndpointId, 3>& defaults)
{
    Roles roles;
    for (const Role role : allRoles)
    {
        if (!id.isEmpty() && defaults[static_cast<std::size_t>(role)].text() == id.text())
            roles.add(role);
    }
    return roles;
}

/// Why a flow has no endpoints, if the platform fails: the object model has an empty list then.
void explainEmptyList(IMMDeviceEnumerator& enumerator, EDataFlow flow, Judge judge)
{
    IMMDeviceCollection* collection = nullptr;
    HRESULT result = enumerator.EnumAudioEndpoints(flow, DEVICE_STATEMASK_ALL, &collection);
    const COMPtr<IMMDeviceCollection>::pointer holder(collection);
    UINT count = 0;
    if (SUCCEEDED(result))
        result = collection == nullptr ? E_POINTER : collection->GetCount(&count);
    if (SUCCEEDED(result) && count > 0) // the list was refused a moment ago
        result = E_UNEXPECTED;
    judge.passes(result, flow == eRender ? "IMMDeviceEnumerator::EnumAudioEndpoints(eRender)"
                                         : "IMMDeviceEnumerator::EnumAudioEndpoints(eCapture)");
}

void listFlow(const Enumerator& enumerator, Flow flow, Listing& listing)
{
    qor::Array<AudioDevice> devices;
    const unsigned count = enumerator.audioDevices(platformFlow(flow), devices);
    if (count == 0)
        explainEmptyList(*enumerator.enumerator(), platformFlow(flow), Judge(noObject(), listing.problems));
    for (unsigned index = 0; index < count; ++index)
    {
        Endpoint::Content content = describeEndpoint(devices[index], flow);
        content.roles = rolesOf(content.id, listing.defaults[static_cast<std::size_t>(flow)]);
        addListedValues(devices[index], content);
        listing.endpoints.push_back({devices[index], Endpoint(std::move(content))});
    }
}

/// Why there is no enumerator, if there is none now either.
void explainMissingEnumerator(Judge judge)
{
    IMMDeviceEnumerator* enumerator = nullptr;
    HRESULT result = interfacequery::createEnumerator(enumerator);
    const COMPtr<IMMDeviceEnumerator>::pointer holder(enumerator);
    if (SUCCEEDED(result)) // it was refused a moment ago
        result = enumerator == nullptr ? E_POINTER : E_UNEXPECTED;
    judge.passes(result, "CoCreateInstance(MMDeviceEnumerator)");
}
}

Listing listEndpoints()
{
    Listing listing;
    const Judge judge(noObject(), listing.problems);
    const Enumerator enumerator;
    if (!enumerator.isInitialized())
    {
        explainMissingEnumerator(judge);
        return listing;
    }
    listing.defaults = readDefaults(*enumerator.enumerator(), judge);
    for (const Flow flow : allFlows)
        listFlow(enumerator, flow, listing);
    return listing;
}

Endpoint::Content describeEndpoint(AudioDevice& device, Flow flow)
{
    const AudioDeviceInterface::Properties& properties = device.deviceProperty();
    Endpoint::Content content;
    content.id = EndpointId(properties.deviceId.toUtf8());
    content.flow = flow;
    content.description = textOrNothing(properties.endpointType);
    content.interfaceName = textOrNothing(properties.friendlyName);
    content.format = formatOf(properties.format);
    content.directSoundId = guidOrNothing(properties.directSoundGuid);
    content.driverNode = textOrNothing(properties.driverNodeStrongName);
    content.instancePath = textOrNothing(properties.instancePath);
    if (const std::optional<Guid> type = guidOrNothing(properties.subType))
        content.jacks.emplace_back().type = type;
    askPlatform(device, content);
    return content;
}

std::optional<Flow> flowOf(EDataFlow flow)
{
    if (flow == eRender)
        return Flow::output;
    return flow == eCapture ? std::optional<Flow>(Flow::input) : std::nullopt;
}
}
