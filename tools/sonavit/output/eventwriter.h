#pragma once

#include "sonavit/change.h"
#include "tools/sonavit/environment.h"

#include <optional>
#include <set>
#include <string>
#include <tuple>

namespace sonavit::program
{
/// Shows what changes, one event on each line.
class EventWriter
{
public:
    /// @param machine name of the simulated machine, for JSON
    EventWriter(const Environment& environment, bool isJson, std::optional<std::string> machine);

    /// Makes room for names as long as those of the endpoint. An output and an input of a card that have the same name
    /// are shown with their flows.
    void expect(const Card& card, const Endpoint& endpoint);

    /// Writes and flushes the line of an event of @p change, unless an earlier line could not be written.
    void write(const Event& event, const Change& change);

    /// Whether a line could not be written.
    bool isOutputLost() const;

private:
    void expect(const Card& card);
    std::string line(const Event& event, const Snapshot& after, const Card& card) const;
    std::string shownTitle(const Card& card, const Endpoint& endpoint) const;

    const Environment& m_environment;
    bool m_isJson;
    std::optional<std::string> m_machine;
    std::size_t m_cardWidth = 0;
    std::size_t m_endpointWidth = 0;
    std::set<std::tuple<std::string, std::string, Flow>> m_names; ///< card, title and flow of what is expected
};

/// The endpoint that @p event is about; for a default the one that it is now, if any.
std::optional<Endpoint> subjectOf(const Event& event);
}
