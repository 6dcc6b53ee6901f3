#include "client/reading/hardwarevalues.h"

#include "client/reading/hardwarelevels.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_set>

namespace sonavit::reading
{
namespace
{
/// Whether the problem is why a part has no name or no type.
bool concernsNames(const Problem& problem)
{
    return problem.operation() == "IPart::GetName" || problem.operation() == "IPart::GetSubType";
}

void append(std::vector<Problem>& all, const std::vector<Problem>& problems)
{
    all.insert(all.end(), problems.begin(), problems.end());
}
}

std::vector<Problem> withoutRepeats(const std::vector<Problem>& problems)
{
    std::unordered_set<std::string> known;
    std::vector<Problem> result;
    for (const Problem& problem : problems)
    {
        if (known.insert(problem.object() + "\n" + problem.operation() + "\n" + problem.sentence()).second)
            result.push_back(problem);
    }
    return result;
}

void HardwareValues::tell(std::size_t part, std::vector<Problem>& problems)
{
    append(problems, m_map.parts[part].problems);
    m_told.insert(part);
}

std::vector<Control> HardwareValues::controls(const EndpointId& endpoint)
{
    std::vector<Control> controls;
    for (const ControlPlace& place : controlsOf(m_map, endpoint))
        controls.push_back(control(place));
    return controls;
}

/// Adds the problems with the mute node next to a level, such as why it gives no mute. Without such a node, those with
/// the parts whose type cannot be read and on which it depends: one of them may be it, or another level that has it.
void HardwareValues::tellOfMute(std::size_t level, std::vector<Problem>& problems)
{
    const std::size_t mute = muteNodeNextTo(m_map, level);
    if (mute != HardwarePart::none)
    {
        tell(mute, problems);
        return;
    }
    for (const std::size_t part : possibleMuteParts(m_map, level))
    {
        if (isTypeUnknown(m_map.parts[part]))
            tell(part, problems);
    }
}

Control HardwareValues::control(const ControlPlace& place)
{
    Control control;
    control.id = ControlId(m_map.partId(place.level).text());
    control.name = m_map.parts[place.level].name;
    if (place.owner != HardwarePart::none)
    {
        const HardwarePart& owner = m_map.parts[place.owner];
        control.ownerName = owner.name;
        control.ownerType = owner.type;
        std::copy_if(owner.problems.begin(), owner.problems.end(), std::back_inserter(control.problems), concernsNames);
    }
    tell(place.level, control.problems);
    const Judge levelJudge(m_map.objectOf(place.level), control.problems);
    control.channels = readChannels(*m_map.level(place.level), levelJudge);
    tellOfMute(place.level, control.problems);
    control.hasMute = place.mute != HardwarePart::none;
    if (control.hasMute)
        control.isMuted = readMute(*m_map.mute(place.mute), {m_map.objectOf(place.mute), control.problems});
    return control;
}

std::vector<Selector> HardwareValues::selectors(const std::vector<EndpointId>& endpoints)
{
    std::vector<Selector> selectors;
    for (const SelectorPlace& place : selectorsOf(m_map, endpoints))
        selectors.push_back(selector(place));
    return selectors;
}

Selector HardwareValues::selector(const SelectorPlace& place)
{
    Selector selector;
    const HardwarePart& part = m_map.parts[place.part];
    selector.id = SelectorId(m_map.partId(place.part).text());
    selector.name = part.name;
    selector.deviceId = m_map.devices[place.device].facts.id;
    selector.deviceName = m_map.devices[place.device].facts.name;
    tell(place.part, selector.problems);
    for (const std::size_t source : part.sources)
    {
        selector.inputs.push_back(input(source));
        const std::vector<Problem>& problems = m_map.parts[source].problems;
        std::copy_if(problems.begin(), problems.end(), std::back_inserter(selector.problems), concernsNames);
    }
    selector.selection = readSelection(*m_map.selector(place.part), {m_map.objectOf(place.part), selector.problems});
    return selector;
}

SelectorInput HardwareValues::input(std::size_t part) const
{
    SelectorInput input;
    input.number = m_map.parts[part].number;
    input.name = m_map.parts[part].name;
    const std::size_t connector = sourceConnector(part);
    if (connector != HardwarePart::none)
    {
        input.connectorName = m_map.parts[connector].name;
        input.connectorType = m_map.parts[connector].type;
    }
    return input;
}

/// The nearest connector upstream of a part.
std::size_t HardwareValues::sourceConnector(std::size_t part) const
{
    std::vector<std::size_t> reached = {part};
    std::unordered_set<std::size_t> known = {part};
    for (std::size_t i = 0; i < reached.size(); ++i)
    {
        const HardwarePart& here = m_map.parts[reached[i]];
        if (here.isConnector)
            return reached[i];
        for (const std::size_t source : here.sources)
        {
            if (known.insert(source).second)
                reached.push_back(source);
        }
    }
    return HardwarePart::none;
}

/// All parts are found first, as that activates interfaces, and what fails then belongs to the problems of the parts.
Hardware HardwareValues::hardware(const CardId& card, const std::vector<EndpointId>& endpoints)
{
    Hardware hardware;
    hardware.card = card;
    std::vector<std::vector<ControlPlace>> controlPlaces;
    controlPlaces.reserve(endpoints.size());
    for (const EndpointId& endpoint : endpoints)
        controlPlaces.push_back(controlsOf(m_map, endpoint));
    const std::vector<SelectorPlace> selectorPlaces = selectorsOf(m_map, endpoints);
    for (std::size_t i = 0; i < endpoints.size(); ++i)
    {
        hardware.controls.push_back({endpoints[i], {}});
        for (const ControlPlace& place : controlPlaces[i])
            hardware.controls.back().controls.push_back(control(place));
    }
    for (const SelectorPlace& place : selectorPlaces)
        hardware.selectors.push_back(selector(place));
    hardware.problems = otherProblems(endpoints);
    return hardware;
}

std::vector<Problem> HardwareValues::otherProblems(const std::vector<EndpointId>& endpoints) const
{
    std::vector<Problem> problems;
    for (const std::size_t device : devicesOf(m_map, endpoints))
    {
        append(problems, m_map.devices[device].problems);
        for (const std::size_t part : m_map.devices[device].parts)
        {
            if (m_told.count(part) == 0)
                append(problems, m_map.parts[part].problems);
        }
    }
    return withoutRepeats(problems);
}
}
