/// @file
/// In what the two readers differ about the hardware behind endpoints.
#pragma once

#include "simulator/machine/machine.h"
#include "tests/client/model/supportanswers.h"

namespace support
{
/// Calls @p action with each endpoint of the client and that of the object model with the same id.
template<class Action>
void forEachPair(Answers& client, Answers& model, const Action& action)
{
    client.forEach(
        [&](Answers::OfEndpoint& clients)
        {
            model.forEach(
                [&](Answers::OfEndpoint& models)
                {
                    if (clients.content.id == models.content.id)
                        action(clients, models);
                });
        });
}

// Each makes both answers alike in one point, and in no other; see wantedDifferences().

void settleLevelsBetweenNodes(Answers& client, Answers& model, const sim::Machine& machine);
void settleControlNames(Answers& client, Answers& model, const sim::Machine& machine);
void settleTwiceMetControls(Answers& client, Answers& model, const sim::Machine& machine);
void settleSelectorsOfEndpoints(Answers& client, Answers& model, const sim::Machine& machine);
void settleTwinConnectors(Answers& client, Answers& model, const sim::Machine& machine);
void settleUnreachableHardware(Answers& client, Answers& model, const sim::Machine& machine);
}
