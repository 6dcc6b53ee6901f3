// At the end of the process a static handle deleted its object and stayed as it was: g++ dropped the store of null, as
// it goes into an object whose lifetime ends. A static object of the caller that was destroyed later used the freed
// object. Only an optimizer shows that, so this file is compiled with one; all other tests are compiled without.

#include "qor/array.h"
#include "qor/resource.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace
{
/// An object that reports the value of a pointer while it is destroyed.
struct Widget
{
    explicit Widget(bool throwing = false) : throws(throwing) {}

    ~Widget() noexcept(false)
    {
        if (watched != nullptr)
            seen = *watched;
        if (throws)
            throw 1;
    }

    static inline Widget* const* watched = nullptr;
    static inline Widget* seen = nullptr;

    int references = 1; ///< used by CountedStorage only
    const bool throws;
};

/// Releases as the handles of platform objects do: with a call followed by a plain store of null.
struct CountedStorage
{
    using Element = Widget;

    static constexpr bool copyable = true;
    static constexpr Widget* nil() noexcept { return nullptr; }
    static Widget* copy(Widget* source)
    {
        ++source->references;
        return source;
    }
    static void release(Widget*& value)
    {
        if (value != nullptr && --value->references == 0)
            delete value;
        value = nullptr;
    }
};

using CountedHandle = qor::CopiedResource<CountedStorage>;

/// Is constructed before the handles below, so it is destroyed after them.
struct LateObject
{
    ~LateObject();

    bool reads = false;
};

LateObject lateObject;
OwnedPointer<Widget> owned;
CountedHandle counted;
SharedPointer<Widget> shared;
BorrowedPointer<Widget> borrowed;
qor::Array<unsigned int> numbers;
Widget borrowedWidget;

LateObject::~LateObject()
{
    if (!reads)
        return;
    const auto word = [](const void* pointer) { return pointer == nullptr ? "nil" : "dangling"; };
    std::fprintf(stderr, "owned %s, counted %s, shared %s, borrowed %s, array %s\n", word(owned.get()),
                 word(counted.get()), word(shared.get()), word(borrowed.get()), word(numbers.m_block));
    std::fflush(stderr);
    std::_Exit(0);
}

/// Memory of a handle that a test makes and destroys in place.
alignas(OwnedPointer<Widget>) unsigned char handleMemory[sizeof(OwnedPointer<Widget>)];

/// What the handle in that memory holds, even if it has been destroyed. Volatile, or an optimizer may assume that the
/// content ended with the handle.
Widget* pointerInMemory()
{
    unsigned char bytes[sizeof(Widget*)];
    for (std::size_t i = 0; i < sizeof(bytes); ++i)
        bytes[i] = const_cast<const volatile unsigned char*>(handleMemory)[i];
    Widget* pointer = nullptr;
    std::memcpy(&pointer, bytes, sizeof(pointer));
    return pointer;
}

OwnedPointer<Widget>& handleInMemory(Widget* object)
{
    return *::new (static_cast<void*>(handleMemory)) OwnedPointer<Widget>(object);
}

TEST(HandleEndDeathTest, LeavesANilHandleForAStaticObjectThatIsDestroyedLater)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";

    const auto endTheProcess = []
    {
        lateObject.reads = true;
        owned = new Widget;
        counted = new Widget;
        shared = SharedPointer<Widget>(new Widget);
        borrowed = &borrowedWidget;
        numbers.append(7u);
        std::exit(0);
    };

    EXPECT_EXIT(endTheProcess(), testing::ExitedWithCode(0),
                "owned nil, counted nil, shared nil, borrowed nil, array nil");
}

TEST(HandleEnd, LeavesNilInTheMemoryOfAnOwnerOnlyWhenItsObjectIsDestroyed)
{
    Widget* const object = new Widget;
    OwnedPointer<Widget>& handle = handleInMemory(object);
    Widget::watched = reinterpret_cast<Widget* const*>(handleMemory);

    handle.~CopiedResource();

    Widget::watched = nullptr;
    EXPECT_EQ(object, Widget::seen);
    EXPECT_EQ(nullptr, pointerInMemory());
}

TEST(HandleEnd, LeavesNilInTheMemoryOfAnOwnerWhoseObjectThrows)
{
    OwnedPointer<Widget>& handle = handleInMemory(new Widget(true));

    EXPECT_THROW(handle.~CopiedResource(), int);

    EXPECT_EQ(nullptr, pointerInMemory());
}
}
