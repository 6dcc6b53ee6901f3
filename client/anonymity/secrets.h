/// @file
/// What in a machine identifies its owner.
#pragma once

#include "client/anonymity/rules.h"

#include <string>
#include <string_view>
#include <vector>

namespace sonavit::anonymity
{
/// A string that identifies the owner, in lower case.
struct Secret
{
    enum class Kind
    {
        serial,    ///< of a device
        address,   ///< of a Bluetooth device: twelve hexadecimal digits
        container, ///< a GUID without braces
        name
    };

    Kind kind = Kind::serial;
    std::u32string text;
    Extent extent = Extent::anywhere;
};

/// The serial numbers, addresses and containers of @p machine, those of @p names that are not empty, and the names
/// before an "'s" in the names of devices. Each once, in the machine's order. The machine does not change.
std::vector<Secret> secretsOf(sim::Machine& machine, const std::vector<std::string>& names);
}
