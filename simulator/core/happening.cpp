#include "simulator/core/happening.h"

#include "simulator/core/notifications.h"

#include <cstddef>

namespace sim
{
namespace
{
struct FlowAndRole
{
    EDataFlow flow;
    ERole role;
};

constexpr std::array<FlowAndRole, 6> flowsAndRoles = {{{eRender, eConsole},
                                                       {eRender, eMultimedia},
                                                       {eRender, eCommunications},
                                                       {eCapture, eConsole},
                                                       {eCapture, eMultimedia},
                                                       {eCapture, eCommunications}}};
}

Defaults defaultsOf(const Hardware& hardware)
{
    Defaults defaults;
    for (std::size_t index = 0; index < defaults.size(); ++index)
        defaults[index] = hardware.defaultEndpoint(flowsAndRoles[index].flow, flowsAndRoles[index].role);
    return defaults;
}

void notifyDefaults(const std::shared_ptr<State>& state, const Defaults& before, const Defaults& after)
{
    for (std::size_t index = 0; index < after.size(); ++index)
    {
        if (before[index] != after[index])
            notifyDefaultChanged(state, flowsAndRoles[index].flow, flowsAndRoles[index].role, after[index]);
    }
}
}
