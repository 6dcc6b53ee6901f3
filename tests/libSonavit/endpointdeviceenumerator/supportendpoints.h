#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "qor/array.h"
#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/propertykeys.h"

#include <string>
#include <utility>
#include <vector>

namespace support
{
/// The machine without the DirectSound GUIDs of its endpoints, whose strings the library does not free. A test that
/// uses it needs no `kept.directSoundTexts`.
inline sim::Machine withoutGuids(sim::Machine machine)
{
    for (sim::Endpoint& endpoint : machine.endpoints)
        sim::removeProperty(endpoint.properties, sim::keys::endpointGuid);
    return machine;
}

/// The endpoint ids of a list, in its order.
inline std::vector<std::string> idsOf(const qor::Array<AudioDevice>& devices)
{
    std::vector<std::string> ids;
    for (unsigned int i = 0; i < devices.size(); ++i)
        ids.push_back(devices[i].deviceProperty().deviceId.toUtf8());
    return ids;
}

/// The names of the endpoints of a list ("Speakers"), in its order.
inline std::vector<std::string> namesOf(const qor::Array<AudioDevice>& devices)
{
    std::vector<std::string> names;
    for (unsigned int i = 0; i < devices.size(); ++i)
        names.push_back(devices[i].deviceProperty().endpointType.toUtf8());
    return names;
}

/// A machine with playback endpoints in all four states, in an order other than that of the states, and one microphone.
inline sim::Machine endpointsInAllStates()
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    card.spdifOut("Unplugged").unplugged();
    card.speaker("Active");
    card.microphone("Microphone");
    card.lineOut("Not present").notPresent();
    card.headphones("Disabled").disabled();
    card.headphones("Second active");
    return withoutGuids(builder.build());
}
}
