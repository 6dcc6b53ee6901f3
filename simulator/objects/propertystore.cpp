#include "simulator/core/composedproperties.h"
#include "simulator/core/notifications.h"
#include "simulator/core/simulatedobject.h"
#include "simulator/machine/namedvalues.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/objects/lookup.h"
#include "simulator/objects/objects.h"
#include "simulator/objects/propertyvalue.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace sim
{
namespace
{
/// What a store of an endpoint that is not present answers on some machines: ERROR_NO_SUCH_DEVINST of the setup
/// functions.
constexpr auto noSuchInstance = static_cast<HRESULT>(0xE000020B);

bool isName(const PROPERTYKEY& key)
{
    return sameKey(key, keys::deviceDescription) || sameKey(key, keys::friendlyName) || sameKey(key, keys::fullName);
}

/// Whether reading the names of @p device fails.
bool hidesNames(Hardware& hardware, const Device& device)
{
    return hardware.machine().notPresentNames == NotPresentNames::failing && device.state == stateNotPresent &&
           hardware.endpoint(device.id) == &device;
}

/// The properties of one device. A value of SetValue shows in all stores of the device at once; Commit changes nothing.
class PropertyStoreObject final : public ComObject<IPropertyStore>
{
public:
    PropertyStoreObject(const std::shared_ptr<State>& state, std::string deviceId, DWORD access)
        : ComObject(state, std::move(deviceId)),
          m_access(access),
          m_age(currentAge())
    {
    }

    HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) override
    {
        return call("IPropertyStore::GetCount", outputs(count),
                    [&]() -> HRESULT
                    {
                        return read(
                            [&](Hardware& hardware, const Device& device)
                            {
                                *count = static_cast<DWORD>(shownKeys(hardware, device).size());
                                return S_OK;
                            });
                    });
    }

    HRESULT STDMETHODCALLTYPE GetAt(DWORD index, PROPERTYKEY* key) override
    {
        const auto answer = [&]() -> HRESULT
        {
            return read(
                [&](Hardware& hardware, const Device& device)
                {
                    const std::vector<PROPERTYKEY> shown = shownKeys(hardware, device);
                    if (index >= shown.size())
                        return E_INVALIDARG;
                    *key = shown[index];
                    return S_OK;
                });
        };
        return call("IPropertyStore::GetAt", outputs(key), answer, index);
    }

    HRESULT STDMETHODCALLTYPE GetValue(REFPROPERTYKEY key, PROPVARIANT* value) override
    {
        const auto answer = [&]() -> HRESULT
        {
            PropVariantInit(value);
            return read(
                [&](Hardware& hardware, const Device& device)
                {
                    if (isName(key) && hidesNames(hardware, device))
                        return noSuchInstance;
                    if (const PropertyValue* const found = findProperty(device, key))
                        return store(*found, *value);
                    return store(composedProperty(hardware, device, key), *value);
                });
        };
        return call("IPropertyStore::GetValue", outputs(value), answer, key);
    }

    HRESULT STDMETHODCALLTYPE SetValue(REFPROPERTYKEY key, REFPROPVARIANT value) override
    {
        const auto answer = [&]() -> HRESULT
        {
            if (m_access == STGM_READ)
                return STG_E_ACCESSDENIED;
            const std::optional<PropertyValue> copy = readVariant(value);
            if (!copy)
                return E_INVALIDARG;
            const HRESULT result = onDevice(*state(), name(),
                                            [&](Device& device)
                                            {
                                                changeProperty(device, key, *copy);
                                                return S_OK;
                                            });
            if (SUCCEEDED(result))
                notifyPropertyChanged(state(), name(), key);
            return result;
        };
        return call("IPropertyStore::SetValue", outputs(), answer, key);
    }

    /// Writes nothing, as every value is written at once.
    HRESULT STDMETHODCALLTYPE Commit() override
    {
        return call("IPropertyStore::Commit", outputs(),
                    [&]() -> HRESULT
                    {
                        if (m_access == STGM_READ)
                            return STG_E_ACCESSDENIED;
                        return onDevice(*state(), name(), [](const Device&) { return S_OK; });
                    });
    }

private:
    /// Calls @p action with the hardware and the device.
    template<class Action>
    HRESULT read(const Action& action)
    {
        return state()->withHardware(
            [&](Hardware& hardware) -> HRESULT
            {
                const Device* const device = hardware.device(name());
                return device == nullptr ? AUDCLNT_E_DEVICE_INVALIDATED : action(hardware, *device);
            });
    }

    /// @p variant is empty. With a tag that has no value here it keeps its zeros.
    HRESULT store(const PropertyValue& value, PROPVARIANT& variant) const
    {
        variant.vt = value.tag;
        switch (value.tag)
        {
        case VT_LPWSTR:
            return storeText("IPropertyStore::GetValue", value.text, &variant.pwszVal);
        case VT_LPSTR:
            return value.text ? storeBytes(value.text->c_str(), value.text->size() + 1, variant, variant.pszVal) : S_OK;
        case VT_CLSID:
            return storeBytes(&value.guid, sizeof value.guid, variant, variant.puuid);
        case VT_BLOB:
            variant.blob.cbSize = static_cast<ULONG>(value.bytes.size());
            return storeBytes(value.bytes.data(), value.bytes.size(), variant, variant.blob.pBlobData);
        case VT_R4:
            variant.fltVal = value.real;
            return S_OK;
        case VT_R8:
            variant.dblVal = value.longReal;
            return S_OK;
        case VT_FILETIME:
            variant.filetime.dwLowDateTime = static_cast<DWORD>(value.number & 0xFFFFFFFF);
            variant.filetime.dwHighDateTime = static_cast<DWORD>(value.number >> 32);
            return S_OK;
        default:
            if (hasName(numberTagNames, value.tag))
                variant.uhVal.QuadPart = value.number;
            return S_OK;
        }
    }

    /// Stores a copy of the bytes in a member of @p variant; no memory for no bytes.
    template<class Member>
    HRESULT storeBytes(const void* bytes, std::size_t size, PROPVARIANT& variant, Member*& member) const
    {
        if (size == 0)
            return S_OK;
        void* const copy = allocate("IPropertyStore::GetValue", size);
        if (copy == nullptr)
        {
            PropVariantInit(&variant);
            return E_OUTOFMEMORY;
        }
        std::memcpy(copy, bytes, size);
        member = static_cast<Member*>(copy);
        return S_OK;
    }

    std::uint64_t currentAge() const
    {
        return state()->withHardware([&](const Hardware& hardware) { return hardware.storeAge(name()); });
    }

    /// As in other objects; but a store that was open during a remote logon or a change of driver refuses everything.
    template<class Outputs, class Body, class... Arguments>
    HRESULT call(const char* operation, const Outputs& outputs, const Body& body, const Arguments&... arguments)
    {
        const auto answer = [&]() -> HRESULT { return currentAge() == m_age ? body() : E_ACCESSDENIED; };
        return ComObject::call(operation, outputs, answer, arguments...);
    }

    const DWORD m_access;
    const std::uint64_t m_age;
};
}

IPropertyStore* makePropertyStore(const std::shared_ptr<State>& state, std::string deviceId, DWORD access)
{
    return new PropertyStoreObject(state, std::move(deviceId), access);
}
}
