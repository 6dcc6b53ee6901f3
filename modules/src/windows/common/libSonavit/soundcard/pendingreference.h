/// Ownership between a platform call and a handle; included by this module's source files only.
#pragma once

#include "COM/comptr.h"

#include <utility>

/// The counted reference that a platform call hands out, until a handle adopts it with take().
///
/// The library releases the object that it asked right after the call, and that Release may throw: this owner then
/// releases what the call handed out. A handle in its place would add and release a reference of its own.
template<class I>
class PendingReference
{
public:
    PendingReference() = default;
    PendingReference(const PendingReference&) = delete;
    PendingReference& operator=(const PendingReference&) = delete;

    ~PendingReference() noexcept(false) { const typename COMPtr<I>::pointer owner(m_object); }

    /// Adopts the reference on @p object, which may be null, at most once.
    void adopt(I* object) noexcept { m_object = object; }

    I* get() const noexcept { return m_object; }

    /// Hands the reference to the caller.
    I* take() noexcept { return std::exchange(m_object, nullptr); }

private:
    I* m_object = nullptr;
};
