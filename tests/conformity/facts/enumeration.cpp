// Collections of endpoints and default endpoints.
#include "tests/conformity/fact.h"
#include "tests/conformity/results.h"
#include "tests/conformity/system.h"

namespace conformity
{
namespace
{
const char* const enumeratorTests = "Wine's tests of the enumerator, run on Windows";

/// The result of EnumAudioEndpoints in words, and whether it stored null.
std::string listed(System& system, EDataFlow flow, DWORD mask)
{
    IMMDeviceCollection* collection = poison<IMMDeviceCollection>();
    const HRESULT result = system.enumerator().EnumAudioEndpoints(flow, mask, &collection);
    if (SUCCEEDED(result))
        collection->Release();
    return resultName(result) + (SUCCEEDED(result) ? "" : collection == nullptr ? ", null" : ", not null");
}

Finding itemPastTheEnd(System& system)
{
    Held<IMMDeviceCollection> collection;
    system.enumerator().EnumAudioEndpoints(eAll, DEVICE_STATEMASK_ALL, collection.put());
    UINT count = 0;
    if (!collection || FAILED(collection->GetCount(&count)))
        return {Verdict::notTried, "no collection"};
    IMMDevice* device = poison<IMMDevice>();
    const HRESULT result = collection->Item(count, &device);
    return compared(resultName(result) + (device == nullptr ? ", null" : ", not null"), "E_INVALIDARG, null");
}

Finding masksFilter(System& system)
{
    Observation observation;
    for (const EDataFlow flow : {eRender, eCapture})
    {
        for (const DWORD mask : {DWORD(DEVICE_STATE_ACTIVE), DWORD(DEVICE_STATE_DISABLED),
                                 DWORD(DEVICE_STATE_NOTPRESENT), DWORD(DEVICE_STATE_UNPLUGGED)})
        {
            std::size_t expected = 0;
            for (const EndpointInSystem& endpoint : system.endpoints())
                expected += endpoint.flow == flow && endpoint.state == mask ? 1 : 0;
            Held<IMMDeviceCollection> collection;
            UINT count = 0;
            system.enumerator().EnumAudioEndpoints(flow, mask, collection.put());
            if (collection)
                collection->GetCount(&count);
            observation.see(count == expected, count == expected ? "the same" : std::to_string(count) + " endpoints");
        }
    }
    return observation.finding("");
}

std::string defaultOf(System& system, EDataFlow flow, ERole role)
{
    IMMDevice* device = poison<IMMDevice>();
    const HRESULT result = system.enumerator().GetDefaultAudioEndpoint(flow, role, &device);
    if (SUCCEEDED(result))
        device->Release();
    return resultName(result) + (SUCCEEDED(result) ? "" : device == nullptr ? ", null" : ", not null");
}

Finding defaultsAreActive(System& system)
{
    Observation observation;
    for (const EDataFlow flow : {eRender, eCapture})
    {
        for (const ERole role : {eConsole, eMultimedia, eCommunications})
        {
            Held<IMMDevice> device;
            DWORD state = 0;
            if (FAILED(system.enumerator().GetDefaultAudioEndpoint(flow, role, device.put())))
                continue;
            device->GetState(&state);
            const bool isActive = state == DEVICE_STATE_ACTIVE;
            observation.see(isActive, isActive ? "active" : "state " + std::to_string(state));
        }
    }
    return observation.finding("no default endpoint");
}

Finding noActiveNoDefault(System& system)
{
    Observation observation;
    for (const EDataFlow flow : {eRender, eCapture})
    {
        bool isAnyActive = false;
        system.eachActive([&](const EndpointInSystem& endpoint) { isAnyActive |= endpoint.flow == flow; });
        const std::string found = isAnyActive ? std::string() : defaultOf(system, flow, eConsole);
        if (!isAnyActive)
            observation.see(found == "E_NOTFOUND, null", found);
    }
    return observation.finding("both flows have an active endpoint");
}

Finding flowsAgreeWithIds(System& system)
{
    Observation observation;
    for (const EndpointInSystem& endpoint : system.endpoints())
    {
        const std::string expected = endpoint.flow == eRender ? "{0.0.0." : "{0.0.1.";
        const std::string found = endpoint.id.substr(0, expected.size());
        observation.see(found == expected, found, endpoint.name);
    }
    return observation.finding("no endpoint");
}
}

Facts enumerationFacts()
{
    return {
        {"EnumAudioEndpoints of a flow that does not exist", "E_INVALIDARG, null", enumeratorTests,
         [](System& system)
         { return compared(listed(system, static_cast<EDataFlow>(-1), DEVICE_STATE_ACTIVE), "E_INVALIDARG, null"); }},
        {"EnumAudioEndpoints with an unknown bit in the mask", "E_INVALIDARG, null", enumeratorTests,
         [](System& system) { return compared(listed(system, eAll, DEVICE_STATEMASK_ALL + 1), "E_INVALIDARG, null"); }},
        {"EnumAudioEndpoints without a place for the collection", "E_POINTER", enumeratorTests,
         [](System& system)
         {
             const HRESULT result = system.enumerator().EnumAudioEndpoints(eAll, DEVICE_STATEMASK_ALL, nullptr);
             return compared(resultName(result), "E_POINTER");
         }},
        {"Item past the end of a collection", "E_INVALIDARG, null", enumeratorTests, itemPastTheEnd},
        {"A mask of states and a flow list just the endpoints of that flow in these states", "the same",
         "Microsoft's documentation of IMMDeviceEnumerator::EnumAudioEndpoints", masksFilter},
        {"The id of an endpoint begins with its flow", "{0.0.0. of an output, {0.0.1. of an input",
         "endpoint ids that programs have printed", flowsAgreeWithIds},
        {"The default endpoint of both flows together", "E_INVALIDARG, null",
         "Microsoft's documentation of IMMDeviceEnumerator::GetDefaultAudioEndpoint",
         [](System& system) { return compared(defaultOf(system, eAll, eConsole), "E_INVALIDARG, null"); }},
        {"The default endpoint of a role that does not exist", "E_INVALIDARG, null",
         "Microsoft's documentation of IMMDeviceEnumerator::GetDefaultAudioEndpoint",
         [](System& system)
         { return compared(defaultOf(system, eRender, static_cast<ERole>(-1)), "E_INVALIDARG, null"); }},
        {"A default endpoint is active", "active", "Microsoft's documentation of IMMDeviceEnumerator",
         defaultsAreActive},
        {"A flow without an active endpoint has no default", "E_NOTFOUND, null",
         "Microsoft's documentation of IMMDeviceEnumerator::GetDefaultAudioEndpoint", noActiveNoDefault},
    };
}
}
