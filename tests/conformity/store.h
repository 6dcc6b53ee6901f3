/// @file
/// Property stores and the values in them.
#pragma once

#include "tests/conformity/held.h"

#include <string>

namespace conformity
{
/// The store of @p device, open for reading; empty if that is refused.
inline Held<IPropertyStore> openedStore(IMMDevice& device)
{
    Held<IPropertyStore> store;
    device.OpenPropertyStore(STGM_READ, store.put());
    return store;
}

/// One value, freed by itself.
class Value
{
public:
    Value(IPropertyStore& store, REFPROPERTYKEY key)
    {
        PropVariantInit(&m_value);
        m_result = store.GetValue(key, &m_value);
    }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { PropVariantClear(&m_value); }

    HRESULT result() const { return m_result; }
    VARTYPE tag() const { return m_value.vt; }
    bool isEmpty() const { return m_value.vt == VT_EMPTY; }
    const PROPVARIANT& variant() const { return m_value; }
    /// Empty if the value is no string.
    std::string text() const
    {
        return m_value.vt == VT_LPWSTR && m_value.pwszVal != nullptr ? sim::utf8(m_value.pwszVal) : std::string();
    }

private:
    PROPVARIANT m_value;
    HRESULT m_result = E_FAIL;
};
}
