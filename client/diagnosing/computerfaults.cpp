#include "client/diagnosing/findings.h"
#include "client/diagnosing/usualcauses.h"
#include "sonavit/codes.h"
#include "sonavit/text.h"

#include <algorithm>
#include <array>
#include <map>

namespace sonavit::diagnosing
{
namespace
{
/// The wave functions of one flow.
struct WaveWords
{
    const char* function;
    const char* noun;
};

constexpr WaveWords outputs = {"waveOutMessage", "output"};
constexpr WaveWords inputs = {"waveInMessage", "input"};

/// Judges what one number of the wave functions answers.
class WaveJudge
{
public:
    WaveJudge(const Places& places, Findings& findings, const WaveWords& words)
        : m_places(places),
          m_findings(findings),
          m_words(words)
    {
    }

    void judge(std::size_t number, const sim::WaveDevice& device)
    {
        const std::string subject =
            "The " + std::string(m_words.noun) + " " + std::to_string(number) + " of the wave functions ";
        const std::uint32_t code = device.sizeResult != 0 ? device.sizeResult : device.idResult;
        if (code != 0)
            return addFailure(subject, number, code, device.sizeResult != 0);
        if (!device.endpointId.empty() && m_places.isListed(device.endpointId))
            return;
        const std::string target =
            device.endpointId.empty() ? "an empty id" : inFull(device.endpointId) + ", which is not listed";
        m_findings.addOfComputer({Finding::Kind::data, "wave-id-of-no-endpoint",
                                  subject + "names an endpoint that does not exist: " + target + ".",
                                  "Programs that use the old wave functions open something that lists do not show.",
                                  "The device went away, and the wave driver has not noticed it.", std::nullopt});
    }

private:
    void addFailure(const std::string& subject, std::size_t number, std::uint32_t code, bool isSize)
    {
        const std::string call = std::string(m_words.function) + "(" + std::to_string(number) + ", " +
                                 (isSize ? "DRV_QUERYFUNCTIONINSTANCEIDSIZE" : "DRV_QUERYFUNCTIONINSTANCEID") + ")";
        const KnownCode* const known = knownCode(code);
        const std::string reason = known == nullptr ? "" : std::string(" (") + known->name + "), " + known->words;
        Draft draft;
        draft.kind = Finding::Kind::failure;
        draft.rule = "wave-id-unreadable";
        draft.sentence =
            subject + "does not tell its endpoint: " + call + " returns " + std::to_string(code) + reason + ".";
        draft.effect = "No endpoint has this wave id, so that programs with the old wave functions cannot be matched "
                       "with one.";
        draft.cause = usualCause(code, m_words.function, {}, true);
        draft.problem = Problem::ofCall(call, {}, static_cast<std::int32_t>(code));
        m_findings.addOfComputer(std::move(draft));
    }

    const Places& m_places;
    Findings& m_findings;
    const WaveWords& m_words;
};

/// An id that differs from an earlier one in the case of letters alone.
void judgeIds(const Places& places, Findings& findings)
{
    std::map<std::string, std::string> known;
    for (const sim::Endpoint* const listed : places.listed())
    {
        const sim::Endpoint& endpoint = *listed;
        const auto [place, isNew] = known.emplace(text::lowerCase(endpoint.id), endpoint.id);
        if (!isNew)
            findings.addOfEndpoint(endpoint.id,
                                   {Finding::Kind::data, "ids-differ-in-case",
                                    "Its id differs from that of \"" + places.titleOf(place->second) +
                                        "\" in upper and lower case alone: " + endpoint.id + ".",
                                    "Windows takes both for the same id, so programs reach only one of the two.",
                                    "A program has changed the registry, or two drivers have made the same endpoint.",
                                    std::nullopt});
    }
}

void judgeStates(const Places& places, Findings& findings)
{
    for (const sim::Endpoint* const listed : places.listed())
    {
        const sim::Endpoint& endpoint = *listed;
        constexpr std::array<std::uint32_t, 4> states = {sim::stateActive, sim::stateDisabled, sim::stateNotPresent,
                                                         sim::stateUnplugged};
        const bool isKnown = std::find(states.begin(), states.end(), endpoint.state) != states.end();
        if (!isKnown && !places.hasFailure("IMMDevice::GetState", endpoint.id))
            findings.addOfEndpoint(endpoint.id,
                                   {Finding::Kind::data, "state-unknown",
                                    "Its state is " + std::to_string(endpoint.state) +
                                        ", which is none of active, disabled, not present and unplugged.",
                                    "Whether it can be used is not known; its volume and its jack are not looked for.",
                                    "Windows has an error, or a program that stands between it and the driver.",
                                    std::nullopt});
    }
}

void judgeDefaults(const Places& places, Findings& findings)
{
    for (const auto& ofFlow : places.snapshot().content().defaults)
    {
        for (const EndpointId& id : ofFlow)
        {
            if (id.isEmpty() || places.isListed(id.text()))
                continue;
            findings.addOfComputer({Finding::Kind::data, "default-not-listed",
                                    "A default endpoint is " + inFull(id.text()) + ", which is not listed.",
                                    "Programs that use the default open something that lists do not show.",
                                    "Windows has not yet noticed that the device went away. Choose a default in the "
                                    "sound settings.",
                                    std::nullopt});
            break;
        }
    }
}

/// Cards whose device the configuration manager does not know, although an endpoint of theirs is there. One that knows
/// no device at all is not that of these endpoints, as on Windows with a simulated machine.
void judgeParents(const Places& places, Findings& findings)
{
    if (places.machine().deviceInstances.empty())
        return;
    for (const Card& card : places.snapshot().cards())
    {
        const auto isThere = [](const Endpoint& endpoint)
        { return endpoint.state() == State::active || endpoint.state() == State::unplugged; };
        if (!card.instanceId() || std::none_of(card.endpoints().begin(), card.endpoints().end(), isThere))
            continue;
        const sim::DeviceInstance* const instance = places.machine().deviceInstance(*card.instanceId());
        if (instance != nullptr && instance->parent)
            continue;
        findings.addOfCard(card, {Finding::Kind::data, "parent-unknown",
                                  "Windows does not know to what its device " + inFull(*card.instanceId()) +
                                      " is attached: CM_Get_Parent finds no parent.",
                                  "A headset cannot be recognised in another USB port, and the parts of one USB device "
                                  "cannot be put together.",
                                  "The device was installed without a place of its own, or removed while its endpoints "
                                  "are still listed.",
                                  std::nullopt});
    }
}
}

void findComputerFaults(const Places& places, Findings& findings)
{
    std::size_t number = 0;
    for (const sim::WaveDevice& device : places.machine().waveOut)
        WaveJudge(places, findings, outputs).judge(number++, device);
    number = 0;
    for (const sim::WaveDevice& device : places.machine().waveIn)
        WaveJudge(places, findings, inputs).judge(number++, device);
    judgeDefaults(places, findings);
    judgeIds(places, findings);
    judgeStates(places, findings);
    judgeParents(places, findings);
}
}
