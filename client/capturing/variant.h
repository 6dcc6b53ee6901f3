/// @file
/// Values of the platform's property stores as those of a machine.
#pragma once

#include "client/capturing/recorder.h"

namespace sonavit::capturing
{
/// A value that the platform stores; clear() frees it, and the destructor does so if nothing else has.
class Variant
{
public:
    Variant() { PropVariantInit(&m_value); }
    ~Variant() { clear(); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;

    PROPVARIANT* put() noexcept { return &m_value; }
    const PROPVARIANT& get() const noexcept { return m_value; }
    /// Forgets what was stored along with a failure.
    void forget() { PropVariantInit(&m_value); }
    /// S_OK for an empty value, without a call. The value is empty afterwards, even if the platform has failed.
    HRESULT clear()
    {
        const HRESULT result = m_value.vt == VT_EMPTY ? S_OK : PropVariantClear(&m_value);
        PropVariantInit(&m_value);
        return result;
    }

private:
    PROPVARIANT m_value;
};

/// A value as a machine has it.
struct RecordedValue
{
    sim::PropertyValue value;
    bool isWhole = true; ///< false: a machine can have the tag alone
};

RecordedValue recorded(const PROPVARIANT& variant);
}
