#include "simulator/core/notifications.h"
#include "simulator/core/simulatedobject.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/objects/lookup.h"
#include "simulator/objects/objects.h"
#include "simulator/objects/propertyvalue.h"

#include <algorithm>

namespace sim
{
namespace
{
std::string textOf(const Properties& properties, const PROPERTYKEY& key)
{
    const PropertyValue* const value = findProperty(properties, key);
    return value == nullptr ? std::string() : value->text.value_or("");
}

/// What the platform composes if the machine does not have it: a device's full name, "Speakers (Analog Audio)". The
/// wave functions of Windows read it for every endpoint and require it.
PropertyValue composed(const Properties& properties, const PROPERTYKEY& key)
{
    if (!sameKey(key, keys::fullName))
        return {};
    return PropertyValue::ofText(textOf(properties, keys::deviceDescription) + " (" +
                                 textOf(properties, keys::friendlyName) + ")");
}

/// The properties of one device. A value of SetValue shows in all stores of the device at once; Commit changes nothing.
class PropertyStoreObject final : public ComObject<IPropertyStore>
{
public:
    PropertyStoreObject(const std::shared_ptr<State>& state, std::string deviceId, DWORD access)
        : ComObject(state, std::move(deviceId)),
          m_access(access)
    {
    }

    HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) override
    {
        return call("IPropertyStore::GetCount", outputs(count),
                    [&]() -> HRESULT
                    {
                        return read(
                            [&](const Properties& properties)
                            {
                                *count = static_cast<DWORD>(properties.size());
                                return S_OK;
                            });
                    });
    }

    HRESULT STDMETHODCALLTYPE GetAt(DWORD index, PROPERTYKEY* key) override
    {
        const auto answer = [&]() -> HRESULT
        {
            return read(
                [&](const Properties& properties)
                {
                    if (index >= properties.size())
                        return E_INVALIDARG;
                    *key = properties[index].key;
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
                [&](const Properties& properties)
                {
                    const PropertyValue* const found = findProperty(properties, key);
                    return store(found == nullptr ? composed(properties, key) : *found, *value);
                });
        };
        return call("IPropertyStore::GetValue", outputs(value), answer, key);
    }

    HRESULT STDMETHODCALLTYPE SetValue(REFPROPERTYKEY key, REFPROPVARIANT value) override
    {
        const auto answer = [&]() -> HRESULT
        {
            if (m_access == STGM_READ)
                return E_ACCESSDENIED;
            const std::optional<PropertyValue> copy = readVariant(value);
            if (!copy)
                return E_INVALIDARG;
            const HRESULT result = onDevice(*state(), name(),
                                            [&](Device& device)
                                            {
                                                changeProperty(device.properties, key, *copy);
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
                            return E_ACCESSDENIED;
                        return onDevice(*state(), name(), [](const Device&) { return S_OK; });
                    });
    }

private:
    /// Calls @p action with the machine's properties.
    template<class Action>
    HRESULT read(const Action& action)
    {
        return onDevice(*state(), name(), [&](const Device& device) -> HRESULT { return action(device.properties); });
    }

    HRESULT store(const PropertyValue& value, PROPVARIANT& variant) const
    {
        variant.vt = value.tag;
        if (value.tag == VT_LPWSTR)
        {
            return storeText("IPropertyStore::GetValue", value.text, &variant.pwszVal);
        }
        if (value.tag != VT_BLOB)
        {
            variant.ulVal = value.number;
            return S_OK;
        }
        variant.blob.cbSize = static_cast<ULONG>(value.bytes.size());
        if (value.bytes.empty())
            return S_OK;
        variant.blob.pBlobData = static_cast<BYTE*>(allocate("IPropertyStore::GetValue", value.bytes.size()));
        if (variant.blob.pBlobData == nullptr)
        {
            PropVariantInit(&variant);
            return E_OUTOFMEMORY;
        }
        std::copy(value.bytes.begin(), value.bytes.end(), variant.blob.pBlobData);
        return S_OK;
    }

    const DWORD m_access;
};
}

IPropertyStore* makePropertyStore(const std::shared_ptr<State>& state, std::string deviceId, DWORD access)
{
    return new PropertyStoreObject(state, std::move(deviceId), access);
}
}
