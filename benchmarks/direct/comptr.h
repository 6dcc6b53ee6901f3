/// @file
/// One counted reference to an object of the platform.
#pragma once

#include "platform/coreaudio.h"

#include <utility>

namespace direct
{
template<class I>
const IID& iidOf();

#define SONAVIT_DIRECT_IID(I)    \
    template<>                   \
    inline const IID& iidOf<I>() \
    {                            \
        return IID_##I;          \
    }
SONAVIT_DIRECT_IID(IAudioEndpointVolume)
SONAVIT_DIRECT_IID(IAudioMute)
SONAVIT_DIRECT_IID(IAudioVolumeLevel)
SONAVIT_DIRECT_IID(IDeviceTopology)
SONAVIT_DIRECT_IID(IMMDeviceEnumerator)
SONAVIT_DIRECT_IID(IMMEndpoint)
SONAVIT_DIRECT_IID(IPart)
#undef SONAVIT_DIRECT_IID

template<class I>
class ComPtr
{
public:
    ComPtr() = default;
    ComPtr(const ComPtr& other) : m_object(other.m_object)
    {
        if (m_object != nullptr)
            m_object->AddRef();
    }
    ComPtr(ComPtr&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~ComPtr() { reset(); }

    /// Owns the reference that the caller has on @p object, which may be null.
    static ComPtr adopt(I* object)
    {
        ComPtr result;
        result.m_object = object;
        return result;
    }

    void reset()
    {
        if (m_object != nullptr)
            std::exchange(m_object, nullptr)->Release();
    }

    I* get() const { return m_object; }
    I* operator->() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

    /// Where a call stores an object along with its reference; what was there is released before.
    I** put()
    {
        reset();
        return &m_object;
    }
    void** putVoid() { return reinterpret_cast<void**>(put()); }

    /// Another interface of the same object; null if it has none.
    template<class Other>
    ComPtr<Other> as() const
    {
        ComPtr<Other> result;
        if (m_object != nullptr && FAILED(m_object->QueryInterface(iidOf<Other>(), result.putVoid())))
            return {};
        return result;
    }

private:
    I* m_object = nullptr;
};
}
