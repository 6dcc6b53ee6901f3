#include "client/diagnosing/failurewords.h"
#include "client/diagnosing/findings.h"
#include "client/diagnosing/usualcauses.h"
#include "sonavit/codes.h"
#include "sonavit/text.h"

#include <algorithm>
#include <array>
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
    static const std::string& none = *new std::string; // lasts: threads diagnose until the process ends
    return call.arguments.empty() ? none : call.arguments.front();
}

bool begins(const std::string& text, std::string_view beginning)
{
    return std::string_view(text).substr(0, beginning.size()) == beginning;
}

/// Whether the code says that the device is not there.
bool saysGone(const FailedCall& call)
{
    constexpr std::array<std::uint32_t, 10> codes = {0x88890004, 0x80070490, 0x80070002, 0x8007048F, 0xE000020B,
                                                     0x800F020B, 0xE0000225, 0x800F0225, 0xE0000204, 0xE0000209};
    return call.outcome == FailedCall::Outcome::code &&
           std::find(codes.begin(), codes.end(), static_cast<std::uint32_t>(call.code)) != codes.end();
}

/// Whether the code says that the driver does not have what the call asks for.
bool saysNotImplemented(const FailedCall& call)
{
    constexpr std::array<std::uint32_t, 5> codes = {0x80004001, 0x80004002, 0x80070032, 0x80070490, 0x80070492};
    return call.outcome == FailedCall::Outcome::code &&
           std::find(codes.begin(), codes.end(), static_cast<std::uint32_t>(call.code)) != codes.end();
}

/// Whether the call asks for the description of a jack, which drivers need not have.
bool isAboutJacks(const FailedCall& call)
{
    return begins(call.operation, "IKsJackDescription") ||
           (call.operation == "IPart::Activate" && begins(firstArgument(call), "IKsJackDescription"));
}

bool isOfStreams(const FailedCall& call)
{
    return text::lowerCase(call.operation).find("audioclient") != std::string::npos;
}

bool isOfProperties(const FailedCall& call)
{
    return begins(call.operation, "IPropertyStore::") || call.operation == "IMMDevice::OpenPropertyStore";
}

/// Whether nothing else is to be expected: an endpoint or a part need not have each interface, the device behind an
/// endpoint that is not active need not answer, and one that is away or disabled is joined to nothing.
bool isNatural(const FailedCall& call, bool isActive, bool isPresent)
{
    if (isAboutJacks(call) && saysNotImplemented(call))
        return true;
    if (call.outcome == FailedCall::Outcome::nullSuccess)
        return false;
    if (call.operation == "IMMDevice::Activate" && call.code == E_NOINTERFACE)
        return true;
    if (!isActive && (isActivation(call) || isOfStreams(call)))
        return saysGone(call) || call.code == E_NOINTERFACE;
    return !isPresent && begins(call.operation, "IConnector::") && saysGone(call);
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
            const FailedCall& call = calls[index];
            const auto isSame = [&](const FailedCall& other) { return isRepetition(call, other); };
            const auto here = calls.begin() + static_cast<std::ptrdiff_t>(index);
            if (isForgotten(call))
                m_forgotten.push_back(call);
            else if (!isNatural(call, isActive(call), isPresent(call)) && std::none_of(calls.begin(), here, isSame))
                add(call, static_cast<std::size_t>(std::count_if(here, calls.end(), isSame)));
        }
        if (!m_forgotten.empty())
            addForgotten();
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

    /// Whether the hardware is there, as far as the state of its device says.
    bool isPresent(const FailedCall& call) const
    {
        const sim::Device* const device = deviceOf(call);
        return device == nullptr || hasHardware(*device);
    }

    /// Whether Windows does not know any more what an endpoint without its device is called, as on many computers.
    bool isForgotten(const FailedCall& call) const
    {
        const sim::Endpoint* const endpoint = m_places.endpoint(call.object);
        return endpoint != nullptr && endpoint->state == sim::stateNotPresent && isOfProperties(call) && saysGone(call);
    }

    /// One finding for all of them: there may be many such endpoints, and none of them can be used.
    void addForgotten()
    {
        const FailedCall& first = m_forgotten.front();
        Owners owners;
        for (const FailedCall& call : m_forgotten)
        {
            if (std::find(owners.begin(), owners.end(), call.object) == owners.end())
                owners.push_back(call.object);
        }
        const bool isOne = owners.size() == 1;
        Draft draft = draftOf(first);
        draft.rule = "not-present-unreadable";
        draft.sentence = "Properties of " + text::counted(owners.size(), "endpoint") +
                         (isOne ? " that is" : " that are") +
                         " not present cannot be read: " + text::printable(report(first)) + "." +
                         furtherCalls(m_forgotten.size() - 1);
        draft.effect = "Where a name is among them, lists show an id.";
        if (isOne)
            m_findings.add(std::move(draft), std::move(owners));
        else
            m_findings.addShared(std::move(owners), std::move(draft));
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
        return sentence + ": " + text::printable(report(call)) + "." + furtherCalls(count - 1);
    }

    static std::string furtherCalls(std::size_t count)
    {
        const std::string calls = text::counted(count, "further call") + " of this kind.";
        return count == 0 ? "" : (count == 1 ? " So does " : " So do ") + calls;
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
        Draft draft = draftOf(call);
        draft.rule = words.rule;
        draft.sentence = sentenceOf(call, count);
        draft.effect = words.effect;
        m_findings.add(std::move(draft), ownersOf(call));
    }

    /// With what the call itself says.
    Draft draftOf(const FailedCall& call) const
    {
        Draft draft;
        draft.kind = Finding::Kind::failure;
        draft.cause =
            usualCause(static_cast<std::uint32_t>(call.code), call.operation, firstArgument(call), isPresent(call));
        draft.problem = call.problem();
        return draft;
    }

    const Places& m_places;
    Findings& m_findings;
    std::vector<FailedCall> m_forgotten;
};
}

void findFailures(const Places& places, Findings& findings)
{
    FailureReporter(places, findings).reportAll();
}
}
