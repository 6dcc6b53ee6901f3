/// @file
/// Arguments of platform calls as the journal writes them.
#pragma once

#include <string>
#include <type_traits>

#include "platform/coreaudio.h"

namespace sim
{
/// Name of an interface or class; for those that the machine does not know the identifier itself.
std::string argumentText(REFIID iid);
/// The key as machine files write it: "deviceFormat", or "{FORMAT-ID}/NUMBER".
std::string argumentText(const PROPERTYKEY& key);
/// The text itself.
std::string argumentText(const WCHAR* text);
std::string argumentText(const std::string& text);
/// An event context: its identifier, or "null".
std::string argumentText(const GUID* context);
std::string argumentText(EDataFlow flow);
std::string argumentText(ERole role);
/// The shortest decimal form that reads back as the same number.
std::string argumentText(float number);

/// Numbers in decimal.
template<class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
std::string argumentText(Integer number)
{
    return std::to_string(number);
}

/// Pointers that say nothing but whether they are there.
inline std::string presenceText(const void* pointer)
{
    return pointer == nullptr ? "null" : "object";
}
}
