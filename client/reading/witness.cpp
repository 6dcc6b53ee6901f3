#include "client/reading/witness.h"

#include "client/reading/endpointreading.h"

namespace sonavit::reading
{
namespace
{
thread_local Witness* current = nullptr;
}

void reportFailure(std::string_view operation, std::string_view object, HRESULT code)
{
    if (current != nullptr)
        current->failed(operation, object, code);
}

bool hasWitness() noexcept
{
    return current != nullptr;
}

WitnessScope::WitnessScope(Witness& witness) : m_former(current)
{
    current = &witness;
}

WitnessScope::~WitnessScope()
{
    current = m_former;
}
}
