/// @file
/// ATL::CComPtr: the compiler's own if it has one, otherwise a small class with the same behaviour.
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
/// The object adds a reference to a pointer that is passed in; the caller keeps its own. Attach() is the exception.
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

    /// Shares @p object and releases the previous one. The reference is added first, so self-assignment is safe.
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

    /// Adopts the caller's reference on @p object; the previous object is released.
    void Attach(T* object)
    {
        Release();
        p = object;
    }

    /// Passes the reference to the caller; the pointer is then empty.
    T* Detach() noexcept
    {
        T* const object = p;
        p = nullptr;
        return object;
    }

    /// Releases the reference. The pointer is empty before the object's Release is called.
    void Release()
    {
        T* const object = Detach();
        if (object != nullptr)
            object->Release();
    }

    /// Where a platform call stores a reference; use it on an empty pointer only.
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
