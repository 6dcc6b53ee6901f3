/// References and strings that are released automatically, for the tests of the simulated machine.
#pragma once

#include "simulator/core/interfaces.h"
#include "simulator/core/utf16.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace bench
{
/// A pointer that no call may leave behind where it must store null.
template<class I>
I* poison()
{
    return reinterpret_cast<I*>(std::uintptr_t{0xDEAD0});
}

/// One counted reference.
template<class I>
class Held
{
public:
    Held() = default;
    /// Adopts @p object.
    explicit Held(I* object) : m_object(object) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    Held(Held&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    Held& operator=(Held&& other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~Held() { reset(); }

    I* operator->() const { return m_object; }
    I* get() const { return m_object; }
    I** put()
    {
        reset();
        return &m_object;
    }
    void** putVoid() { return reinterpret_cast<void**>(put()); }
    void reset()
    {
        if (m_object != nullptr)
            std::exchange(m_object, nullptr)->Release();
    }

    /// The object's interface J; nothing where it has none.
    template<class J>
    Held<J> as() const
    {
        void* object = nullptr;
        m_object->QueryInterface(sim::InterfaceTraits<J>::iid(), &object);
        return Held<J>(static_cast<J*>(object));
    }

private:
    I* m_object = nullptr;
};

/// The string; its task memory is freed.
inline std::string taken(LPWSTR text)
{
    const std::string result = text == nullptr ? "null" : sim::utf8(text);
    CoTaskMemFree(text);
    return result;
}

/// The string that a getter such as IMMDevice::GetId stores.
template<class Object, class Getter>
std::string textOf(const Object& object, Getter getter)
{
    LPWSTR text = nullptr;
    EXPECT_EQ(S_OK, (object.get()->*getter)(&text));
    return taken(text);
}

/// @p text for as long as the full expression lasts.
class Wide
{
public:
    explicit Wide(const std::string& text) : m_units(sim::utf16(text)) {}
    operator const WCHAR*() const { return m_units.data(); }

private:
    std::vector<WCHAR> m_units;
};
}
