// Property stores of endpoints and adapters.
#include "platform/propertykeys.h"
#include "tests/conformity/fact.h"
#include "tests/conformity/results.h"
#include "tests/conformity/store.h"
#include "tests/conformity/system.h"

#include <vector>

namespace conformity
{
namespace
{
namespace keys = platform::propertykeys;

/// A key that no system has.
constexpr PROPERTYKEY unknownKey = {{0x2F1E0D3C, 0x4B5A, 0x6978, {0x87, 0x96, 0xA5, 0xB4, 0xC3, 0xD2, 0xE1, 0xF0}}, 77};

const char* const storeTests = "Wine's tests of the property store, run on Windows";

std::string tagText(VARTYPE tag)
{
    switch (tag)
    {
    case VT_EMPTY:
        return "VT_EMPTY";
    case VT_LPWSTR:
        return "VT_LPWSTR";
    case VT_UI4:
        return "VT_UI4";
    case VT_BLOB:
        return "VT_BLOB";
    case VT_CLSID:
        return "VT_CLSID";
    default:
        return "tag " + std::to_string(tag);
    }
}

void eachStore(System& system, const std::function<void(const EndpointInSystem&, IPropertyStore&)>& action)
{
    system.eachActive(
        [&](const EndpointInSystem& endpoint)
        {
            if (const Held<IPropertyStore> store = openedStore(*endpoint.device.get()))
                action(endpoint, *store.get());
        });
}

enum class Among
{
    allEndpoints,
    thoseOfAdapters, ///< that lead to an adapter: no document promises the property to others
};

/// Whether each active endpoint has the property with that tag.
std::function<Finding(System&)> hasTag(const PROPERTYKEY& key, VARTYPE tag, Among among = Among::allEndpoints)
{
    return [key, tag, among](System& system)
    {
        Observation observation;
        eachStore(system,
                  [&](const EndpointInSystem& endpoint, IPropertyStore& store)
                  {
                      if (among == Among::thoseOfAdapters && !system.adapter(endpoint))
                          return;
                      const Value value(store, key);
                      const std::string found =
                          FAILED(value.result()) ? resultName(value.result()) : tagText(value.tag());
                      observation.see(value.tag() == tag, found, endpoint.name);
                  });
        return observation.finding("no active endpoint that has to have it");
    };
}

Finding storesOpen(System& system)
{
    Observation observation;
    for (const EndpointInSystem& endpoint : system.endpoints())
    {
        Held<IPropertyStore> store;
        const HRESULT result = endpoint.device->OpenPropertyStore(STGM_READ, store.put());
        observation.see(result == S_OK, resultName(result), endpoint.name);
    }
    return observation.finding("no endpoint");
}

Finding writingNeedsRights(System& system)
{
    if (!system.isAdministrator())
        return {Verdict::notTried, "the account is unknown"};
    const HRESULT expected = *system.isAdministrator() ? S_OK : E_ACCESSDENIED;
    Observation observation;
    system.eachActive(
        [&](const EndpointInSystem& endpoint)
        {
            IPropertyStore* store = poison<IPropertyStore>();
            const HRESULT result = endpoint.device->OpenPropertyStore(STGM_READWRITE, &store);
            const bool isNull = FAILED(result) && store == nullptr;
            if (SUCCEEDED(result))
                store->Release();
            const std::string account = *system.isAdministrator() ? " for an administrator" : " for an ordinary user";
            const bool isRight = result == expected && (SUCCEEDED(result) || isNull);
            observation.see(isRight, resultName(result) + account, endpoint.name);
        });
    return observation.finding("no active endpoint");
}

Finding badAccess(System& system)
{
    Observation observation;
    system.eachActive(
        [&](const EndpointInSystem& endpoint)
        {
            Held<IPropertyStore> store;
            const HRESULT result = endpoint.device->OpenPropertyStore(3, store.put());
            observation.see(result == E_INVALIDARG, resultName(result), endpoint.name);
        });
    return observation.finding("no active endpoint");
}

Finding absentIsEmpty(System& system)
{
    Observation observation;
    eachStore(system,
              [&](const EndpointInSystem& endpoint, IPropertyStore& store)
              {
                  const Value value(store, unknownKey);
                  const std::string found = resultName(value.result()) + ", " + tagText(value.tag());
                  observation.see(found == "S_OK, VT_EMPTY", found, endpoint.name);
              });
    return observation.finding("no active endpoint");
}

Finding namesAreComposed(System& system)
{
    Observation observation;
    eachStore(system,
              [&](const EndpointInSystem& endpoint, IPropertyStore& store)
              {
                  const std::string full = Value(store, keys::fullName).text();
                  const std::string description = Value(store, keys::deviceDescription).text();
                  const std::string interfaceName = Value(store, keys::friendlyName).text();
                  const bool isRight = full == description + " (" + interfaceName + ")";
                  observation.see(isRight, isRight ? "description (interface name)" : "\"" + full + "\"",
                                  endpoint.name);
              });
    return observation.finding("no active endpoint");
}

Finding listAndValuesAgree(System& system)
{
    Observation observation;
    eachStore(system,
              [&](const EndpointInSystem& endpoint, IPropertyStore& store)
              {
                  DWORD count = 0;
                  store.GetCount(&count);
                  for (DWORD index = 0; index < count; ++index)
                  {
                      PROPERTYKEY key = {};
                      const HRESULT result = store.GetAt(index, &key);
                      const Value value(store, key);
                      const bool isRight = result == S_OK && SUCCEEDED(value.result());
                      observation.see(isRight, isRight ? "S_OK" : resultName(result), endpoint.name);
                  }
              });
    return observation.finding("no active endpoint");
}

/// The description in a store that is opened for it; empty if that fails.
std::string storedDescription(IMMDevice& device)
{
    const Held<IPropertyStore> store = openedStore(device);
    return store ? Value(*store.get(), keys::deviceDescription).text() : std::string();
}

HRESULT writeDescription(IPropertyStore& store, const std::string& description)
{
    std::vector<WCHAR> units = sim::utf16(description);
    PROPVARIANT value;
    PropVariantInit(&value);
    value.vt = VT_LPWSTR;
    value.pwszVal = units.data();
    return store.SetValue(keys::deviceDescription, value);
}

/// Changes the description of one endpoint, and puts it back.
Finding setShowsAtOnce(System& system)
{
    if (!system.mayChange())
        return {Verdict::notTried, "needs --change"};
    Observation observation;
    bool isTried = false;
    system.eachActive(
        [&](const EndpointInSystem& endpoint)
        {
            const std::string before = storedDescription(*endpoint.device.get());
            Held<IPropertyStore> store;
            if (isTried || before.empty() || FAILED(endpoint.device->OpenPropertyStore(STGM_READWRITE, store.put())) ||
                !store)
                return;
            isTried = true;
            const HRESULT result = writeDescription(*store.get(), before + "*");
            const bool isSeen = storedDescription(*endpoint.device.get()) == before + "*";
            writeDescription(*store.get(), before);
            store->Commit();
            observation.see(result == S_OK && isSeen, isSeen ? "at once" : resultName(result) + ", not seen",
                            endpoint.name);
        });
    return observation.finding("no store that can be written");
}

Finding adaptersHaveInstances(System& system)
{
    Observation observation;
    system.eachAdapter(
        [&](const std::string& id, IMMDevice& device, IDeviceTopology&)
        {
            const Held<IPropertyStore> store = openedStore(device);
            if (!store)
                return observation.see(false, "no store", id);
            const Value value(*store.get(), keys::instanceId);
            observation.see(value.tag() == VT_LPWSTR, tagText(value.tag()), id);
        });
    return observation.finding("no adapter");
}
}

Facts propertyFacts()
{
    return {
        {"Every endpoint's property store opens for reading", "S_OK",
         "Microsoft's documentation of IMMDevice::OpenPropertyStore", storesOpen},
        {"A store opens for writing for administrators only", "S_OK or E_ACCESSDENIED by account",
         "Microsoft's documentation of IMMDevice::OpenPropertyStore", writingNeedsRights},
        {"A store is opened with an access mode that does not exist", "E_INVALIDARG",
         "Microsoft's documentation of IMMDevice::OpenPropertyStore", badAccess},
        {"A property that is absent", "S_OK, VT_EMPTY", "Microsoft's documentation of IPropertyStore::GetValue",
         absentIsEmpty},
        {"Each property that the store lists can be read", "S_OK", "Microsoft's documentation of IPropertyStore",
         listAndValuesAgree},
        {"An endpoint has a description", "VT_LPWSTR", "Microsoft's documentation of PKEY_Device_DeviceDesc",
         hasTag(keys::deviceDescription, VT_LPWSTR)},
        {"An endpoint has a name", "VT_LPWSTR", "Microsoft's documentation of PKEY_Device_FriendlyName",
         hasTag(keys::fullName, VT_LPWSTR)},
        {"An endpoint's name is made of two others", "description (interface name)", storeTests, namesAreComposed},
        {"An endpoint has the path of its device interface", "VT_LPWSTR", storeTests,
         hasTag(keys::interfacePath, VT_LPWSTR)},
        {"An endpoint has a form factor", "VT_UI4", "Microsoft's documentation of PKEY_AudioEndpoint_FormFactor",
         hasTag(keys::formFactor, VT_UI4)},
        {"An endpoint has a kind of jack", "VT_LPWSTR", "Microsoft's documentation of PKEY_AudioEndpoint_JackSubType",
         hasTag(keys::jackSubType, VT_LPWSTR, Among::thoseOfAdapters)},
        {"An endpoint has an association", "VT_LPWSTR", "Microsoft's documentation of PKEY_AudioEndpoint_Association",
         hasTag(keys::association, VT_LPWSTR, Among::thoseOfAdapters)},
        {"An endpoint belongs to a container", "VT_CLSID", "Microsoft's documentation of container ids",
         hasTag(keys::containerId, VT_CLSID, Among::thoseOfAdapters)},
        {"An adapter has a device instance id", "VT_LPWSTR", "NAudio issue 508", adaptersHaveInstances},
        {"SetValue shows in other stores at once", "at once",
         "inferred from Wine's tests of the property store, run on Windows, which read without Commit", setShowsAtOnce},
    };
}
}
