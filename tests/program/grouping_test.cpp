#include "simulator/machine/propertykeys.h"
#include "tests/program/programtest.h"
#include "tests/simulator/held.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <optional>
#include <set>

namespace
{
using bench::Held;
using nlohmann::json;

using Group = std::set<std::string>;
using Partition = std::set<Group>;

template<class I>
const IID& idOf()
{
    return sim::InterfaceTraits<I>::iid();
}

/// How a program that knows nothing of the library groups endpoints: by the instance ids of their adapters. cubeb asks
/// in this order.
class Grouping : public support::ProgramTest, public testing::WithParamInterface<const char*>
{
protected:
    /// The instance id of the adapter that the endpoint's first connector leads to; no value if a call fails.
    static std::optional<std::string> adapterInstance(const Held<IMMDeviceEnumerator>& enumerator,
                                                      const Held<IMMDevice>& endpoint)
    {
        Held<IDeviceTopology> topology;
        Held<IConnector> connector;
        LPWSTR adapterId = nullptr;
        Held<IMMDevice> adapter;
        Held<IPropertyStore> store;
        if (FAILED(endpoint->Activate(idOf<IDeviceTopology>(), CLSCTX_INPROC_SERVER, nullptr, topology.putVoid())) ||
            FAILED(topology->GetConnector(0, connector.put())) ||
            FAILED(connector->GetDeviceIdConnectedTo(&adapterId)) || adapterId == nullptr)
            return std::nullopt;
        const HRESULT found = enumerator->GetDevice(adapterId, adapter.put());
        CoTaskMemFree(adapterId);
        if (FAILED(found) || FAILED(adapter->OpenPropertyStore(STGM_READ, store.put())))
            return std::nullopt;
        return textIn(store, sim::keys::instanceId);
    }

    static std::optional<std::string> textIn(const Held<IPropertyStore>& store, const PROPERTYKEY& key)
    {
        PROPVARIANT value;
        PropVariantInit(&value);
        std::optional<std::string> text;
        if (SUCCEEDED(store->GetValue(key, &value)) && value.vt == VT_LPWSTR)
            text = sim::utf8(value.pwszVal);
        PropVariantClear(&value);
        return text;
    }

    /// Whether the endpoint has the property by which the library groups: "{1}.HDAUDIO\\...".
    static bool hasInstancePath(const Held<IMMDevice>& endpoint)
    {
        Held<IPropertyStore> store;
        if (FAILED(endpoint->OpenPropertyStore(STGM_READ, store.put())))
            return false;
        return textIn(store, sim::keys::instancePath).value_or("").substr(0, 4) == "{1}.";
    }

    /// The groups of all endpoints whose adapters can be read and that have an instance path: some of the broken
    /// machine do not.
    static Partition byAdapter()
    {
        const sim::Simulation simulation(sim::findMachine(GetParam()));
        const CLSID enumeratorClass = {0xBCDE0395, 0xE52F, 0x467C, {0x8E, 0x3D, 0xC4, 0x57, 0x92, 0x91, 0x69, 0x2E}};
        Held<IMMDeviceEnumerator> enumerator;
        Held<IMMDeviceCollection> endpoints;
        UINT count = 0;
        EXPECT_EQ(S_OK, CoCreateInstance(enumeratorClass, nullptr, CLSCTX_INPROC_SERVER, idOf<IMMDeviceEnumerator>(),
                                         enumerator.putVoid()));
        EXPECT_EQ(S_OK, enumerator->EnumAudioEndpoints(eAll, DEVICE_STATEMASK_ALL, endpoints.put()));
        EXPECT_EQ(S_OK, endpoints->GetCount(&count));
        std::map<std::string, Group> groups;
        for (UINT index = 0; index < count; ++index)
        {
            Held<IMMDevice> endpoint;
            EXPECT_EQ(S_OK, endpoints->Item(index, endpoint.put()));
            const std::optional<std::string> instance = adapterInstance(enumerator, endpoint);
            if (instance && hasInstancePath(endpoint))
                groups[*instance].insert(bench::textOf(endpoint, &IMMDevice::GetId));
        }
        Partition result;
        for (const auto& [instance, group] : groups)
            result.insert(group);
        enumerator.reset();
        endpoints.reset();
        EXPECT_EQ(sim::Census(), simulation.census());
        return result;
    }

    /// The library's cards, as far as they contain endpoints of @p known.
    Partition byCard(const Group& known)
    {
        Partition result;
        const json document = json::parse(call({"list", "--json", "--machine", GetParam()}).out);
        for (const json& card : document["cards"])
        {
            Group group;
            for (const json& endpoint : card["endpoints"])
            {
                if (known.count(endpoint["id"]) != 0)
                    group.insert(endpoint["id"]);
            }
            if (!group.empty())
                result.insert(group);
        }
        return result;
    }
};
}

TEST_P(Grouping, ByTheInstancesOfTheAdaptersIsThatOfTheLibrarysCards)
{
    const Partition groups = byAdapter();

    Group known;
    for (const Group& group : groups)
        known.insert(group.begin(), group.end());
    // Machines without adapters have nothing to group by: empty, remote-desktop and virtual.
    EXPECT_EQ(sim::findMachine(GetParam()).adapters.empty(), known.empty());
    EXPECT_EQ(byCard(known), groups);
}

INSTANTIATE_TEST_SUITE_P(MachinesThatShip, Grouping,
                         testing::Values("desktop", "laptop", "studio", "crowded", "broken", "empty", "laptop-user",
                                         "published", "remote-desktop", "bluetooth", "virtual", "waking"),
                         [](const testing::TestParamInfo<const char*>& machine)
                         {
                             std::string name = machine.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });
