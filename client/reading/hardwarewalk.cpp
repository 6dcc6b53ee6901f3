#include "client/reading/hardwarewalk.h"

#include "client/reading/hardwarelevels.h"
#include "client/reading/hardwaresearch.h"
#include "client/reading/hardwarevalues.h"

#include <algorithm>
#include <set>
#include <utility>

namespace sonavit::reading
{
namespace
{
bool isOfCall(const Problem& problem) noexcept
{
    return problem.kind() == Problem::Kind::platform;
}

bool isOfCallButNames(const Problem& problem) noexcept
{
    return isOfCall(problem) && problem.operation() != "IPart::GetName";
}
}

/// The walked hardware, and the endpoints of the cards.
struct HardwareWalk::State
{
    HardwareMap map;
    std::unordered_map<CardId, std::vector<EndpointId>> cards;

    const std::vector<EndpointId>& endpointsOf(const CardId& card) const
    {
        static const auto& noEndpoints = *new std::vector<EndpointId>; // lasts: threads read it until the process ends
        const auto found = cards.find(card);
        return found == cards.end() ? noEndpoints : found->second;
    }
};

HardwareWalk::HardwareWalk(IMMDeviceEnumerator& enumerator, const std::vector<Card>& cards)
    : m_state(std::make_unique<State>())
{
    m_state->map = walkHardware(enumerator, cards);
    for (const Card& card : cards)
    {
        std::vector<EndpointId>& endpoints = m_state->cards[card.id()];
        for (const Endpoint& endpoint : card.endpoints())
            endpoints.push_back(endpoint.id());
    }
}

HardwareWalk::~HardwareWalk() = default;

Graph HardwareWalk::graph() const
{
    return HardwareValues(m_state->map).graph();
}

std::vector<Control> HardwareWalk::controls(const EndpointId& endpoint) const
{
    return HardwareValues(m_state->map).controls(endpoint);
}

std::vector<std::size_t> HardwareWalk::distances(const EndpointId& endpoint) const
{
    std::vector<std::size_t> distances;
    for (const ControlPlace& control : controlsOf(m_state->map, endpoint))
        distances.push_back(control.distance);
    return distances;
}

std::vector<Selector> HardwareWalk::selectors(const CardId& card) const
{
    return HardwareValues(m_state->map).selectors(m_state->endpointsOf(card));
}

Hardware HardwareWalk::hardware(const CardId& card) const
{
    return HardwareValues(m_state->map).hardware(card, m_state->endpointsOf(card));
}

bool HardwareWalk::hasFailures() const noexcept
{
    return hasProblems(isOfCall);
}

std::optional<Problem> HardwareWalk::firstFailure(bool (*isMeant)(const Problem& problem) noexcept) const
{
    const auto firstOf = [isMeant](const auto& all) -> std::optional<Problem>
    {
        for (const auto& each : all)
        {
            const auto found = std::find_if(each.problems.begin(), each.problems.end(), isMeant);
            if (found != each.problems.end())
                return *found;
        }
        return std::nullopt;
    };
    std::optional<Problem> ofDevice = firstOf(m_state->map.devices);
    return ofDevice ? ofDevice : firstOf(m_state->map.parts);
}

bool HardwareWalk::hasProblems(bool (*isMeant)(const Problem& problem) noexcept) const noexcept
{
    const auto isFlawed = [&](const auto& each)
    { return std::any_of(each.problems.begin(), each.problems.end(), isMeant); };
    const HardwareMap& map = m_state->map;
    return std::any_of(map.devices.begin(), map.devices.end(), isFlawed) ||
           std::any_of(map.parts.begin(), map.parts.end(), isFlawed);
}

Handle<IAudioVolumeLevel> HardwareWalk::level(const ControlId& control) const
{
    HardwareMap& map = m_state->map;
    const std::size_t part = map.find(PartId(control.text()));
    if (part == HardwarePart::none || !isOfType(map.parts[part], KSNODETYPE_VOLUME))
        return {};
    map.level(part);
    return map.parts[part].level.object;
}

Handle<IAudioMute> HardwareWalk::mute(const ControlId& control) const
{
    HardwareMap& map = m_state->map;
    const std::size_t part = map.find(PartId(control.text()));
    const std::size_t mute = part == HardwarePart::none ? part : muteNextTo(map, part);
    return mute == HardwarePart::none ? Handle<IAudioMute>() : map.parts[mute].mute.object;
}

Handle<IAudioInputSelector> HardwareWalk::selector(const SelectorId& selector) const
{
    HardwareMap& map = m_state->map;
    const std::size_t part = map.find(PartId(selector.text()));
    if (part == HardwarePart::none || map.parts[part].isConnector)
        return {};
    map.selector(part);
    return map.parts[part].selector.object;
}

std::vector<HardwareWalk::ChangingControl> HardwareWalk::changingControls(const CardId& card) const
{
    HardwareMap& map = m_state->map;
    const std::vector<EndpointId>& endpoints = m_state->endpointsOf(card);
    std::vector<ChangingControl> parts;
    std::set<std::pair<std::size_t, const IID*>> added;
    const auto add = [&](std::size_t part, const IID& control)
    {
        if (part != HardwarePart::none && added.emplace(part, &control).second)
            parts.push_back({map.parts[part].part, control});
    };
    for (const EndpointId& endpoint : endpoints)
    {
        for (const ControlPlace& control : controlsOf(map, endpoint))
        {
            add(control.level, IID_IAudioVolumeLevel);
            add(control.mute, IID_IAudioMute);
        }
    }
    for (const SelectorPlace& selector : selectorsOf(map, endpoints))
        add(selector.part, IID_IAudioInputSelector);
    return parts;
}

Problem hiding(const Problem& failure, const Problem& missing, const char* where)
{
    return Problem::ofCall(failure.operation(), failure.object(), failure.code(),
                           missing.sentence() + " " + where + ": " + failure.sentence());
}

Problem orHidingFailure(const HardwareWalk& walk, const Problem& problem)
{
    const bool isMissing = problem.kind() == Problem::Kind::notThere || problem.kind() == Problem::Kind::notSupported;
    const bool isNamed = problem.kind() == Problem::Kind::notThere; // a name that cannot be read hides no interface
    const std::optional<Problem> failure =
        isMissing ? walk.firstFailure(isNamed ? isOfCall : isOfCallButNames) : std::nullopt;
    return failure ? hiding(*failure, problem, "in the hardware that can be read") : problem;
}
}
