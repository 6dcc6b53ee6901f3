#include "sonavit/system.h"

namespace sonavit
{
inline namespace v1
{
Result<Reference> System::refer(const EndpointId& endpoint) const
{
    return sonavit::refer(snapshot(), endpoint);
}

Resolution System::resolve(const Reference& reference) const
{
    return sonavit::resolve(snapshot(), reference);
}

}
}
