/// @file
/// How the objects of the machine pass from one apartment to another.
#pragma once

#include "platform/coreaudio.h"

namespace sim
{
/// Windows' objects aggregate the free-threaded marshaller: every thread of the process gets the object itself, not a
/// proxy, and calls it directly. Off Windows there are no apartments and nothing to marshal.
class Marshaller
{
public:
    Marshaller() = default;
    Marshaller(const Marshaller&) = delete;
    Marshaller& operator=(const Marshaller&) = delete;
    ~Marshaller(); // NOLINT(performance-trivially-destructible): not on Windows

    /// The IMarshal of @p object, without a reference, if @p iid asks for it; otherwise null. The call that creates it
    /// leaves a reference on @p object, which the caller must drop: @p added is then true.
    void* find(IUnknown& object, REFIID iid, bool& added);

private:
    // Null off Windows.
    [[maybe_unused]] IUnknown* m_inner = nullptr;
    [[maybe_unused]] void* m_marshal = nullptr; ///< an interface of m_inner
};
}
