/// Devices that end when a list has them; included by the library's source files only.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"

namespace lastuse
{
/// Appends a copy of @p device, which is destroyed next, to @p list. The elements that a full list copies as it grows
/// come first, as in Array::append().
inline void append(AudioDevice& device, qor::Array<AudioDevice>& list)
{
    list.ensureCapacity(list.size() + 1);
    list.emplace(AudioDevice::LastUse(device));
}
}
