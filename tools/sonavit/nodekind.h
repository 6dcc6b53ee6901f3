/// Kinds of jacks and of nodes in a hardware graph, in plain words.
#pragma once

#include "platform/coreaudio.h"

#include <optional>
#include <string>

namespace sonavit
{
/// What a kind is called: "spdif" in JSON, "S/PDIF" for people.
struct NodeKind
{
    const char* key;
    const char* words;
};

/// No value for the type that is all zero: nothing was read.
std::optional<GUID> typeOrNothing(const GUID& type);

/// The kind of @p type; "other" for one that has no name here.
NodeKind nodeKind(const GUID& type);

/// The names of a type that may not have been read.
std::optional<std::string> kindKey(const std::optional<GUID>& type);
std::string kindWords(const std::optional<GUID>& type);
std::optional<std::string> typeText(const std::optional<GUID>& type);

/// Whether sound passes such a jack as numbers.
bool isDigitalJack(const GUID& type);
bool isLineJack(const GUID& type);
}
