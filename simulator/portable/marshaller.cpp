#include "simulator/core/marshaller.h"

namespace sim
{
Marshaller::~Marshaller() = default;

void* Marshaller::find(IUnknown&, REFIID, bool&)
{
    return nullptr;
}
}
