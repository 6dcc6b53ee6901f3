#pragma once

#include "platform/coreaudio.h"

#include <string>

namespace sonavit::program
{
/// Why the platform failed: "0x80070005, access denied", or the code alone if it has no words here. E_POINTER stands
/// for a call that succeeded without a result.
std::string reasonText(HRESULT result);
}
