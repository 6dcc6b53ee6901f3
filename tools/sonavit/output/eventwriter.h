#pragma once

#include "tools/sonavit/endpointvolume.h"
#include "tools/sonavit/environment.h"

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <tuple>

namespace sonavit::program
{
/// The endpoint that an event is about.
struct EventSubject
{
    std::string cardId;
    std::string cardName;
    std::string endpointId;
    std::optional<std::string> endpointName;
    std::string endpointTitle;     ///< short, for people
    std::optional<EDataFlow> flow; ///< unknown for a default that does not exist
};

/// One change of an endpoint or a default.
struct MonitorEvent
{
    enum class Kind
    {
        added,
        removed,
        stateChanged,
        volumeChanged,
        defaultChanged
    };

    Kind kind = Kind::added;
    std::chrono::system_clock::time_point time;
    EventSubject subject;
    std::optional<unsigned> state;         ///< DEVICE_STATE_ bits, now
    std::optional<unsigned> previousState; ///< of stateChanged
    EndpointLevel level;                   ///< of volumeChanged, now
    EndpointLevel previousLevel;
    EDataFlow flow = eRender; ///< of defaultChanged
    ERole role = eConsole;    ///< of defaultChanged
};

/// Shows events, one on each line.
class EventWriter
{
public:
    /// @param machine name of the simulated machine, for JSON
    EventWriter(const Environment& environment, bool isJson, std::optional<std::string> machine);

    /// Makes room for names as long as those of @p subject. An output and an input of a card that have the same name
    /// are shown with their flows.
    void expect(const EventSubject& subject);

    /// Writes and flushes the line of @p event, unless an earlier line could not be written.
    void write(const MonitorEvent& event);

    /// Whether a line could not be written.
    bool isOutputLost() const;

private:
    std::string line(const MonitorEvent& event) const;
    bool hasTwin(const EventSubject& subject) const;
    std::string shownTitle(const EventSubject& subject) const;

    const Environment& m_environment;
    bool m_isJson;
    std::optional<std::string> m_machine;
    std::size_t m_cardWidth = 0;
    std::size_t m_endpointWidth = 0;
    std::set<std::tuple<std::string, std::string, EDataFlow>> m_names; ///< card, title and flow of what is expected
};
}
