/// @file
/// ATL::CComPtr: the compiler's own where it has one, otherwise a small class with the same behaviour.
#pragma once

#include "platform/coreaudio.h"

#if defined(__has_include)
#if __has_include(<atlbase.h>)
#define SONAVIT_HAS_ATL
#endif
#endif

#if defined(SONAVIT_HAS_ATL)
#include <atlbase.h>
#else

namespace ATL
{

/// Holds one counted reference on a platform object, or none.
///
/// A pointer that is passed in stays the caller's: the object takes a reference of its own. Attach() is the exception.
template<class T>
class CComPtr
{
public:
    CComPtr() noexcept = default;

    /// Shares @p object, which may be null.
    CComPtr(T* object) : p(object)
    {
        if (p != nullptr)
            p->AddRef();
    }

    CComPtr(const CComPtr& other) : CComPtr(other.p) {}

    CComPtr(CComPtr&& other) noexcept : p(other.Detach()) {}

    ~CComPtr() { Release(); }

    /// Lets go of what was held and shares @p object; its reference is taken first, so assigning to oneself is safe.
    T* operator=(T* object)
    {
        CComPtr shared(object);
        swap(shared);
        return p;
    }

    CComPtr& operator=(const CComPtr& other)
    {
        *this = other.p;
        return *this;
    }

    CComPtr& operator=(CComPtr&& other) noexcept
    {
        CComPtr moved(static_cast<CComPtr&&>(other));
        swap(moved);
        return *this;
    }

    /// Adopts the reference that the caller holds on @p object; what was held before is released.
    void Attach(T* object)
    {
        Release();
        p = object;
    }

    /// Gives the reference to the caller and is empty afterwards.
    T* Detach() noexcept
    {
        T* const object = p;
        p = nullptr;
        return object;
    }

    /// Gives up the reference. The member is empty before the platform hears of it.
    void Release()
    {
        T* const object = Detach();
        if (object != nullptr)
            object->Release();
    }

    /// The place for a platform call to store a reference in; use it on an empty pointer only.
    T** operator&() noexcept { return &p; }

    operator T*() const noexcept { return p; }

    T& operator*() const { return *p; }

    T* operator->() const noexcept { return p; }

    T* p = nullptr;

private:
    void swap(CComPtr& other) noexcept
    {
        T* const mine = p;
        p = other.p;
        other.p = mine;
    }
};

}

#endif
