/// @file
/// The client layer's values, read with the object model.
#pragma once

#include "sonavit/control.h"
#include "sonavit/graph.h"
#include "sonavit/ids.h"
#include "sonavit/result.h"
#include "sonavit/snapshot.h"

#include <memory>
#include <vector>

namespace sonavit::model
{
/// Fills the client layer's values with the classes of the object model (SoundCard, AudioDevice, VolumeController), as
/// sonavit::System fills them from the platform itself. Programs show with it what the object model answers, and a test
/// compares the two readers.
///
/// What the object model does not know has no value: container, bus, parent, form factor and descriptions of jacks,
/// Volume::isInHardware, ids and names of controls. What it knows roughly goes in as it is: percent are whole numbers.
/// Where it answers with a start value if the platform fails, the platform is asked first. docs/client-differences.md
/// lists in what else the two readers differ.
///
/// All operations run on the caller's thread, which must have initialised COM. The object model's own contract holds:
/// it logs, opens property stores as AudioDevice::setStoreAccess() says, creates the process-wide enumerator, and keeps
/// for good a registration for each card of a snapshot and a reference for each walk through the hardware. Use one
/// object from one thread, and end it there.
class ObjectModel
{
public:
    /// Asks nothing yet.
    ObjectModel();
    ~ObjectModel();
    ObjectModel(const ObjectModel&) = delete;
    ObjectModel& operator=(const ObjectModel&) = delete;

    /// Reads all cards anew. Why a list is empty although it should not be is among the problems.
    Snapshot snapshot();

    // These answer about the cards of the last snapshot, which is read first if there is none.
    // Problem::Kind::notThere for an endpoint or a card that it does not contain.

    /// The hardware controls of an endpoint. A control next to two connectors occurs twice. Problem::Kind::internal if
    /// the object model's walk leaves the card's graph.
    Result<std::vector<Control>> controls(const EndpointId& endpoint);
    /// The input selectors of a card. If the two walks of the object model that lead to selectors find different
    /// numbers of them, they have a selection and nothing else.
    Result<std::vector<Selector>> selectors(const CardId& card);
    /// The hardware of cards, in the order of the snapshot.
    Result<Graph> graph(const std::vector<CardId>& cards);

private:
    struct State;

    State& state();

    std::unique_ptr<State> m_state;
};
}
