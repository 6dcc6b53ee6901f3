/// Handles: every pointer to something that must be let go of sits in one of the two templates below.
///
/// Letting go may throw, as a platform object's Release may: the handles report such a failure and let it pass.
/// Destructors are noexcept by default, and a class's destructor follows those of its members and bases. So the
/// destructors of the handles, of the arrays and tables that hold them, and of the abstract bases of classes that hold
/// them are declared noexcept(false); otherwise the process would end where the caller is to see the exception.
#pragma once

#include "qor/mutex.h"
#include "qor/nullonscopeexit.h"

#include <cstdint>
#include <new>

namespace qor
{
/// How a plain pointer behaves in a handle. Only two pairs of selectors have a meaning.
template<class X, int copyPolicy, int releasePolicy>
struct PointerStorage;

/// A view: copying copies the pointer, letting go forgets it.
template<class X>
struct PointerStorage<X, 3, 2>
{
    using Element = X;

    static constexpr bool copyable = true;
    static constexpr X* nil() noexcept { return nullptr; }
    static X* copy(X* source) noexcept { return source; }
    static void release(X*& value) noexcept { value = nullptr; }
};

/// The owner: letting go deletes, and only then is the field nil. Whoever looks during the deletion, as a thread of the
/// platform may, sees the object and not an empty handle that wants to be filled. There is no copy, such a handle is
/// handed out by reference.
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

/// One pointer, with the meaning that its storage gives it. Nil or a value; nil handles are ordinary values, and access
/// through one is not tested. Not synchronised.
template<class Storage>
class CopiedResource
{
public:
    using Element = typename Storage::Element;

    constexpr CopiedResource() noexcept : m_value(Storage::nil()) {}

    /// Stores @p value as it is. A COM handle adopts the caller's reference: there is no AddRef.
    CopiedResource(Element* value) noexcept : m_value(value) {}

    /// The storage's copy step; a COM handle takes a reference of its own.
    CopiedResource(const CopiedResource& other) : m_value(Storage::copy(other.m_value)) {}

    /// The storage's release step. The handle is nil afterwards, also for a static object that is destroyed later; if
    /// the release throws, it is as the storage leaves it.
    ~CopiedResource() noexcept(false)
    {
        Storage::release(m_value);
        storeNull(m_value); // the storage's own store of nil may have been dropped
    }

    /// Takes the new value before it lets go of the old one, so that another handle on the same object can be assigned.
    CopiedResource& operator=(const CopiedResource& other)
    {
        if (this == &other)
            return *this;
        Element* old = m_value;
        m_value = Storage::copy(other.m_value);
        Storage::release(old);
        return *this;
    }

    /// As construction from the pointer, followed by assignment: a COM reference is adopted. An owner deletes what it
    /// held and then stores the pointer.
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

/// Destroys, or has been told not to destroy, a resource whose real kind its holder does not know.
class SharedResourceDestroyerBase
{
public:
    SharedResourceDestroyerBase() = default;
    SharedResourceDestroyerBase(const SharedResourceDestroyerBase&) = delete;
    SharedResourceDestroyerBase& operator=(const SharedResourceDestroyerBase&) = delete;
    virtual ~SharedResourceDestroyerBase() noexcept(false) = default;

    /// Lets go of the resource without destroying it.
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
    /// Made on first use behind a plain test, and never destroyed. The first use belongs to one thread.
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

/// Counted owner of a resource: the last handle to go destroys it. With @p locking 0 the count is a plain number, so
/// that handles on one resource belong to one thread at a time or to an outer lock; with 1 each operation on a count
/// runs under one lock for all resources of this kind.
template<class Storage, int locking>
class SharedResource
{
public:
    using Element = typename Storage::Element;

    SharedResource() noexcept : m_value(Storage::nil()), m_count(nullptr), m_destroyer(nullptr) {}

    /// Owns @p value with a count of 1, also a null one. An allocation that fails leaves its field null and raises
    /// nothing.
    SharedResource(Element* value) : m_value(value), m_count(nullptr), m_destroyer(nullptr)
    {
        const AutoMutex lock(SharedResourceLock<Storage, locking>::mutex());
        m_count = new (std::nothrow) std::int32_t(1);
        m_destroyer = new (std::nothrow) SharedResourceDestroyer<Storage>(value);
    }

    /// Takes a share; a copy of a handle without a count is nil.
    SharedResource(const SharedResource& other) : m_value(Storage::nil()), m_count(nullptr), m_destroyer(nullptr)
    {
        share(other);
    }

    ~SharedResource() noexcept(false) { release(); }

    /// Gives up its own share first; that is safe, as @p other holds one of the other resource.
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
        const NullOnScopeExit<Element> noValueAfterwards(m_value); // the first of the two to go
        if (--*m_count != 0)
            return;
        delete m_count;
        delete m_destroyer;
    }

    Element* m_value;
    std::int32_t* m_count;
    SharedResourceDestroyerBase* m_destroyer;
};
} // namespace qor

/// A plain pointer into something owned elsewhere.
template<class X>
using BorrowedPointer = qor::CopiedResource<qor::PointerStorage<X, 3, 2>>;

/// The sole owner of an object.
template<class X>
using OwnedPointer = qor::CopiedResource<qor::PointerStorage<X, 0, 3>>;

/// A counted owner of an object; not for two threads at once.
template<class X>
using SharedPointer = qor::SharedResource<qor::PointerStorage<X, 0, 3>, 0>;
