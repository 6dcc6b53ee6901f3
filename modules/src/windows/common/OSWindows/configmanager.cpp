#include "OSWindows/configmanager.h"

#include "platform/windows/configurationmanager.h"

#include <vector>

namespace libOSWindows
{
bool ConfigManager::getParentDeviceInstanceId(const qor::String& childInstanceId, qor::String& parentInstanceId)
{
    std::vector<WCHAR> childId(childInstanceId.size() + 1, 0); // the platform's parameter is not const
    for (unsigned int i = 0; i < childInstanceId.size(); ++i)
        childId[i] = static_cast<WCHAR>(childInstanceId.getUCS2Buffer()[i]);

    DEVINST child = 0;
    if (CM_Locate_DevNodeW(&child, childId.data(), CM_LOCATE_DEVNODE_PHANTOM) != CR_SUCCESS)
        return false;
    DEVINST parent = 0;
    if (CM_Get_Parent(&parent, child, 0) != CR_SUCCESS)
        return false;
    WCHAR parentId[MAX_DEVICE_ID_LEN + 1] = {};
    if (CM_Get_Device_IDW(parent, parentId, MAX_DEVICE_ID_LEN, 0) != CR_SUCCESS)
        return false;
    parentInstanceId = platform::ucs2(parentId);
    return true;
}
}
