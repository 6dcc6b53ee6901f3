/// @file
/// What a reference keeps of an endpoint.
#pragma once

#include "sonavit/card.h"
#include "sonavit/endpoint.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace sonavit::references
{
/// By what an endpoint is recognised. All members but the flow are strings of bytes, and empty if they are not known.
struct Traits
{
    Flow flow = Flow::output;
    std::string endpointId;
    std::string instanceId;
    std::string vendor; ///< as DeviceIdentity::vendor
    std::string product;
    std::string function;
    std::string serial;
    std::string container;     ///< 16 bytes; empty for that of the computer and the null one
    std::string jackType;      ///< 16 bytes
    std::string formFactor;    ///< the number, little-endian
    std::string jackPlace;     ///< colour, place, geometry and connection of the first jack
    std::string description;   ///< which users and languages change
    std::string interfaceName; ///< without the number that Windows puts before equal names
    std::string driver;        ///< a hash of the strong name of the driver node
};

/// Longer strings are shortened to at most these many bytes. The limits are part of the format of references, since a
/// reference is compared with strings that are shortened in the same way.
inline constexpr std::size_t idLimit = 64;
inline constexpr std::size_t nameLimit = 40;
inline constexpr std::size_t numberLimit = 20;
inline constexpr std::size_t functionLimit = 4; ///< cut off

/// The traits of an endpoint of @p card. The same for the same values.
Traits traitsOf(const Card& card, const Endpoint& endpoint);

/// A form factor as Traits::formFactor has it.
std::string formFactorBytes(FormFactor formFactor);

/// @p text if it has at most @p limit bytes; else its beginning, "~" and 16 hexadecimal digits of a hash of all of it.
/// Strings that differ in the case of A to Z alone are shortened to strings that differ in nothing else.
/// @param limit at least 17
std::string shortened(std::string_view text, std::size_t limit);

}
