#include "tests/fuzz/support/steps.h"

#include "simulator/machine/propertykeys.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstddef>

namespace fuzz
{
namespace
{
using Event = sim::ScriptEvent;

/// Enough for one thing to meet another; each takes milliseconds.
constexpr std::size_t mostSteps = 12;

Event::Kind kindOf(std::uint8_t number)
{
    constexpr Event::Kind kinds[] = {
        Event::Kind::added,         Event::Kind::removed,         Event::Kind::plugged,
        Event::Kind::unplugged,     Event::Kind::stateChanged,    Event::Kind::defaultChanged,
        Event::Kind::volumeChanged, Event::Kind::propertyChanged, Event::Kind::plugUsb,
        Event::Kind::unplugUsb,     Event::Kind::plugJack,        Event::Kind::unplugJack,
        Event::Kind::wake,          Event::Kind::driverUpdate,    Event::Kind::serviceStop,
        Event::Kind::serviceStart,  Event::Kind::remoteLogon};
    return kinds[number % (sizeof(kinds) / sizeof(kinds[0]))];
}

/// A property of an endpoint that programs see, and a value that may not fit it.
void changeProperty(Event& event, std::uint8_t number)
{
    const PROPERTYKEY keys[] = {sim::keys::deviceDescription, sim::keys::friendlyName, sim::keys::instancePath,
                                sim::keys::deviceFormat, sim::keys::containerId};
    event.key = keys[number % (sizeof(keys) / sizeof(keys[0]))];
    switch (number / 5 % 4)
    {
    case 0:
        event.value = sim::PropertyValue::ofText("Text " + std::to_string(number));
        break;
    case 1:
        event.value = sim::PropertyValue::ofText("");
        break;
    case 2:
        event.value = sim::PropertyValue::ofNumber(number);
        break;
    default:
        break; // VT_EMPTY removes the property
    }
}

Event eventOn(const sim::Machine& machine, const Step& step, FuzzedDataProvider& input)
{
    constexpr std::uint32_t states[] = {sim::stateActive, sim::stateDisabled, sim::stateNotPresent,
                                        sim::stateUnplugged};
    Event event;
    event.kind = kindOf(input.ConsumeIntegral<std::uint8_t>());
    const sim::Endpoint& endpoint = machine.endpoints[step.endpoint % machine.endpoints.size()];
    event.endpoint = endpoint.id;
    event.state = states[step.number % 4];
    event.role = static_cast<ERole>(step.number % 3);
    if (event.kind == Event::Kind::volumeChanged)
    {
        const auto level = -static_cast<float>(step.number % 70);
        if (endpoint.volume) // a platform has no level outside the range: the two readers show one as 0 % and as 100 %
            event.level = std::clamp(level, endpoint.volume->minimum, endpoint.volume->maximum);
        event.muted = step.number % 2 == 0;
    }
    if (event.kind == Event::Kind::propertyChanged)
        changeProperty(event, step.number);
    return event;
}
}

std::vector<Step> stepsOn(const sim::Machine& machine, FuzzedDataProvider& input)
{
    std::vector<Step> steps;
    while (!machine.endpoints.empty() && steps.size() < mostSteps && input.remaining_bytes() > 0)
    {
        Step step;
        const auto kind = input.ConsumeIntegral<std::uint8_t>();
        step.kind = kind < 128 ? Step::Kind::event : static_cast<Step::Kind>(kind % (int(Step::Kind::kMaxValue) + 1));
        step.endpoint = input.ConsumeIntegral<std::uint8_t>();
        step.number = input.ConsumeIntegral<std::uint8_t>();
        if (step.kind == Step::Kind::event)
            step.event = eventOn(machine, step, input);
        steps.push_back(step);
    }
    return steps;
}
}
