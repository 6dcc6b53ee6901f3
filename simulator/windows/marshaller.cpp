#include "simulator/core/marshaller.h"

#include "simulator/mutex.h"

#include <mutex>

namespace sim
{
namespace
{
/// Never destroyed: objects may be asked while the process ends.
Mutex& creation()
{
    static Mutex* const mutex = new Mutex;
    return *mutex;
}
}

Marshaller::~Marshaller()
{
    if (m_inner != nullptr)
        m_inner->Release();
}

void* Marshaller::find(IUnknown& object, REFIID iid, bool& added)
{
    if (!IsEqualGUID(iid, __uuidof(IMarshal)))
        return nullptr;
    const std::lock_guard<Mutex> lock(creation());
    if (m_inner == nullptr && FAILED(CoCreateFreeThreadedMarshaler(&object, &m_inner)))
        return nullptr;
    if (m_marshal == nullptr)
        added = SUCCEEDED(m_inner->QueryInterface(iid, &m_marshal));
    return m_marshal;
}
}
