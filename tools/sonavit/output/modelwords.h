/// The layer's values in words for people: printable, on one line, "-" for what is not known.
#pragma once

#include "sonavit/endpoint.h"
#include "sonavit/ids.h"
#include "sonavit/volume.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit::program
{
/// The name of @p endpoint, or "unnamed output" and the id.
std::string titleWords(const Endpoint& endpoint);
/// titleWords(), cut to a length that fits into a message.
std::string shortTitleWords(const Endpoint& endpoint);

/// "not present".
std::string stateWords(const std::optional<State>& state);
/// "console and multimedia".
std::string rolesWords(Roles roles);
/// "S/PDIF"; "Other" for a type that has no name.
std::string kindWords(const std::optional<Guid>& type);
/// The kind, colour and place of the endpoint's jacks, as far as they are known: "Headphones, lime green, front".
std::string jackWords(const Endpoint& endpoint);

/// "72%" and "-18.00 dB".
std::string percentWords(const std::optional<Percent>& percent);
std::string decibelWords(const std::optional<Decibels>& decibels);
/// "72%  -18.00 dB".
std::string levelWords(const Level& level);
/// "-65.25 to 0.00 dB in steps of 0.75".
std::string rangeWords(const std::optional<LevelRange>& range);
/// "muted", "not muted".
std::string muteWords(const std::optional<bool>& isMuted);

/// A text of the platform, printable.
std::string orNothing(const std::optional<std::string>& text);
std::string orNothing(const std::optional<Guid>& guid);
}
