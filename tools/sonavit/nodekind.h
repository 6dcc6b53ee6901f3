/// The kinds of jacks, and of nodes in a hardware graph.
#pragma once

#include "platform/coreaudio.h"

#include <optional>
#include <string>

namespace sonavit::program
{
/// No value for the type that is all zero, which the library keeps if it read none.
std::optional<GUID> typeOrNothing(const GUID& type);

/// The name of a type in JSON, "spdif", as in machine files; "other" if it has none. No value without a type.
std::optional<std::string> kindKey(const std::optional<GUID>& type);

/// The GUID of a type; no value without one.
std::optional<std::string> typeText(const std::optional<GUID>& type);

/// Whether a jack of that type carries digital audio.
bool isDigitalJack(const GUID& type);
bool isLineJack(const GUID& type);
}
