/// Questions about a described machine that tests of several machines ask.
#pragma once

#include "simulator/machine/machine.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace facts
{
using sim::Machine;

inline std::size_t inState(const Machine& machine, std::uint32_t state)
{
    const auto isIn = [&](const sim::Endpoint& endpoint) { return endpoint.state == state; };
    return static_cast<std::size_t>(std::count_if(machine.endpoints.begin(), machine.endpoints.end(), isIn));
}

inline std::string textOf(const sim::Device& device, const PROPERTYKEY& key)
{
    const sim::PropertyValue* value = sim::findProperty(device.properties, key);
    return value == nullptr ? std::string() : value->text.value_or("");
}

/// The endpoints of each card, by the instance path that they share.
inline std::map<std::string, std::vector<std::string>> cardsOf(const Machine& machine)
{
    std::map<std::string, std::vector<std::string>> cards;
    for (const sim::Endpoint& endpoint : machine.endpoints)
        cards[textOf(endpoint, sim::keys::instancePath)].push_back(textOf(endpoint, sim::keys::deviceDescription));
    return cards;
}

inline std::vector<const sim::Part*> partsOf(const sim::Device& device)
{
    std::vector<const sim::Part*> parts;
    if (!device.topology)
        return parts;
    for (const sim::Connector& connector : device.topology->connectors)
        parts.push_back(&connector);
    for (const sim::Subunit& subunit : device.topology->subunits)
        parts.push_back(&subunit);
    return parts;
}

inline bool contains(const std::vector<std::string>& list, const std::string& element)
{
    return std::find(list.begin(), list.end(), element) != list.end();
}

template<class Has>
std::size_t countParts(const Machine& machine, const Has& has)
{
    std::size_t count = 0;
    for (const sim::Adapter& adapter : machine.adapters)
    {
        for (const sim::Part* part : partsOf(adapter))
            count += has(*part) ? 1u : 0u;
    }
    return count;
}

/// The kinds of jacks that the endpoints of @p flow are joined to.
inline std::multiset<std::string> jacksOf(const Machine& machine, EDataFlow flow)
{
    std::multiset<std::string> kinds;
    for (const sim::Endpoint& endpoint : machine.endpoints)
    {
        const auto peer = machine.peer(endpoint.topology->connectors.front().id);
        if (endpoint.flow != flow || !peer)
            continue;
        const std::string kind = sim::nameOf(sim::nodeTypeNames, machine.part(peer->connector)->subType);
        if (!kind.empty())
            kinds.insert(kind);
    }
    return kinds;
}
}
