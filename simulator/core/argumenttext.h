/// @file
/// Arguments of platform calls as the journal writes them.
#pragma once

#include "platform/coreaudio.h"

#include <string>
#include <type_traits>

namespace sim
{
/// Name of the interface or class; the identifier itself if the machine does not know it.
std::string argumentText(REFIID iid);
/// The key as machine files write it: "deviceFormat", or "{FORMAT-ID}/NUMBER".
std::string argumentText(const PROPERTYKEY& key);
/// The string itself; "null" for a null pointer.
std::string argumentText(const WCHAR* text);
std::string argumentText(const std::string& text);
/// An event context: its identifier, or "null".
std::string argumentText(const GUID* context);
std::string argumentText(EDataFlow flow);
std::string argumentText(ERole role);
std::string argumentText(AUDCLNT_SHAREMODE mode);
std::string argumentText(AUDIO_STREAM_CATEGORY category);
/// "32f/48000/2"; the tag in hexadecimal if the samples are not linear; "null" for a null pointer.
std::string argumentText(const WAVEFORMATEX* format);
/// The shortest decimal form that reads back as the same number.
std::string argumentText(float number);

/// Numbers in decimal.
template<class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
std::string argumentText(Integer number)
{
    return std::to_string(number);
}

/// "object", or "null": for pointers of which only the presence matters.
inline std::string presenceText(const void* pointer)
{
    return pointer == nullptr ? "null" : "object";
}
}
