#include "client/diagnosing/failurewords.h"
#include "client/diagnosing/findings.h"
#include "client/diagnosing/usualcauses.h"
#include "sonavit/codes.h"
#include "sonavit/text.h"

#include <algorithm>
#include <string_view>

namespace sonavit::diagnosing
{
namespace
{
using capturing::FailedCall;

bool isActivation(const FailedCall& call)
{
    return call.operation == "IMMDevice::Activate" || call.operation == "IPart::Activate";
}

const std::string& firstArgument(const FailedCall& call)
{
    static const std::string none;
    return call.arguments.empty() ? none : call.arguments.front();
}

/// Whether nothing else is to be expected of an endpoint in that state: the device behind one that is not active need
/// not answer, and an endpoint or a part need not have each interface.
bool isNatural(const FailedCall& call, bool isActive)
{
    if (call.outcome == FailedCall::Outcome::nullSuccess)
        return false;
    if (call.operation == "IMMDevice::Activate" && call.code == E_NOINTERFACE)
        return true;
    return !isActive &&
           (isActivation(call) || text::lowerCase(call.operation).find("audioclient") != std::string::npos) &&
           (call.code == AUDCLNT_E_DEVICE_INVALIDATED || call.code == E_NOTFOUND || call.code == E_NOINTERFACE);
}

/// "IPropertyStore::GetValue(friendlyName) returns 0x80070005 (E_ACCESSDENIED), access denied".
std::string report(const FailedCall& call)
{
    if (call.outcome == FailedCall::Outcome::nullSuccess)
        return call.call() + " reports success and returns nothing";
    const auto code = static_cast<std::uint32_t>(call.code);
    const KnownCode* const known = knownCode(code);
    const std::string number = text::hexCode(code);
    return call.call() + " returns " + (known == nullptr ? number : number + " (" + known->name + "), " + known->words);
}

class FailureReporter
{
public:
    FailureReporter(const Places& places, Findings& findings) : m_places(places), m_findings(findings) {}

    void reportAll()
    {
        const std::vector<FailedCall>& calls = m_places.survey().failures;
        for (std::size_t index = 0; index < calls.size(); ++index)
        {
            const auto isSame = [&](const FailedCall& other) { return isRepetition(calls[index], other); };
            const auto here = calls.begin() + static_cast<std::ptrdiff_t>(index);
            if (!isNatural(calls[index], isActive(calls[index])) && std::none_of(calls.begin(), here, isSame))
                add(calls[index], static_cast<std::size_t>(std::count_if(here, calls.end(), isSame)));
        }
    }

private:
    /// The same for another channel, another connector, or another property that has no words of its own.
    static bool isRepetition(const FailedCall& left, const FailedCall& right)
    {
        if (left.operation != right.operation || left.object != right.object || left.code != right.code)
            return false;
        const FailureWords* const words = &wordsFor(left.operation, firstArgument(left));
        return words == &wordsFor(right.operation, firstArgument(right)) &&
               (std::string_view(words->argument).empty() || left.arguments == right.arguments);
    }

    /// The device that the call was made on, or to which its object belongs; null if the survey has none.
    const sim::Device* deviceOf(const FailedCall& call) const
    {
        if (const sim::Device* const device = m_places.device(call.object))
            return device;
        return m_places.part(call.object).device;
    }

    bool isActive(const FailedCall& call) const
    {
        const sim::Device* const device = deviceOf(call);
        const sim::Endpoint* const endpoint = device == nullptr ? nullptr : m_places.endpoint(device->id);
        return device == nullptr || (device->state == sim::stateActive && (endpoint == nullptr || endpoint->installed));
    }

    /// The endpoints behind the object, or behind the device that the call asks for.
    Owners ownersOf(const FailedCall& call) const
    {
        Owners owners = m_places.ownersOf(call.object);
        for (std::size_t index = 0; index < call.arguments.size() && owners.empty(); ++index)
            owners = m_places.ownersOf(call.arguments[index]);
        return owners;
    }

    std::string sentenceOf(const FailedCall& call, std::size_t count) const
    {
        std::string sentence = wordsFor(call.operation, firstArgument(call)).what;
        const sim::Part* const part = partOf(call.object);
        if (const std::size_t place = sentence.find('@'); place != std::string::npos)
            sentence.replace(place, 1, part == nullptr ? inFull(call.object) : m_places.nameOf(*part));
        sentence += ": " + text::printable(report(call)) + ".";
        if (count > 1)
            sentence +=
                (count == 2 ? " So does " : " So do ") + text::counted(count - 1, "further call") + " of this kind.";
        return sentence;
    }

    /// The part of which an object is, which may be one of its lists or controls.
    const sim::Part* partOf(const std::string& object) const
    {
        for (std::size_t end = object.size(); end != std::string::npos && end > 0; end = object.rfind(' ', end - 1))
        {
            if (const PartOf found = m_places.part(object.substr(0, end)); found.part != nullptr)
                return found.part;
        }
        return nullptr;
    }

    void add(const FailedCall& call, std::size_t count)
    {
        const FailureWords& words = wordsFor(call.operation, firstArgument(call));
        const sim::Device* const device = deviceOf(call);
        const bool isPresent = device == nullptr || hasHardware(*device);
        Draft draft;
        draft.kind = Finding::Kind::failure;
        draft.rule = words.rule;
        draft.sentence = sentenceOf(call, count);
        draft.effect = words.effect;
        draft.cause = usualCause(static_cast<std::uint32_t>(call.code), call.operation, firstArgument(call), isPresent);
        draft.problem = call.problem();
        m_findings.add(std::move(draft), ownersOf(call));
    }

    const Places& m_places;
    Findings& m_findings;
};
}

void findFailures(const Places& places, Findings& findings)
{
    FailureReporter(places, findings).reportAll();
}
}
