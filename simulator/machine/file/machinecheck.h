/// @file
/// The walk through a machine that checkMachine() makes; its sources are divided by what they check.
#pragma once

#include "simulator/machine/file/check.h"
#include "simulator/machine/namedvalues.h"
#include "simulator/machine/printable.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sim
{
inline constexpr std::uint32_t allStates = stateActive | stateDisabled | stateNotPresent | stateUnplugged;
inline constexpr const char* stateRange = "a state or a sum of states, 0 to 15";

inline std::string inner(const std::string& place, const char* field)
{
    return place + "/" + field;
}

inline std::string inner(const std::string& place, std::size_t index)
{
    return place + "/" + std::to_string(index);
}

/// The parts of one topology.
using PartsById = std::unordered_map<std::string, const Part*>;

/// Walks a machine once, in the order of its file, and collects what is wrong.
class MachineCheck
{
public:
    explicit MachineCheck(const Machine& machine) : m_machine(machine) {}

    std::vector<MachineProblem> run();

private:
    /// Notes a problem unless it @p holds; returns whether it does.
    bool require(bool holds, const std::string& place, const std::string& expected, const std::string& found)
    {
        if (!holds)
            m_problems.push_back({place, expected, found});
        return holds;
    }

    void requireNew(std::set<std::string>& known, const std::string& id, const std::string& place)
    {
        if (require(!id.empty(), place, "an id", inQuotes(id)))
            require(known.insert(id).second, place, "a unique id", "duplicate " + inQuotes(id));
    }

    /// Requires that the table has a name for @p value: a file cannot contain any other.
    template<class Value, std::size_t Size>
    void requireName(const Names<Value, Size>& names, const Value& value, const std::string& place)
    {
        require(!nameOf(names, value).empty(), place, oneOf(names), std::to_string(static_cast<std::int64_t>(value)));
    }

    void devices();
    void device(const Device& device, const std::string& place);
    void properties(const Properties& properties, const std::string& place);
    void propertyValue(const PropertyValue& value, const std::string& place);
    void periods(const DevicePeriods& periods, const std::string& place);
    void endpointVolume(const EndpointVolume& volume, const std::string& place);
    void hardwareControls();
    void hardwareVolume(const EndpointVolume& volume, const std::string& place);
    void hardwareMute(const EndpointVolume& volume, const std::string& place);
    void topology(const Topology& topology, const std::string& place);
    template<class AnyPart>
    void partList(const std::vector<AnyPart>& parts, std::set<std::uint32_t>& localIds, const PartsById& known,
                  const std::string& place);
    void jackNames(const Jack& jack, const std::string& place);
    void part(const Part& part, const PartsById& known, const std::string& place);
    void partIds(const std::vector<std::string>& ids, const PartsById& known, const std::string& place);
    void signalPaths(const Topology& topology, const PartsById& known, const std::string& place);
    void defaults();
    void joins();
    void connectorId(const std::string& id, const std::string& place);
    void deviceInstances();
    void script();
    void event(const ScriptEvent& event, const std::string& place);
    void volumeEvent(const ScriptEvent& event, const Endpoint& endpoint, const std::string& place);
    void faults();
    void latency();

    void range(float minimum, float maximum, float step, const std::string& place);
    void level(float level, float minimum, float maximum, const std::string& place);
    void channelCount(std::size_t count, const std::string& place);

    const Machine& m_machine;
    std::set<std::string> m_deviceIds;
    std::set<std::string> m_partIds;
    std::unordered_set<std::string> m_connectorIds;
    std::vector<MachineProblem> m_problems;
};
}
