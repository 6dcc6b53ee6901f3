#pragma once

#include "libModuleCommon/export.h"
#include "platform/coreaudio.h"
#include "qor/string.h"

/// The string form of @p guid, "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" in upper case. @p guid must not be null; it
/// is not changed.
SONAVIT_API qor::String guidToString(GUID* guid);
