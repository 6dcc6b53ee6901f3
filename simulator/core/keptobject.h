/// @file
/// An object of which a machine has one, and which it keeps.
#pragma once

#include "simulator/mutex.h"

#include <mutex>

namespace sim
{
class SimulatedObject;

/// One object for all users. The machine holds a reference of its own until it ends, which the census leaves out.
///
/// A user who releases once too often takes the machine's reference, and the object goes; the next user then gets a new
/// one.
class KeptObject
{
public:
    KeptObject() = default;
    KeptObject(const KeptObject&) = delete;
    KeptObject& operator=(const KeptObject&) = delete;

    /// The object, with one more reference that belongs to the caller. @p make makes it with one reference when there
    /// is none. After end() each caller gets an object of its own.
    template<class Make>
    SimulatedObject* lend(const Make& make)
    {
        const std::lock_guard<Mutex> lock(m_mutex);
        if (m_isOver)
            return make();
        if (m_object == nullptr)
            keep(make());
        addUser();
        return m_object;
    }

    /// For the destructor of @p object: it must not be lent any more.
    void forget(const SimulatedObject* object);
    /// The machine ends: drops its own reference.
    void end();

private:
    void keep(SimulatedObject* object);
    void addUser();

    Mutex m_mutex;
    SimulatedObject* m_object = nullptr;
    bool m_isOver = false;
};
}
