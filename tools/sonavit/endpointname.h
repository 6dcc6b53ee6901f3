/// How the user names endpoints and cards.
#pragma once

#include "tools/sonavit/endpoint.h"

#include <cstddef>
#include <string>
#include <vector>

namespace sonavit
{
inline constexpr const char* defaultOutputName = "@DEFAULT_OUTPUT@";
inline constexpr const char* defaultInputName = "@DEFAULT_INPUT@";

/// The endpoint that @p name names: by its whole id, by its whole name or description, by a piece of one of them, or as
/// a default. Letters may be of either case. Throws UsageError, which lists the candidates, unless it is just one.
std::size_t endpointIndex(const std::vector<Endpoint>& endpoints, const std::string& name);
Endpoint& findEndpoint(std::vector<Endpoint>& endpoints, const std::string& name);

struct EndpointOfCard
{
    Card& card;
    Endpoint& endpoint;
};

/// The same among the endpoints of all cards.
EndpointOfCard findEndpoint(std::vector<Card>& cards, const std::string& name);

/// Takes all cards away but the one that @p name names, by its ids, its name, or a piece of one of them. An empty name
/// keeps all of them.
void keepCards(std::vector<Card>& cards, const std::string& name);
}
