/// The keys of a device's properties by name.
#pragma once

#include "platform/coreaudio.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace sim
{
namespace keys
{
inline constexpr PROPERTYKEY deviceDescription = {
    {0xA45C254E, 0xDF1C, 0x4EFD, {0x80, 0x20, 0x67, 0xD1, 0x46, 0xA8, 0x50, 0xE0}}, 2};
/// "Speakers (Analog Audio)".
inline constexpr PROPERTYKEY fullName = {{0xA45C254E, 0xDF1C, 0x4EFD, {0x80, 0x20, 0x67, 0xD1, 0x46, 0xA8, 0x50, 0xE0}},
                                         14};
inline constexpr PROPERTYKEY deviceFormat = {
    {0xF19F064D, 0x082C, 0x4E27, {0xBC, 0x73, 0x68, 0x82, 0xA1, 0xBB, 0x8E, 0x4C}}, 0};
inline constexpr PROPERTYKEY instancePath = {
    {0xB3F8FA53, 0x0004, 0x438E, {0x90, 0x03, 0x51, 0xA4, 0x6E, 0x13, 0x9B, 0xFC}}, 2};
inline constexpr PROPERTYKEY driverNodeStrongName = {
    {0x83DA6326, 0x97A6, 0x4088, {0x94, 0x53, 0xA1, 0x92, 0x3F, 0x57, 0x3B, 0x29}}, 3};
inline constexpr PROPERTYKEY friendlyName = {
    {0xB3F8FA53, 0x0004, 0x438E, {0x90, 0x03, 0x51, 0xA4, 0x6E, 0x13, 0x9B, 0xFC}}, 6};
inline constexpr PROPERTYKEY speakerConfig = {
    {0x1DA5D803, 0xD492, 0x4EDD, {0x8C, 0x23, 0xE0, 0xC0, 0xFF, 0xEE, 0x7F, 0x0E}}, 3};
inline constexpr PROPERTYKEY endpointGuid = {
    {0x1DA5D803, 0xD492, 0x4EDD, {0x8C, 0x23, 0xE0, 0xC0, 0xFF, 0xEE, 0x7F, 0x0E}}, 4};
}

struct NamedKey
{
    std::string_view name;
    PROPERTYKEY key;
};

/// The keys that a machine file may call by name; any other is written "{FORMAT-ID}/NUMBER".
inline constexpr std::array<NamedKey, 7> namedKeys = {{
    {"deviceDescription", keys::deviceDescription},
    {"deviceFormat", keys::deviceFormat},
    {"instancePath", keys::instancePath},
    {"driverNodeStrongName", keys::driverNodeStrongName},
    {"friendlyName", keys::friendlyName},
    {"speakerConfig", keys::speakerConfig},
    {"endpointGuid", keys::endpointGuid},
}};

std::string keyText(const PROPERTYKEY& key);
std::optional<PROPERTYKEY> keyFromText(const std::string& text);
}
