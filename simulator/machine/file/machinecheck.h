/// @file
/// The walk through a machine that checkMachine() makes; its sources are divided by what they check.
#pragma once

#include "simulator/machine/file/check.h"
#include "simulator/machine/namedvalues.h"
#include "simulator/machine/printable.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sim
{
/// A place in a machine's file: the whole file, or what @p field of an outer place leads to. It refers to the outer
/// place, which must outlive it, and becomes a JSON pointer only when there is a problem to report.
class FilePlace
{
public:
    FilePlace() = default;

    FilePlace(const FilePlace& outer, const char* field) : m_outer(&outer), m_field(field) {}

    /// The element @p index of the list @p field.
    FilePlace(const FilePlace& outer, const char* field, std::size_t index)
        : m_outer(&outer),
          m_field(field),
          m_index(index)
    {
    }

    /// The member @p key of an object of properties.
    FilePlace(const FilePlace& outer, const PROPERTYKEY& key) : m_outer(&outer), m_key(&key) {}

    template<class... Steps>
    FilePlace(const FilePlace&& outer, const Steps&... steps) = delete; // the outer place would not outlive this one

    std::string pointer() const;

private:
    const FilePlace* m_outer = nullptr;
    const char* m_field = nullptr;
    std::optional<std::size_t> m_index;
    const PROPERTYKEY* m_key = nullptr;
};

/// Parts by id: of one topology, or of all.
using PartsById = std::unordered_map<std::string_view, const Part*>;

/// Walks a machine once, in the order of its file, and collects what is wrong. The machine must not change meanwhile.
class MachineCheck
{
public:
    explicit MachineCheck(const Machine& machine) : m_machine(machine) {}

    std::vector<MachineProblem> run();

private:
    void report(const FilePlace& place, const std::string& expected, const std::string& found)
    {
        m_problems.push_back({place.pointer(), expected, found});
    }

    /// Requires an id that @p known does not contain, and adds it.
    template<class Object>
    void requireNewId(std::unordered_map<std::string_view, const Object*>& known, const Object& object,
                      const FilePlace& place)
    {
        if (object.id.empty())
            report(FilePlace(place, "id"), "an id", inQuotes(object.id));
        else if (!known.emplace(object.id, &object).second)
            report(FilePlace(place, "id"), "a unique id", "duplicate " + inQuotes(object.id));
    }

    /// Requires that the table has a name for @p value: a file cannot contain any other.
    template<class Value, std::size_t Size>
    void requireName(const Names<Value, Size>& names, const Value& value, const FilePlace& place)
    {
        if (!hasName(names, value))
            report(place, oneOf(names), std::to_string(static_cast<std::int64_t>(value)));
    }

    void devices();
    void device(const Device& device, const FilePlace& place);
    void properties(const Properties& properties, const FilePlace& place);
    void unlistedProperties(const Device& device, const FilePlace& place);
    void propertyValue(const PropertyValue& value, const FilePlace& place);
    void periods(const DevicePeriods& periods, const FilePlace& place);
    void mixFormat(const Endpoint& endpoint, const FilePlace& place);
    void endpointVolume(const EndpointVolume& volume, const FilePlace& place);
    void taperPoints(const EndpointVolume& volume, const FilePlace& place);
    void hardwareControls();
    void hardwareVolume(const EndpointVolume& volume, const FilePlace& place);
    void hardwareMute(const EndpointVolume& volume, const FilePlace& place);
    void topology(const Topology& topology, const FilePlace& place);
    template<class AnyPart>
    void partList(const std::vector<AnyPart>& parts, std::unordered_set<std::uint32_t>& localIds,
                  const PartsById& known, const FilePlace& place, const char* list);
    void part(const Part& part, const PartsById& known, const FilePlace& place);
    void levels(const std::vector<ChannelLevel>& channels, const FilePlace& place);
    void selection(const Part& part, const PartsById& known, const FilePlace& place);
    void partId(const std::string& id, const PartsById& known, const FilePlace& place);
    void partIds(const std::vector<std::string>& ids, const PartsById& known, const FilePlace& place, const char* list);
    void signalPaths(const Topology& topology, const PartsById& known, const FilePlace& place);
    void defaults();
    void joins();
    void connectorId(const std::string& id, const FilePlace& place);
    void deviceInstances();
    void script();
    void event(const ScriptEvent& event, const FilePlace& place);
    void volumeEvent(const ScriptEvent& event, const Endpoint& endpoint, const FilePlace& place);
    void faults();
    /// Whether the machine has an object that fault rules call @p name.
    bool isObject(const std::string& name) const;
    bool isListOfParts(const std::string& name) const;
    bool isControl(const std::string& name) const;
    void latency();

    void range(float minimum, float maximum, float step, const FilePlace& place);
    /// A driver may report a level outside its range, but only a number.
    void decibels(float level, const FilePlace& place);
    void level(float level, float minimum, float maximum, const FilePlace& place);
    void channelCount(std::size_t count, const FilePlace& place);

    const Machine& m_machine;
    const FilePlace m_file;
    std::unordered_map<std::string_view, const Device*> m_devices;
    std::unordered_map<std::string_view, const Endpoint*> m_endpoints;
    PartsById m_parts;
    std::unordered_set<std::string_view> m_connectorIds;
    std::vector<MachineProblem> m_problems;
};
}
