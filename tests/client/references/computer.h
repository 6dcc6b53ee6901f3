/// @file
/// Computers as values, for the scenarios of references: what is there before, and what is there afterwards.
#pragma once

#include "sonavit/nodekind.h"
#include "sonavit/reference.h"
#include "sonavit/snapshot.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit::test
{
/// An endpoint as a scenario changes it.
struct SimpleEndpoint
{
    std::string id;
    std::string description = "Speakers";
    NodeKind jack = NodeKind::speaker;
    Flow flow = Flow::output;
    std::optional<State> state = State::active;
    FormFactor formFactor = FormFactor::speakers;
    std::optional<JackGeometry> geometry = std::nullopt;
};

/// A device as a scenario changes it.
struct Device
{
    std::string instanceId;
    std::string parent;
    std::string name = "USB Audio";
    std::optional<Guid> container;
    std::string driver = "usbaudio.inf:1";
    std::vector<SimpleEndpoint> endpoints;
};

inline Endpoint endpointOf(const Device& device, const SimpleEndpoint& simple)
{
    Jack jack;
    if (simple.jack != NodeKind::other)
        jack.type = guidOf(simple.jack);
    jack.formFactor = simple.formFactor;
    jack.geometry = simple.geometry;
    Endpoint::Content content;
    content.id = EndpointId(simple.id);
    content.flow = simple.flow;
    content.state = simple.state;
    content.description = simple.description;
    content.interfaceName = device.name;
    content.container = device.container;
    content.driverNode = device.driver;
    content.jacks = {jack};
    if (!device.instanceId.empty())
        content.instancePath = "{1}." + device.instanceId;
    return Endpoint(content);
}

inline Card cardOf(const Device& device)
{
    Card::Content content;
    content.title = device.name;
    content.container = device.container;
    if (!device.instanceId.empty())
    {
        content.id = CardId("{1}." + device.instanceId);
        content.instancePath = "{1}." + device.instanceId;
        content.instanceId = device.instanceId;
    }
    if (!device.parent.empty())
        content.parent = device.parent;
    for (const SimpleEndpoint& simple : device.endpoints)
        content.endpoints.push_back(endpointOf(device, simple));
    return Card(content);
}

inline Snapshot computer(const std::vector<Device>& devices)
{
    Snapshot::Content content;
    for (const Device& device : devices)
        content.cards.push_back(cardOf(device));
    return Snapshot(content);
}

inline Reference referenceTo(const Snapshot& snapshot, const std::string& id)
{
    return refer(snapshot, EndpointId(id)).value();
}

/// The id of the best candidate; empty without one.
inline std::string bestOf(const Resolution& resolution)
{
    const std::optional<CardEndpoint> best = resolution.best();
    return best ? best->endpoint.id().text() : std::string();
}
}
