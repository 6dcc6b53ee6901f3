#pragma once

namespace qor
{
/// Makes a pointer null at the end of a scope, also when an exception leaves it: for owners whose object is to be seen
/// until it is gone.
template<class T>
class NilAtTheEnd
{
public:
    explicit NilAtTheEnd(T*& pointer) noexcept : m_pointer(pointer) {}
    NilAtTheEnd(const NilAtTheEnd&) = delete;
    NilAtTheEnd& operator=(const NilAtTheEnd&) = delete;
    ~NilAtTheEnd() { m_pointer = nullptr; }

private:
    T*& m_pointer;
};
}
