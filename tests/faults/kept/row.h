/// @file
/// The rows of the table of what the object model keeps.
#pragma once

#include "simulator/simulation.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace faults::kept
{
/// What an operation keeps on purpose, after all objects that it has made or returned are gone.
enum class Kind
{
    partsLists,       ///< the IPartsList of each walk to the neighbours of a part
    directSoundTexts, ///< the string of each DirectSound GUID that was read
    defaultIds,       ///< the id of each default endpoint that was asked for
    clients,          ///< the registration of each card's updater with the shared enumerator, to the end of the module
    listedEndpoints,  ///< what the endpoints in the lists of registered updaters hold, to the end of the module
    enumerator,       ///< the shared enumerator's own, to the end of the module
    volumeClients     ///< a notification whose controller got another interface meanwhile
};

/// "the parts list of each walk".
const char* textOf(Kind kind);

struct Row
{
    std::string operation;
    std::set<Kind> keeps;
    /// Prepares the objects that the operation needs. @return the operation; it may be called any number of times
    std::function<std::function<void()>(sim::Simulation&)> prepare;
};

/// The object model's operations, by area; those that keep nothing are rows, too.
std::vector<Row> cardRows();
std::vector<Row> deviceRows();
std::vector<Row> hardwareRows();
std::vector<Row> enumeratorRows();
std::vector<Row> eventRows();
std::vector<Row> allRows();
}
