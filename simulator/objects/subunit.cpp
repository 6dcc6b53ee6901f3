#include "simulator/objects/partbase.h"

namespace sim
{
namespace
{
class SubunitObject final : public PartBase<ISubunit>
{
public:
    using PartBase::PartBase;
};

SubunitObject* make(const std::shared_ptr<State>& state, const std::string& partId)
{
    const bool isThere = state->withHardware(
        [&](const Hardware& hardware)
        {
            const ChangeablePartPlace* const place = hardware.part(partId);
            return place != nullptr && place->connector == nullptr;
        });
    return isThere ? new SubunitObject(state, partId) : nullptr;
}
}

ISubunit* makeSubunit(const std::shared_ptr<State>& state, const std::string& partId)
{
    return make(state, partId);
}

IPart* makeSubunitAsPart(const std::shared_ptr<State>& state, const std::string& partId)
{
    return make(state, partId);
}
}
