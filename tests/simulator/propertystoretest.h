/// @file
/// For tests of property stores.
#pragma once

#include "simulator/machine/propertykeys.h"
#include "tests/simulator/bench.h"

#include <string>
#include <vector>

namespace bench
{
/// A key that no machine has and that the platform does not compose.
inline constexpr PROPERTYKEY foreignKey = {{0x12345678, 0x1234, 0x1234, {1, 2, 3, 4, 5, 6, 7, 8}}, 9};

/// A variant that is cleared at its end.
class Variant
{
public:
    Variant() { PropVariantInit(&m_value); }
    ~Variant() { PropVariantClear(&m_value); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;

    PROPVARIANT* operator&() { return &m_value; }
    PROPVARIANT* operator->() { return &m_value; }

private:
    PROPVARIANT m_value;
};

inline PROPVARIANT blobOf(std::vector<BYTE>& bytes)
{
    PROPVARIANT value;
    PropVariantInit(&value);
    value.vt = VT_BLOB;
    value.blob.cbSize = static_cast<ULONG>(bytes.size());
    value.blob.pBlobData = bytes.data();
    return value;
}

/// Stores of the speaker.
class PropertyStoreTest : public SimulationTest
{
protected:
    Held<IPropertyStore> opened(DWORD access)
    {
        Held<IPropertyStore> store;
        EXPECT_EQ(S_OK, device(speakerId)->OpenPropertyStore(access, store.put()));
        return store;
    }

    void set(const PROPERTYKEY& key, const sim::PropertyValue& value)
    {
        simulation.change([&](sim::Machine& machine)
                          { sim::setProperty(machine.endpoint(speakerId)->properties, key, value); });
    }

    std::string textOf(const PROPERTYKEY& key)
    {
        Variant value;
        EXPECT_EQ(S_OK, opened(STGM_READ)->GetValue(key, &value));
        return value->vt == VT_LPWSTR ? sim::utf8(value->pwszVal) : "no text";
    }

    std::vector<BYTE> formatOf(const Held<IPropertyStore>& store)
    {
        Variant value;
        EXPECT_EQ(S_OK, store->GetValue(sim::keys::deviceFormat, &value));
        if (value->vt != VT_BLOB)
            return {};
        return std::vector<BYTE>(value->blob.pBlobData, value->blob.pBlobData + value->blob.cbSize);
    }
};
}
