#include "tests/support/questionsdevice.h"

#include "simulator/machine/identity.h"
#include "simulator/machine/propertykeys.h"

#include <array>
#include <vector>

namespace support
{
namespace
{
/// Interfaces of other devices, of other Windows, and of nothing.
constexpr std::array<GUID, 4> unusualInterfaces = {
    {{0x66E11784, 0xF695, 0x4F28, {0xA5, 0x05, 0xA7, 0x08, 0x00, 0x81, 0xA7, 0x8F}},
     {0xBFA971F1, 0x4D5E, 0x40BB, {0x93, 0x5E, 0x96, 0x70, 0x39, 0xBF, 0xBE, 0xE4}},
     {0x77AA99A0, 0x1BD6, 0x484F, {0x8B, 0xC7, 0x2C, 0x65, 0x4C, 0x9A, 0x9B, 0x6F}},
     {0xB5E3C9A2, 0x3C44, 0x4F2D, {0x8E, 0x6B, 0x0C, 0x61, 0x7F, 0x0D, 0x9A, 0x01}}}};

/// No device has it.
constexpr PROPERTYKEY absentKey = {{0xB5E3C9A2, 0x3C44, 0x4F2D, {0x8E, 0x6B, 0x0C, 0x61, 0x7F, 0x0D, 0x9A, 0x02}}, 77};

template<class I>
bench::Held<I> activate(Notes& notes, const std::string& name, IMMDevice& device, const IID& iid)
{
    bench::Held<I> object;
    const HRESULT result = device.Activate(iid, CLSCTX_ALL, nullptr, object.putVoid());
    notes.addObject(callText("IMMDevice::Activate", answerText(iid)), name, result, object);
    return object;
}

template<class I>
bench::Held<I> activate(Notes& notes, const std::string& name, IMMDevice& device)
{
    return activate<I>(notes, name, device, sim::InterfaceTraits<I>::iid());
}

void askFlow(Notes& notes, const std::string& name, IMMDevice& device)
{
    bench::Held<IMMEndpoint> endpoint;
    const HRESULT result = device.QueryInterface(sim::InterfaceTraits<IMMEndpoint>::iid(), endpoint.putVoid());
    if (!notes.addObject("QueryInterface(IMMEndpoint)", name, result, endpoint))
        return;
    EDataFlow flow = eAll;
    notes.add("IMMEndpoint::GetDataFlow", name, endpoint->GetDataFlow(&flow), flow);
}

void askStores(Notes& notes, const std::string& name, IMMDevice& device, std::set<std::string>& instances)
{
    bool isRead = false;
    for (const DWORD access : {DWORD(STGM_READ), DWORD(STGM_READWRITE), DWORD(STGM_WRITE), DWORD(STGM_READWRITE) + 1})
    {
        bench::Held<IPropertyStore> store;
        const HRESULT result = device.OpenPropertyStore(access, store.put());
        const bool isOpen =
            notes.addObject(callText("IMMDevice::OpenPropertyStore", answerText(access)), name, result, store);
        if (isOpen && !isRead && access != STGM_WRITE)
            askStore(notes, name, *store.get(), instances);
        isRead = isRead || isOpen;
    }
}

void askFurtherInterfaces(Notes& notes, const std::string& name, IMMDevice& device)
{
    activate<IBaseFilter>(notes, name, device);
    activate<IUnknown>(notes, name, device);
    activate<IMMDevice>(notes, name, device);
    activate<IPropertyStore>(notes, name, device);
    activate<ISimpleAudioVolume>(notes, name, device);
    activate<IPart>(notes, name, device);
    for (const IID& iid : unusualInterfaces)
        activate<IUnknown>(notes, name, device, iid);
}

std::vector<PROPERTYKEY> listedKeys(Notes& notes, const std::string& name, IPropertyStore& store)
{
    DWORD count = 0;
    std::vector<PROPERTYKEY> keys;
    if (!notes.add("IPropertyStore::GetCount", name, store.GetCount(&count), count))
        count = 0;
    for (DWORD index = 0; index <= believable(count); ++index)
    {
        PROPERTYKEY key = {};
        if (notes.add(callText("IPropertyStore::GetAt", answerText(index)), name, store.GetAt(index, &key), key))
            keys.push_back(key);
    }
    return keys;
}

std::vector<PROPERTYKEY> keysToAsk(const std::vector<PROPERTYKEY>& listed)
{
    std::vector<PROPERTYKEY> keys = listed;
    for (const auto& named : sim::keyNames)
        keys.push_back(named.value);
    keys.push_back(absentKey);
    return keys;
}

void noteInstances(const PROPERTYKEY& key, const PROPVARIANT& value, std::set<std::string>& instances)
{
    if (value.vt != VT_LPWSTR || value.pwszVal == nullptr)
        return;
    const std::string text = sim::utf8(value.pwszVal);
    if (answerText(key) == answerText(sim::keys::instancePath))
        instances.insert(sim::instanceOfPath(text));
    if (answerText(key) == answerText(sim::keys::instanceId))
        instances.insert(text);
}
}

void askStore(Notes& notes, const std::string& name, IPropertyStore& store, std::set<std::string>& instances)
{
    std::set<std::string> asked;
    for (const PROPERTYKEY& key : keysToAsk(listedKeys(notes, name, store)))
    {
        if (!asked.insert(answerText(key)).second)
            continue;
        PROPVARIANT value;
        PropVariantInit(&value);
        const HRESULT result = store.GetValue(key, &value);
        if (notes.add(callText("IPropertyStore::GetValue", answerText(key)), name, result, value))
            noteInstances(key, value, instances);
        PropVariantClear(&value);
    }
}

bench::Held<IDeviceTopology> askDevice(Notes& notes, const std::string& name, IMMDevice& device,
                                       std::set<std::string>& instances)
{
    DWORD state = 0;
    notes.add("IMMDevice::GetState", name, device.GetState(&state), state);
    askFlow(notes, name, device);
    askStores(notes, name, device, instances);
    const auto volume = activate<IAudioEndpointVolume>(notes, name, device);
    if (volume.get() != nullptr)
        askEndpointVolume(notes, name, *volume.get());
    const auto client = activate<IAudioClient>(notes, name, device);
    if (client.get() != nullptr)
        askAudioClient(notes, name, client);
    activate<IAudioClient2>(notes, name, device);
    activate<IAudioClient3>(notes, name, device);
    const auto meter = activate<IAudioMeterInformation>(notes, name, device);
    if (meter.get() != nullptr)
        askMeter(notes, name, *meter.get());
    askFurtherInterfaces(notes, name, device);
    return activate<IDeviceTopology>(notes, name, device);
}
}
