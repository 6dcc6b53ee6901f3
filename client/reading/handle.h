/// @file
/// The handle of a platform object in the client layer.
#pragma once

#include <cstddef>
#include <utility>

namespace sonavit::reading
{
/// Counts a Release that has thrown, for tests.
void countFailedRelease() noexcept;
std::size_t failedReleases() noexcept;

/// Releases @p object, which may be null. An exception out of Release is counted and goes no further: it tells nothing
/// that could be acted on, the reference is gone, and what is left of a reading or of the layer has to be released,
/// too.
template<class I>
void release(I* object) noexcept
{
    try
    {
        if (object != nullptr)
            object->Release();
    }
    catch (...)
    {
        countFailedRelease();
    }
}

/// One counted reference to a platform object, or nil. It is used on the worker alone. Access through a nil handle is
/// not tested.
template<class I>
class Handle
{
public:
    Handle() noexcept = default;
    Handle(std::nullptr_t) noexcept {} // NOLINT(google-explicit-constructor)
    /// Adopts the caller's reference, as the out-parameter of a platform function has one: there is no AddRef.
    explicit Handle(I* object) noexcept : m_object(object) {}
    Handle(const Handle& other) : m_object(other.m_object)
    {
        if (m_object != nullptr)
            m_object->AddRef();
    }
    Handle(Handle&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    ~Handle() { release(m_object); }

    Handle& operator=(const Handle& other)
    {
        Handle copy(other);
        std::swap(m_object, copy.m_object);
        return *this;
    }
    Handle& operator=(Handle&& other) noexcept
    {
        Handle taken(std::move(other));
        std::swap(m_object, taken.m_object);
        return *this;
    }

    I* get() const noexcept { return m_object; }
    I* operator->() const noexcept { return m_object; }
    I& operator*() const noexcept { return *m_object; }

private:
    I* m_object = nullptr;
};
}
