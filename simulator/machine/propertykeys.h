/// @file
/// The keys of a device's properties by name.
#pragma once

#include "platform/propertykeys.h"
#include "simulator/machine/names.h"

#include <optional>
#include <string>

namespace sim
{
namespace keys
{
using platform::propertykeys::association;
using platform::propertykeys::baseContainerId;
using platform::propertykeys::containerId;
using platform::propertykeys::deviceDescription;
using platform::propertykeys::deviceFormat;
using platform::propertykeys::driverNodeStrongName;
using platform::propertykeys::enumeratorName;
using platform::propertykeys::formFactor;
using platform::propertykeys::friendlyName;
using platform::propertykeys::fullName;
using platform::propertykeys::instanceId;
using platform::propertykeys::instancePath;
using platform::propertykeys::interfacePath;
using platform::propertykeys::jackSubType;
inline constexpr PROPERTYKEY speakerConfig = platform::propertykeys::physicalSpeakers;
inline constexpr PROPERTYKEY endpointGuid = platform::propertykeys::directSoundGuid;
}

/// The keys that have a name in machine files; any other is written "{FORMAT-ID}/NUMBER".
inline constexpr Names<PROPERTYKEY, 15> keyNames = {{
    {"deviceDescription", keys::deviceDescription},
    {"deviceFormat", keys::deviceFormat},
    {"instancePath", keys::instancePath},
    {"driverNodeStrongName", keys::driverNodeStrongName},
    {"friendlyName", keys::friendlyName},
    {"speakerConfig", keys::speakerConfig},
    {"endpointGuid", keys::endpointGuid},
    {"instanceId", keys::instanceId},
    {"interfacePath", keys::interfacePath},
    {"enumeratorName", keys::enumeratorName},
    {"containerId", keys::containerId},
    {"baseContainerId", keys::baseContainerId},
    {"formFactor", keys::formFactor},
    {"jackSubType", keys::jackSubType},
    {"association", keys::association},
}};

/// The name of @p key, or "{FORMAT-ID}/NUMBER". keyFromText() reads both and returns no value for any other string.
std::string keyText(const PROPERTYKEY& key);
std::optional<PROPERTYKEY> keyFromText(const std::string& text);
}
