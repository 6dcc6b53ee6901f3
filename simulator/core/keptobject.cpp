#include "simulator/core/keptobject.h"

#include "simulator/core/simulatedobject.h"

#include <utility>

namespace sim
{
void KeptObject::forget(const SimulatedObject* object)
{
    const std::lock_guard<Mutex> lock(m_mutex);
    if (m_object == object)
        m_object = nullptr;
}

void KeptObject::end()
{
    SimulatedObject* object = nullptr;
    {
        const std::lock_guard<Mutex> lock(m_mutex);
        m_isOver = true;
        object = std::exchange(m_object, nullptr);
    }
    if (object != nullptr)
        object->letGo(); // outside the lock: it may end the object, which calls forget()
}

void KeptObject::keep(SimulatedObject* object)
{
    m_object = object;
    m_object->keep();
}

void KeptObject::addUser()
{
    m_object->lend();
}
}
