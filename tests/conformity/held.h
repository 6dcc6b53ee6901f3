/// @file
/// References and strings that are released by themselves.
#pragma once

#include "simulator/core/interfaces.h"
#include "simulator/core/utf16.h"

#include <string>
#include <utility>
#include <vector>

namespace conformity
{
/// One counted reference, or none.
template<class I>
class Held
{
public:
    Held() = default;
    explicit Held(I* object) : m_object(object) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    Held(Held&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    Held& operator=(Held&& other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~Held()
    {
        if (m_object != nullptr)
            m_object->Release();
    }

    explicit operator bool() const { return m_object != nullptr; }
    I* operator->() const { return m_object; }
    I* get() const { return m_object; }
    /// For an out-parameter. The handle must be empty.
    I** put() { return &m_object; }
    void** putVoid() { return reinterpret_cast<void**>(&m_object); }

    /// The object's interface J; empty if it has none.
    template<class J>
    Held<J> as() const
    {
        Held<J> result;
        if (m_object != nullptr)
            m_object->QueryInterface(sim::InterfaceTraits<J>::iid(), result.putVoid());
        return result;
    }

private:
    I* m_object = nullptr;
};

/// A pointer that a call must overwrite with null.
template<class I>
I* poison()
{
    return reinterpret_cast<I*>(static_cast<DWORD_PTR>(0xDEAD0));
}

/// The string, whose task memory is freed; empty for null.
inline std::string taken(LPWSTR text)
{
    const std::string result = text == nullptr ? std::string() : sim::utf8(text);
    CoTaskMemFree(text);
    return result;
}

/// @p text in the platform's units, for as long as the full expression lasts.
class Wide
{
public:
    explicit Wide(const std::string& text) : m_units(sim::utf16(text)) {}
    operator const WCHAR*() const { return m_units.data(); }

private:
    std::vector<WCHAR> m_units;
};
}
