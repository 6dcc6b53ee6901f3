#include "libModuleCommon/guid.h"

#include <cstdio>

qor::String guidToString(GUID* guid)
{
    char text[40];
    std::snprintf(text, sizeof(text), "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned int>(guid->Data1), static_cast<unsigned int>(guid->Data2),
                  static_cast<unsigned int>(guid->Data3), static_cast<unsigned int>(guid->Data4[0]),
                  static_cast<unsigned int>(guid->Data4[1]), static_cast<unsigned int>(guid->Data4[2]),
                  static_cast<unsigned int>(guid->Data4[3]), static_cast<unsigned int>(guid->Data4[4]),
                  static_cast<unsigned int>(guid->Data4[5]), static_cast<unsigned int>(guid->Data4[6]),
                  static_cast<unsigned int>(guid->Data4[7]));
    return qor::String(text);
}
