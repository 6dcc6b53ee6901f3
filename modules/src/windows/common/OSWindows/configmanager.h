#pragma once

#include "libModuleCommon/export.h"
#include "qor/string.h"

namespace libOSWindows
{
/// The operating system's tree of device instances.
class SONAVIT_API ConfigManager
{
public:
    /// Finds the parent of a device instance.
    ///
    /// On Windows this calls the configuration manager (CM_Locate_DevNodeW, CM_Get_Parent, CM_Get_Device_IDW), which
    /// finds devices that are not present, too. On other systems the provider of the platform defines this operation.
    /// @param childInstanceId instance id of a device, in upper or lower case:
    /// "HDAUDIO\FUNC_01&VEN_0000&DEV_0001\4&1A2B3C4D&0&0001"
    /// @param parentInstanceId receives the parent's instance id; unchanged if no parent is found
    /// @return whether the parent was found and stored; a failure is not logged
    static bool getParentDeviceInstanceId(const qor::String& childInstanceId, qor::String& parentInstanceId);
};
}
