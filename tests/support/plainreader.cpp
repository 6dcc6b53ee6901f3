#include "tests/support/plainreader.h"

#include "OSWindows/configmanager.h"
#include "simulator/machine/identity.h"
#include "simulator/machine/propertykeys.h"
#include "tests/simulator/held.h"

#include <set>
#include <string>
#include <vector>

namespace support
{
namespace
{
std::string heldText(HRESULT result, LPWSTR text)
{
    return SUCCEEDED(result) && text != nullptr ? bench::taken(text) : std::string();
}

std::string partId(IPart* part)
{
    LPWSTR text = nullptr;
    if (part == nullptr)
        return {};
    const HRESULT result = part->GetGlobalId(&text);
    return heldText(result, text);
}

/// Reads each thing once, in the order in which it meets them.
class PlainReader
{
public:
    explicit PlainReader(IMMDeviceEnumerator& enumerator) : m_enumerator(enumerator) {}

    void read()
    {
        readEndpoints();
        while (!m_deviceIds.empty())
        {
            const std::string id = *m_deviceIds.begin();
            m_deviceIds.erase(m_deviceIds.begin());
            bench::Held<IMMDevice> device;
            if (SUCCEEDED(m_enumerator.GetDevice(bench::Wide(id), device.put())))
                readDevice(*device.get());
        }
        readDefaults();
        readWaveDevices();
        for (std::string instance : m_instances)
            readParents(instance);
    }

private:
    void readEndpoints()
    {
        bench::Held<IMMDeviceCollection> list;
        UINT count = 0;
        m_enumerator.EnumAudioEndpoints(eAll, DEVICE_STATEMASK_ALL, list.put());
        list->GetCount(&count);
        for (UINT index = 0; index < count; ++index)
        {
            bench::Held<IMMDevice> device;
            list->Item(index, device.put());
            EDataFlow flow = eAll;
            device.as<IMMEndpoint>()->GetDataFlow(&flow);
            readDevice(*device.get());
        }
    }

    void readDevice(IMMDevice& device)
    {
        LPWSTR text = nullptr;
        DWORD state = 0;
        const HRESULT result = device.GetId(&text);
        m_read.insert(heldText(result, text));
        device.GetState(&state);
        readStore(device);
        if (const auto volume = activated<IAudioEndpointVolume>(device); volume.get() != nullptr)
            readVolume(*volume.get());
        if (const auto client = activated<IAudioClient>(device); client.get() != nullptr)
            readClient(*client.get());
        activated<IAudioMeterInformation>(device);
        activated<IBaseFilter>(device);
        if (const auto topology = activated<IDeviceTopology>(device); topology.get() != nullptr)
            readTopology(*topology.get());
    }

    template<class I>
    static bench::Held<I> activated(IMMDevice& device)
    {
        bench::Held<I> object;
        device.Activate(sim::InterfaceTraits<I>::iid(), CLSCTX_ALL, nullptr, object.putVoid());
        return object;
    }

    void readStore(IMMDevice& device)
    {
        bench::Held<IPropertyStore> store;
        DWORD count = 0;
        if (FAILED(device.OpenPropertyStore(STGM_READ, store.put())))
            return;
        store->GetCount(&count);
        for (DWORD index = 0; index < count; ++index)
        {
            PROPERTYKEY key = {};
            PROPVARIANT value;
            PropVariantInit(&value);
            store->GetAt(index, &key);
            store->GetValue(key, &value);
            noteInstance(key, value);
            PropVariantClear(&value);
        }
    }

    void noteInstance(const PROPERTYKEY& key, const PROPVARIANT& value)
    {
        if (value.vt != VT_LPWSTR || value.pwszVal == nullptr)
            return;
        const std::string name = sim::keyText(key);
        if (name == "instancePath")
            m_instances.insert(sim::instanceOfPath(sim::utf8(value.pwszVal)));
        if (name == "instanceId")
            m_instances.insert(sim::utf8(value.pwszVal));
    }

    static void readVolume(IAudioEndpointVolume& volume)
    {
        UINT count = 0;
        UINT step = 0;
        float values[3] = {};
        BOOL isMuted = FALSE;
        DWORD support = 0;
        volume.GetVolumeRange(&values[0], &values[1], &values[2]);
        volume.GetMasterVolumeLevel(&values[0]);
        volume.GetMasterVolumeLevelScalar(&values[0]);
        volume.GetMute(&isMuted);
        volume.QueryHardwareSupport(&support);
        volume.GetVolumeStepInfo(&step, &count);
        volume.GetChannelCount(&count);
        for (UINT channel = 0; channel < count; ++channel)
        {
            volume.GetChannelVolumeLevel(channel, &values[0]);
            volume.GetChannelVolumeLevelScalar(channel, &values[0]);
        }
    }

    static void readClient(IAudioClient& client)
    {
        WAVEFORMATEX* format = nullptr;
        REFERENCE_TIME periods[2] = {};
        if (SUCCEEDED(client.GetMixFormat(&format)))
            CoTaskMemFree(format);
        client.GetDevicePeriod(&periods[0], &periods[1]);
    }

    void readTopology(IDeviceTopology& topology)
    {
        std::vector<bench::Held<IPart>> connectors;
        UINT count = 0;
        LPWSTR text = nullptr;
        const HRESULT result = topology.GetDeviceId(&text);
        heldText(result, text);
        topology.GetConnectorCount(&count);
        for (UINT index = 0; index < count; ++index)
        {
            bench::Held<IConnector> connector;
            topology.GetConnector(index, connector.put());
            readConnector(*connector.get());
            connectors.push_back(connector.as<IPart>());
            readPart(*connectors.back().get());
            readJacks<IKsJackDescription>(*connectors.back().get());
            readJacks<IKsJackDescription2>(*connectors.back().get());
        }
        topology.GetSubunitCount(&count);
        for (UINT index = 0; index < count; ++index)
        {
            bench::Held<ISubunit> subunit;
            topology.GetSubunit(index, subunit.put());
            readPart(*subunit.as<IPart>().get());
        }
        readSignalPaths(topology, connectors);
    }

    void readConnector(IConnector& connector)
    {
        ConnectorType type = Unknown_Connector;
        DataFlow flow = In;
        BOOL isConnected = FALSE;
        LPWSTR text = nullptr;
        connector.GetType(&type);
        connector.GetDataFlow(&flow);
        connector.IsConnected(&isConnected);
        if (isConnected == FALSE)
            return;
        const HRESULT named = connector.GetDeviceIdConnectedTo(&text);
        const std::string id = heldText(named, text);
        if (!id.empty() && m_read.insert(id).second)
            m_deviceIds.insert(id);
        text = nullptr;
        const HRESULT joined = connector.GetConnectorIdConnectedTo(&text);
        heldText(joined, text);
        bench::Held<IConnector> peer;
        connector.GetConnectedTo(peer.put());
    }

    static void readPart(IPart& part)
    {
        LPWSTR text = nullptr;
        UINT number = 0;
        GUID subType = {};
        PartType type = Connector;
        partId(&part);
        const HRESULT named = part.GetName(&text);
        heldText(named, text);
        part.GetLocalId(&number);
        part.GetPartType(&type);
        part.GetSubType(&subType);
        readControls(part);
        bench::Held<IPartsList> incoming;
        bench::Held<IPartsList> outgoing;
        part.EnumPartsIncoming(incoming.put());
        part.EnumPartsOutgoing(outgoing.put());
        readList(incoming.get());
        readList(outgoing.get());
    }

    static void readControls(IPart& part)
    {
        UINT count = 0;
        part.GetControlInterfaceCount(&count);
        for (UINT index = 0; index < count; ++index)
        {
            bench::Held<IControlInterface> control;
            LPWSTR text = nullptr;
            IID iid = {};
            part.GetControlInterface(index, control.put());
            const HRESULT named = control->GetName(&text);
            heldText(named, text);
            control->GetIID(&iid);
            readControl(part, iid);
        }
    }

    static void readControl(IPart& part, const IID& iid)
    {
        bench::Held<IUnknown> control;
        part.Activate(CLSCTX_ALL, iid, control.putVoid());
        if (control.get() == nullptr)
            return;
        BOOL isMuted = FALSE;
        UINT count = 0;
        if (const auto mute = control.as<IAudioMute>(); mute.get() != nullptr)
            mute->GetMute(&isMuted);
        if (const auto selector = control.as<IAudioInputSelector>(); selector.get() != nullptr)
            selector->GetSelection(&count);
        const auto level = control.as<IAudioVolumeLevel>();
        if (level.get() == nullptr)
            return;
        level->GetChannelCount(&count);
        for (UINT channel = 0; channel < count; ++channel)
        {
            float values[3] = {};
            level->GetLevelRange(channel, &values[0], &values[1], &values[2]);
            level->GetLevel(channel, &values[0]);
        }
    }

    template<class Jacks>
    static void readJacks(IPart& part)
    {
        bench::Held<Jacks> jacks;
        UINT count = 0;
        if (FAILED(part.Activate(CLSCTX_ALL, sim::InterfaceTraits<Jacks>::iid(), jacks.putVoid())))
            return;
        jacks->GetJackCount(&count);
        for (UINT index = 0; index < count; ++index)
            readJack(*jacks.get(), index);
    }

    static void readJack(IKsJackDescription& jacks, UINT index)
    {
        KSJACK_DESCRIPTION description = {};
        jacks.GetJackDescription(index, &description);
    }

    static void readJack(IKsJackDescription2& jacks, UINT index)
    {
        KSJACK_DESCRIPTION2 description = {};
        jacks.GetJackDescription2(index, &description);
    }

    /// Reads a list, if there is one.
    static void readList(IPartsList* list)
    {
        UINT count = 0;
        if (list != nullptr)
            list->GetCount(&count);
        for (UINT index = 0; index < count; ++index)
        {
            bench::Held<IPart> part;
            list->GetPart(index, part.put());
            partId(part.get());
        }
    }

    /// Whether a path that is found is mixed, a second question shows.
    static void readSignalPaths(IDeviceTopology& topology, const std::vector<bench::Held<IPart>>& connectors)
    {
        for (const bench::Held<IPart>& from : connectors)
        {
            for (const bench::Held<IPart>& to : connectors)
            {
                bench::Held<IPartsList> path;
                bench::Held<IPartsList> again;
                if (&from == &to || FAILED(topology.GetSignalPath(from.get(), to.get(), FALSE, path.put())))
                    continue;
                readList(path.get());
                topology.GetSignalPath(from.get(), to.get(), TRUE, again.put());
            }
        }
    }

    void readDefaults()
    {
        for (const EDataFlow flow : {eRender, eCapture})
        {
            for (const ERole role : {eConsole, eMultimedia, eCommunications})
            {
                bench::Held<IMMDevice> device;
                LPWSTR text = nullptr;
                if (FAILED(m_enumerator.GetDefaultAudioEndpoint(flow, role, device.put())))
                    continue;
                const HRESULT identified = device->GetId(&text);
                heldText(identified, text);
            }
        }
    }

    static void readWaveDevices()
    {
        const UINT outputs = waveOutGetNumDevs();
        for (UINT number = 0; number < outputs; ++number)
            readWaveDevice<HWAVEOUT>(number, waveOutMessage);
        const UINT inputs = waveInGetNumDevs();
        for (UINT number = 0; number < inputs; ++number)
            readWaveDevice<HWAVEIN>(number, waveInMessage);
    }

    template<class Handle>
    static void readWaveDevice(UINT number, MMRESULT(WINAPI* send)(Handle, UINT, DWORD_PTR, DWORD_PTR))
    {
        const auto handle = reinterpret_cast<Handle>(static_cast<DWORD_PTR>(number));
        DWORD_PTR bytes = 0;
        send(handle, DRV_QUERYFUNCTIONINSTANCEIDSIZE, reinterpret_cast<DWORD_PTR>(&bytes), 0);
        std::vector<WCHAR> id(bytes / sizeof(WCHAR) + 1);
        send(handle, DRV_QUERYFUNCTIONINSTANCEID, reinterpret_cast<DWORD_PTR>(id.data()), bytes);
    }

    void readParents(std::string instance)
    {
        qor::String parent;
        while (!instance.empty() && m_readInstances.insert(instance).second &&
               libOSWindows::ConfigManager::getParentDeviceInstanceId(qor::String::fromUtf8(instance), parent))
            instance = parent.toUtf8();
    }

    IMMDeviceEnumerator& m_enumerator;
    std::set<std::string> m_read;
    std::set<std::string> m_deviceIds;
    std::set<std::string> m_instances;
    std::set<std::string> m_readInstances;
};
}

void readPlainly(IMMDeviceEnumerator& enumerator)
{
    PlainReader(enumerator).read();
}
}
