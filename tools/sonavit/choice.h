/// What the user names, among what there is.
#pragma once

#include "sonavit/levelchange.h"
#include "sonavit/snapshot.h"
#include "tools/sonavit/commands/commands.h"

#include <cstddef>
#include <string>
#include <vector>

namespace sonavit::program
{
inline constexpr const char* defaultOutputName = "@DEFAULT_OUTPUT@";
inline constexpr const char* defaultInputName = "@DEFAULT_INPUT@";

/// Throws NotThere with @p sentence, which says that there is no such endpoint or card, and where to look; or
/// OperationFailure if it may be one that the platform fails to list.
[[noreturn]] void raiseNotThere(const Snapshot& snapshot, const std::string& sentence);

/// Throws what @p problem with a control or a selector means for the user. If it is not there, it may be one that could
/// not be read: that is an OperationFailure.
/// @param unread what could not be read of the hardware
/// @param list the command that shows what there is
[[noreturn]] void raiseOfHardware(const Problem& problem, const std::vector<Problem>& unread, const std::string& list);

/// Throws OperationFailure if @p change is about a channel that does not exist. The sentence counts channels from 1.
/// @param channels their number
/// @param intention begins the sentence: "the volume of Speakers cannot be set"
void requireChannel(const LevelChange& change, std::size_t channels, const std::string& intention);

/// The endpoint that @p name names: by its whole id, by its whole name or description, by a part of one of them, or as
/// a default. Upper and lower case are alike. Throws NotThere if there is none, UsageError, which lists the candidates,
/// if there are several, and OperationFailure if the platform fails to report the names or the default.
CardEndpoint endpointNamed(const Snapshot& snapshot, const std::string& name);

/// The same by Arguments::endpoint. Prints the sentence of reportDenied() where it explains what is missing.
CardEndpoint requestedEndpoint(const Context& context, const Snapshot& snapshot);

/// The cards that Arguments::card names: one, or all of them if it is empty. Throws as endpointNamed(). If
/// Arguments::endpoint names an endpoint of another card and none of this one, that is a UsageError, too.
std::vector<Card> requestedCards(const Context& context, const Snapshot& snapshot);

/// The newest snapshot of the source that the user has chosen. Throws OperationFailure if the system cannot list its
/// endpoints at all.
Snapshot readSnapshot(const Context& context);

/// The problems because of which endpoints may be missing, and with them all that a command finds behind them.
std::vector<Problem> problemsOfLists(const Snapshot& snapshot);

/// Prints one sentence on standard error if the system does not let this account read the properties of some endpoints:
/// how many they are.
void reportDenied(const Context& context, const std::vector<Card>& cards);
}
