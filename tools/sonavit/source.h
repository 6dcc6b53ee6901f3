/// What the commands show: the same values from either library.
#pragma once

#include "sonavit/control.h"
#include "sonavit/graph.h"
#include "sonavit/ids.h"
#include "sonavit/result.h"
#include "sonavit/snapshot.h"
#include "sonavit/system.h"

#include <memory>
#include <vector>

namespace sonavit::program
{
/// What a walk through the hardware has found, and what it could not read.
template<class Thing>
struct Found
{
    std::vector<Thing> things;
    std::vector<Problem> problems;
};

/// Answers the questions of the commands that read.
class Source
{
public:
    Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    virtual ~Source() = default;

    virtual Snapshot snapshot() = 0;
    virtual Result<Found<Control>> controls(const CardEndpoint& place) = 0;
    virtual Result<Found<Selector>> selectors(const CardId& card) = 0;
    /// Of these cards, in their order.
    virtual Result<Graph> graph(const std::vector<CardId>& cards) = 0;
};

/// The client layer; @p audio must outlive it.
std::unique_ptr<Source> sourceFrom(System& audio);
/// The object model, on the calling thread, which must have initialised COM.
std::unique_ptr<Source> sourceFromObjectModel();
}
