/// How the user names endpoints and cards.
#pragma once

#include "tools/sonavit/endpoint.h"

#include <cstddef>
#include <string>
#include <vector>

namespace sonavit::program
{
inline constexpr const char* defaultOutputName = "@DEFAULT_OUTPUT@";
inline constexpr const char* defaultInputName = "@DEFAULT_INPUT@";

/// The endpoint that @p name names: by its whole id, by its whole name or description, by a part of one of them, or as
/// a default. Upper and lower case are alike. Throws UsageError, which lists the candidates, unless there is exactly
/// one; OperationFailure if the platform fails to report the names or the default.
std::size_t endpointIndex(const std::vector<Endpoint>& endpoints, const std::string& name);
Endpoint& findEndpoint(std::vector<Endpoint>& endpoints, const std::string& name);

struct EndpointOfCard
{
    Card& card;
    Endpoint& endpoint;
};

/// The same among the endpoints of all cards.
EndpointOfCard findEndpoint(std::vector<Card>& cards, const std::string& name);

/// Keeps only the card that @p name names, by its ids, its name, or a part of one of them. An empty name keeps all of
/// them. Throws as endpointIndex().
void keepCards(std::vector<Card>& cards, const std::string& name);

/// As keepCards(), but throws UsageError if @p endpoint names an endpoint of another card and none of this one. An
/// empty
/// @p endpoint names none.
void keepCardsWith(std::vector<Card>& cards, const std::string& name, const std::string& endpoint);
}
