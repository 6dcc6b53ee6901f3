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
    /// On Windows the configuration manager is asked (CM_Locate_DevNodeW, CM_Get_Parent, CM_Get_Device_IDW), for
    /// devices that are present and for those that are not. On other systems whoever provides the platform defines this
    /// operation.
    /// @param childInstanceId instance id of a device, in any case:
    /// "HDAUDIO\FUNC_01&VEN_0000&DEV_0001\4&1A2B3C4D&0&0001"
    /// @param parentInstanceId instance id of the parent; left alone when there is none to be had
    /// @return whether the parent was found and stored
    static bool getParentDeviceInstanceId(const qor::String& childInstanceId, qor::String& parentInstanceId);
};
}
