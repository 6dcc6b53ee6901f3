/// Devices that are used for the last time when a list gets them; included by the library's source files only.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/audiodeviceendpoint/deviceview.h"

namespace libSonavit::lastuse
{
/// Appends a copy of @p device to @p list, which is the last use of the device. The elements that a full list copies as
/// it grows come first, as in Array::append().
inline void append(AudioDevice& device, qor::Array<AudioDevice>& list)
{
    list.ensureCapacity(list.size() + 1);
    list.emplace(DeviceView::lastUse(device));
}
}
