#include "OSWindows/configmanager.h"

#include "simulator/core/runtimecall.h"

using namespace sim;

namespace libOSWindows
{
bool ConfigManager::getParentDeviceInstanceId(const qor::String& childInstanceId, qor::String& parentInstanceId)
{
    const AnsweringScope answering(true);
    const std::string child = childInstanceId.toUtf8();
    Text parent;
    const auto answer = [&](const std::shared_ptr<State>& state) -> HRESULT
    {
        if (state != nullptr)
        {
            parent = state->withHardware(
                [&](const Hardware& hardware)
                {
                    const DeviceInstance* const instance = hardware.deviceInstance(child);
                    return instance == nullptr ? Text() : instance->parent;
                });
        }
        return parent ? S_OK : E_NOTFOUND;
    };
    runtimeCall("getParentDeviceInstanceId", outputs(), answer, child);
    if (!parent)
        return false;
    parentInstanceId = qor::String::fromUtf8(*parent);
    return true;
}
}
