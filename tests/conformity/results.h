/// @file
/// Results of platform calls in words.
#pragma once

#include "platform/coreaudio.h"

#include <string>

namespace conformity
{
/// "E_NOTFOUND", or "0x88890042" for a result that has no name here.
std::string resultName(HRESULT result);
}
