#include "simulator/portable/comapartment.h"

#include "simulator/core/threads.h"

namespace sim::comapartment
{
namespace
{
/// Plain data without a destructor: static objects leave COM after the main thread's thread_local objects are
/// destroyed.
struct Apartment
{
    unsigned depth;
    bool isMultithreaded;
};

thread_local Apartment apartment = {0, false};
}

HRESULT enter(bool multithreaded)
{
    if (apartment.depth > 0 && apartment.isMultithreaded != multithreaded)
        return RPC_E_CHANGED_MODE;
    apartment.isMultithreaded = multithreaded;
    return ++apartment.depth == 1 ? S_OK : S_FALSE;
}

bool leave()
{
    if (apartment.depth == 0)
        return false;
    --apartment.depth;
    return true;
}

unsigned depth()
{
    return apartment.depth;
}
}

namespace sim
{
void enterNotificationThread(const std::weak_ptr<State>&)
{
    comapartment::enter(true);
}

void leaveNotificationThread()
{
    comapartment::leave();
}
}
