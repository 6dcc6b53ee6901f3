/// @file
/// What no hardware has. A driver that reports more is not believed.
#pragma once

#include "platform/coreaudio.h"

namespace sonavit::reading
{
/// Of an endpoint's volume and of a control.
inline constexpr UINT mostChannels = 1024;
}
