#include "simulator/core/registrations.h"

namespace sim
{
HRESULT registerApartment(const std::shared_ptr<State>&)
{
    return S_OK;
}

void revokeRegistrations(const State&) {}
}
