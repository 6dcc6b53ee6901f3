/// Cards and endpoints in words for people.
#pragma once

#include "tools/sonavit/endpoint.h"
#include "tools/sonavit/endpointvolume.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit::program
{
/// The name of @p endpoint as printable text, or "unnamed output" and the id.
std::string titleWords(const Endpoint& endpoint);

/// titleWords(), cut to a length that fits into a message.
std::string shortTitleWords(const Endpoint& endpoint);

/// "output" and "input".
const char* flowWords(EDataFlow flow);

/// "not present"; "-" for a state that is not one of the four.
std::string stateWords(const std::optional<unsigned>& state);

/// "S/PDIF"; "Other" for a type that has no name, "-" without a type.
std::string kindWords(const std::optional<GUID>& type);

/// "-65.25 to 0.00 dB in steps of 0.75", or "-".
std::string rangeWords(const std::optional<LevelRange>& range);

/// "muted", "not muted", or "-".
std::string muteWords(const std::optional<bool>& isMuted);

/// Throws UsageError: @p name names several things, not one.
/// @param titles of these things; the message lists the first ones and counts the others
/// @param noun what they are: "endpoint"
[[noreturn]] void raiseAmbiguous(const std::vector<std::string>& titles, const std::string& name,
                                 const std::string& noun);
}
