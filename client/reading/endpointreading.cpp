#include "client/reading/endpointreading.h"

#include "client/reading/judge.h"
#include "client/reading/steps.h"

#include <algorithm>

namespace sonavit::reading
{
namespace
{
/// No value for numbers that are none of the four states, such as several at once.
std::optional<State> stateOf(DWORD number)
{
    switch (number)
    {
    case DEVICE_STATE_ACTIVE:
        return State::active;
    case DEVICE_STATE_DISABLED:
        return State::disabled;
    case DEVICE_STATE_NOTPRESENT:
        return State::notPresent;
    case DEVICE_STATE_UNPLUGGED:
        return State::unplugged;
    default:
        return std::nullopt;
    }
}

void append(std::vector<EndpointProblem>& all, EndpointField field, const std::vector<Problem>& problems)
{
    for (const Problem& problem : problems)
        all.push_back({field, problem});
}
}

bool canHaveHardware(const EndpointReading& reading) noexcept
{
    return reading.content.state == State::active || reading.content.state == State::unplugged;
}

void gatherProblems(EndpointReading& reading)
{
    std::vector<EndpointProblem>& all = reading.content.problems;
    all.clear();
    if (reading.stateProblems.empty() && reading.propertyProblems.empty() && reading.volumeProblems.empty() &&
        reading.jackProblems.empty())
        return;
    append(all, EndpointField::state, reading.stateProblems);
    all.insert(all.end(), reading.propertyProblems.begin(), reading.propertyProblems.end());
    append(all, EndpointField::volume, reading.volumeProblems);
    append(all, EndpointField::jacks, reading.jackProblems);
    std::stable_sort(all.begin(), all.end(),
                     [](const EndpointProblem& left, const EndpointProblem& right)
                     { return left.field < right.field; });
}

void gatherJacks(EndpointReading& reading)
{
    std::vector<Jack>& jacks = reading.content.jacks;
    jacks = reading.foundJacks;
    if (jacks.empty() && (reading.namedJack.type || reading.namedJack.formFactor))
        jacks.emplace_back();
    for (Jack& jack : jacks)
    {
        if (!jack.type)
            jack.type = reading.namedJack.type;
        jack.formFactor = reading.namedJack.formFactor;
    }
}

void readState(EndpointReading& reading)
{
    reading.stateProblems.clear();
    Judge judge(reading.content.id.text(), reading.stateProblems);
    DWORD state = 0;
    reading.content.state.reset();
    if (judge.passes(reading.device->GetState(&state), {"IMMDevice::GetState"}))
    {
        reading.content.state = stateOf(state);
        if (!reading.content.state)
            judge.fails(invalidData, {"IMMDevice::GetState"});
    }
    gatherProblems(reading);
}

void readEndpoint(EndpointReading& reading)
{
    readState(reading);
    readProperties(reading);
    readVolume(reading);
    readJacks(reading);
}
}
