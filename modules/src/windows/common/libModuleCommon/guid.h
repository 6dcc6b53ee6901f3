#pragma once

#include "libModuleCommon/export.h"
#include "platform/coreaudio.h"
#include "qor/string.h"

/// @p guid as text, "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" in upper case. @p guid is read only, and not null.
SONAVIT_API qor::String guidToString(GUID* guid);
