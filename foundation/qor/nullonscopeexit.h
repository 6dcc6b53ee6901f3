#pragma once

namespace qor
{
/// Stores null in @p pointer with a store that no optimizer leaves out.
///
/// A destructor that sets its own field writes to an object whose lifetime ends, so compilers drop such a store as
/// dead: g++ does from -O1 on. Static objects that are destroyed later still read that memory, and must find null
/// there. An empty assembler statement that reads the field keeps the store, with link-time optimisation as well. A
/// volatile store is not enough for g++ 12, which drops it where it finds a plain store of the same value before it.
template<class T>
inline void storeNull(T*& pointer) noexcept
{
#if defined(__GNUC__) // clang and mingw-w64 too
    pointer = nullptr;
    __asm__ volatile("" : : "m"(pointer));
#else
    *const_cast<T* volatile*>(&pointer) = nullptr;
#endif
}

/// Sets a pointer to null at the end of a scope, even if an exception leaves the scope: code that runs during the scope
/// still sees the old value. The store is that of storeNull().
template<class T>
class NullOnScopeExit
{
public:
    explicit NullOnScopeExit(T*& pointer) noexcept : m_pointer(pointer) {}
    NullOnScopeExit(const NullOnScopeExit&) = delete;
    NullOnScopeExit& operator=(const NullOnScopeExit&) = delete;
    ~NullOnScopeExit() { storeNull(m_pointer); }

private:
    T*& m_pointer;
};
}
