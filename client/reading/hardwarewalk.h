/// @file
/// The hardware graph behind endpoints, read in one walk that gives controls, selectors and graph. It runs on the
/// worker.
#pragma once

#include "client/reading/endpointreading.h"
#include "client/reading/handle.h"
#include "platform/coreaudio.h"
#include "sonavit/control.h"
#include "sonavit/graph.h"
#include "sonavit/snapshot.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace sonavit::reading
{
/// The walk through the hardware of cards: the devices of their endpoints, and what their connectors lead to.
///
/// Each part and each device is met once, however the hardware is wired, and what fails spoils nothing else: it becomes
/// a problem of the control, the selector, the card's hardware or the graph. Interfaces of parts and signal paths are
/// asked for when they are first needed, everything else at once; levels, mutes and selections at each question.
///
/// A part for which the platform reports no id has the id of its device, "#" and its number there as id of a control or
/// a selector. A control that is next to two connectors is there once.
class HardwareWalk
{
public:
    /// Walks at once. @param cards in the order of the snapshot
    HardwareWalk(IMMDeviceEnumerator& enumerator, const std::vector<Card>& cards);
    ~HardwareWalk();
    HardwareWalk(const HardwareWalk&) = delete;
    HardwareWalk& operator=(const HardwareWalk&) = delete;

    /// With the levels, mutes and selections that the parts have now.
    Graph graph() const;
    /// The controls that act on one of the endpoints, those next to its jack first, those between two nodes last.
    std::vector<Control> controls(const EndpointId& endpoint) const;
    /// Of each of these controls how many connectors a walk from the endpoint meets before one that leads to it.
    std::vector<std::size_t> distances(const EndpointId& endpoint) const;
    std::vector<Selector> selectors(const CardId& card) const;
    Hardware hardware(const CardId& card) const;
    /// Whether a platform call has failed so far, but for those that read levels, mutes and selections.
    bool hasFailures() const noexcept;
    /// The problem of that kind: the first one with a device, or else with a part. No value if there is none.
    std::optional<Problem> firstFailure(bool (*isMeant)(const Problem& problem) noexcept) const;
    /// Whether one of the problems so far, but for those of levels, mutes and selections, is what @p isMeant looks for.
    bool hasProblems(bool (*isMeant)(const Problem& problem) noexcept) const noexcept;

    /// The platform's objects of a control or a selector of the walk; nil if there is none.
    Handle<IAudioVolumeLevel> level(const ControlId& control) const;
    Handle<IAudioMute> mute(const ControlId& control) const;
    Handle<IAudioInputSelector> selector(const SelectorId& selector) const;
    /// A part, and the interface of that of its controls whose changes are meant.
    struct ChangingControl
    {
        Handle<IPart> part;
        IID control;
    };

    /// For IPart::RegisterControlChangeCallback: the levels, the mutes next to them, and the selectors.
    std::vector<ChangingControl> changingControls(const CardId& card) const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// The failing call that hides what another problem misses, with a sentence about both.
/// @param where the thing is missing: "in the hardware that can be read"
Problem hiding(const Problem& failure, const Problem& missing, const char* where);
/// @p problem as it is, unless it misses something (Problem::Kind::notThere, Kind::notSupported) and a call of the walk
/// has failed: then that failure. An operation that looks for a part must not say that there is none if it could not
/// see all of them. A name that cannot be read hides a part that is looked for, and no interface of a part.
Problem orHidingFailure(const HardwareWalk& walk, const Problem& problem);

/// The control of that id or name, see System::setControl(); the same for selectors and inputs.
Result<Control> controlNamed(const std::vector<Control>& controls, std::string_view text);
Result<Selector> selectorNamed(const std::vector<Selector>& selectors, std::string_view text);
Result<SelectorInput> inputNamed(const Selector& selector, std::string_view text);
}
