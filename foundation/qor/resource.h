/// Handles: the library keeps every pointer to a resource that must be released in one of the two templates below.
///
/// A release may throw, as a platform object's Release may, and the caller must see that exception. Destructors are
/// noexcept by default, so an exception would end the process. Therefore the destructors of the handles, of the arrays
/// and tables that contain them, and of the abstract bases of classes that contain them are declared noexcept(false).
#pragma once

#include "qor/mutex.h"
#include "qor/nullonscopeexit.h"

#include <cstdint>
#include <new>
#include <utility>

namespace qor
{
/// How a handle copies and releases a plain pointer. Only two pairs of policies exist.
template<class X, int copyPolicy, int releasePolicy>
struct PointerStorage;

/// A view: copies the pointer, and releases nothing.
template<class X>
struct PointerStorage<X, 3, 2>
{
    using Element = X;

    static constexpr bool copyable = true;
    static constexpr X* nil() noexcept { return nullptr; }
    static X* copy(X* source) noexcept { return source; }
    static void release(X*& value) noexcept { value = nullptr; }
};

/// The owner: deletes the object, and then sets the field to nil. During the deletion the field still contains the
/// object, so that another thread, such as one of the platform, does not take the handle for an empty one and fill it.
/// Such a handle cannot be copied; it is passed by reference.
template<class X>
struct PointerStorage<X, 0, 3>
{
    using Element = X;

    static constexpr bool copyable = false;
    static constexpr X* nil() noexcept { return nullptr; }
    static X* copy(X* source) = delete;

    static void release(X*& value) noexcept(false)
    {
        static_assert(sizeof(X) > 0, "the pointee must be complete where it is deleted");
        const NullOnScopeExit<X> nilAfterwards(value);
        delete value;
    }
};

/// A handle that has one pointer; its storage defines how the pointer is copied and released. A handle may be nil;
/// access through a nil handle is not tested. Not synchronized.
template<class Storage>
class CopiedResource
{
public:
    using Element = typename Storage::Element;

    constexpr CopiedResource() noexcept : m_value(Storage::nil()) {}

    /// Stores @p value unchanged. A COM handle adopts the caller's reference: no AddRef is called.
    CopiedResource(Element* value) noexcept : m_value(value) {}

    /// Copies by the storage; a COM handle adds a reference.
    CopiedResource(const CopiedResource& other) : m_value(Storage::copy(other.m_value)) {}

    /// Releases by the storage. Static objects that are destroyed later find the handle nil; if the release throws, the
    /// storage decides what they find.
    ~CopiedResource() noexcept(false)
    {
        Storage::release(m_value);
        storeNull(m_value); // the storage's own store of nil may have been dropped
    }

    /// Copies the new value before it releases the old one, so that both handles may have the same object.
    CopiedResource& operator=(const CopiedResource& other)
    {
        if (this == &other)
            return *this;
        Element* old = m_value;
        m_value = Storage::copy(other.m_value);
        Storage::release(old);
        return *this;
    }

    /// As construction from the pointer, followed by assignment: a COM handle adopts the reference. An owner deletes
    /// its old object and then stores the pointer.
    CopiedResource& operator=(Element* value)
    {
        if constexpr (Storage::copyable)
        {
            const CopiedResource temporary(value);
            return *this = temporary;
        }
        else
        {
            Storage::release(m_value);
            m_value = value;
            return *this;
        }
    }

    /// Exchanges the pointers: nothing is copied or released.
    void swap(CopiedResource& other) noexcept { std::swap(m_value, other.m_value); }

    Element* get() const noexcept { return m_value; }
    Element* operator->() const noexcept { return m_value; }
    Element& operator*() const noexcept { return *m_value; }

    friend bool operator==(const CopiedResource& handle, const Element* pointer) noexcept
    {
        return handle.m_value == pointer;
    }
    friend bool operator!=(const CopiedResource& handle, const Element* pointer) noexcept
    {
        return handle.m_value != pointer;
    }

private:
    Element* m_value;
};

/// Destroys a resource of any kind in its destructor, unless forget() was called.
class SharedResourceDestroyerBase
{
public:
    SharedResourceDestroyerBase() = default;
    SharedResourceDestroyerBase(const SharedResourceDestroyerBase&) = delete;
    SharedResourceDestroyerBase& operator=(const SharedResourceDestroyerBase&) = delete;
    virtual ~SharedResourceDestroyerBase() noexcept(false) = default;

    /// Gives the resource up without destroying it.
    virtual void forget() = 0;
};

template<class Storage>
class SharedResourceDestroyer final : public SharedResourceDestroyerBase
{
public:
    using Element = typename Storage::Element;

    explicit SharedResourceDestroyer(Element* value) noexcept : m_value(value) {}
    ~SharedResourceDestroyer() noexcept(false) override { Storage::release(m_value); }

    void forget() override { m_value = Storage::nil(); }

private:
    Element* m_value;
};

/// The lock around the counts of one kind of shared resource; selector 0 has none.
template<class Storage, int locking>
struct SharedResourceLock
{
    /// Made on first use, which is not guarded: it must be on one thread. Never destroyed.
    static Mutex* mutex()
    {
        static_assert(locking == 1, "0 selects the unlocked form, 1 the locked one");
        static bool made = false;
        static Mutex* instance = nullptr;
        if (!made)
        {
            instance = new Mutex;
            made = true;
        }
        return instance;
    }
};

template<class Storage>
struct SharedResourceLock<Storage, 0>
{
    static Mutex* mutex() noexcept { return nullptr; }
};

/// Counted owner of a resource: the last handle destroys it. With @p locking 0 the count is a plain number, so the
/// handles of one resource must be used from one thread at a time or under a lock of the caller; with 1 each operation
/// on a count takes one lock that all resources of this kind share.
template<class Storage, int locking>
class SharedResource
{
public:
    using Element = typename Storage::Element;

    SharedResource() noexcept : m_value(Storage::nil()), m_count(nullptr), m_destroyer(nullptr) {}

    /// Owns @p value, even null, with a count of 1. If the count or the destroyer cannot be allocated, its field stays
    /// null and nothing is thrown.
    SharedResource(Element* value) : m_value(value), m_count(nullptr), m_destroyer(nullptr)
    {
        const AutoMutex lock(SharedResourceLock<Storage, locking>::mutex());
        m_count = new (std::nothrow) std::int32_t(1);
        m_destroyer = new (std::nothrow) SharedResourceDestroyer<Storage>(value);
    }

    /// Shares the resource; a copy of a handle without a count is nil.
    SharedResource(const SharedResource& other) : m_value(Storage::nil()), m_count(nullptr), m_destroyer(nullptr)
    {
        share(other);
    }

    ~SharedResource() noexcept(false) { release(); }

    /// Releases its own resource first; the new one stays alive, as @p other owns it too.
    SharedResource& operator=(const SharedResource& other)
    {
        if (this == &other)
            return *this;
        release();
        share(other);
        return *this;
    }

    Element* get() const noexcept { return m_value; }
    Element* operator->() const noexcept { return m_value; }
    Element& operator*() const noexcept { return *m_value; }

    /// Whether there was memory for count and destroyer: then copies share the resource, and the last one destroys it.
    bool isComplete() const noexcept { return m_count != nullptr && m_destroyer != nullptr; }

    /// Gives the resource up without destroying it; the handle is nil then. It must be the only one.
    void disown()
    {
        if (m_destroyer != nullptr)
            m_destroyer->forget();
        delete m_destroyer;
        delete m_count;
        m_value = Storage::nil();
        m_count = nullptr;
        m_destroyer = nullptr;
    }

private:
    void share(const SharedResource& other)
    {
        const AutoMutex lock(SharedResourceLock<Storage, locking>::mutex());
        if (other.m_count == nullptr)
            return;
        m_value = other.m_value;
        m_count = other.m_count;
        m_destroyer = other.m_destroyer;
        ++*m_count;
    }

    /// m_destroyer keeps its stale pointer: it is never read while m_count is null.
    void release()
    {
        const AutoMutex lock(SharedResourceLock<Storage, locking>::mutex());
        if (m_count == nullptr)
            return;
        const NullOnScopeExit<std::int32_t> noCountAfterwards(m_count);
        // Destroyed first, so the value is null before the count.
        const NullOnScopeExit<Element> noValueAfterwards(m_value);
        if (--*m_count != 0)
            return;
        delete m_count;
        delete m_destroyer;
    }

    Element* m_value;
    std::int32_t* m_count;
    SharedResourceDestroyerBase* m_destroyer;
};
}

/// A plain pointer to an object that another object owns.
template<class X>
using BorrowedPointer = qor::CopiedResource<qor::PointerStorage<X, 3, 2>>;

/// The sole owner of an object.
template<class X>
using OwnedPointer = qor::CopiedResource<qor::PointerStorage<X, 0, 3>>;

/// A counted owner of an object; not for two threads at the same time.
template<class X>
using SharedPointer = qor::SharedResource<qor::PointerStorage<X, 0, 3>, 0>;

namespace qor
{
/// The first owner of @p value, which was made with `new`. A handle that is made from a pointer in the ordinary way
/// throws nothing without memory for its count: it is incomplete then, and its copies are nil. Here @p value is deleted
/// and the failure told.
/// @exception std::bad_alloc without memory for the count
template<class X>
SharedPointer<X> sharedOwner(X* value)
{
    SharedPointer<X> owner(value);
    if (owner.isComplete())
        return owner;
    owner.disown();
    delete value;
    throw std::bad_alloc();
}
}
