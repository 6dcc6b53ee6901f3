#include "client/diagnosing/findings.h"
#include "sonavit/text.h"

#include <algorithm>
#include <map>
#include <utility>

namespace sonavit::diagnosing
{
namespace
{
/// What people tell apart about jacks and forms.
enum class Sort
{
    unknown,
    loudspeaker,
    headphones,
    microphone,
    line,
    digital
};

Sort sortOf(NodeKind kind)
{
    switch (kind)
    {
    case NodeKind::speaker:
    case NodeKind::desktopSpeaker:
    case NodeKind::roomSpeaker:
    case NodeKind::communicationSpeaker:
    case NodeKind::subwoofer:
        return Sort::loudspeaker;
    case NodeKind::headphones:
        return Sort::headphones;
    case NodeKind::microphone:
    case NodeKind::desktopMicrophone:
    case NodeKind::personalMicrophone:
    case NodeKind::omnidirectionalMicrophone:
    case NodeKind::microphoneArray:
    case NodeKind::processingMicrophoneArray:
        return Sort::microphone;
    case NodeKind::line:
        return Sort::line;
    case NodeKind::spdif:
    case NodeKind::hdmi:
    case NodeKind::displayPort:
        return Sort::digital;
    default:
        return Sort::unknown; // a headset and the like is both
    }
}

Sort sortOf(FormFactor form)
{
    switch (form)
    {
    case FormFactor::speakers:
        return Sort::loudspeaker;
    case FormFactor::headphones:
        return Sort::headphones;
    case FormFactor::microphone:
        return Sort::microphone;
    case FormFactor::lineLevel:
        return Sort::line;
    case FormFactor::spdif:
    case FormFactor::digitalDisplay:
    case FormFactor::digitalPassthrough:
        return Sort::digital;
    default:
        return Sort::unknown;
    }
}

/// A line jack carries whatever the user plugs in, so that drivers call it a loudspeaker's or a microphone's.
bool contradict(Sort left, Sort right)
{
    return left != Sort::unknown && right != Sort::unknown && left != right && left != Sort::line &&
           right != Sort::line;
}

void judgeJack(Findings& findings, const Endpoint& endpoint)
{
    for (const Jack& jack : endpoint.jacks())
    {
        if (!jack.type || !jack.formFactor || !contradict(sortOf(jack.kind()), sortOf(*jack.formFactor)))
            continue;
        findings.addOfEndpoint(endpoint.id().text(),
                               {Finding::Kind::oddity, "jack-contradicts-form",
                                "Its driver gives it a jack of the kind \"" + std::string(wordsOf(jack.kind())) +
                                    "\" and the form \"" + wordsOf(*jack.formFactor) + "\".",
                                "Windows shows the picture of the one and lists name the other.",
                                "The driver's setup (INF) file is made for another model, or the user has assigned the "
                                "jack to something else in the manufacturer's program.",
                                std::nullopt});
        return;
    }
}

void judgeTitles(const Places& places, Findings& findings)
{
    std::map<std::pair<Flow, std::string>, std::vector<Endpoint>> named;
    for (const Endpoint& endpoint : places.snapshot().endpoints())
    {
        if (endpoint.isActive() && endpoint.name())
            named[{endpoint.flow(), text::lowerCase(endpoint.title())}].push_back(endpoint);
    }
    for (const auto& [name, endpoints] : named)
    {
        if (endpoints.size() < 2)
            continue;
        Owners owners;
        for (const Endpoint& endpoint : endpoints)
            owners.push_back(endpoint.id().text());
        findings.addShared(std::move(owners),
                           {Finding::Kind::oddity, "endpoints-with-one-name",
                            text::counted(endpoints.size(), "active " + std::string(wordsOf(name.first))) +
                                " have the same name, \"" + endpoints.front().title() + "\".",
                            "People cannot tell them apart, and a program that remembers names may take the wrong one.",
                            "There are two devices of one model. Each can be renamed in the sound settings of Windows.",
                            std::nullopt});
    }
}

/// A volume in hardware that no part of the hardware implements.
void judgeHardwareVolume(const Places& places, Findings& findings, const sim::Endpoint& endpoint)
{
    const bool isHard = endpoint.volume && (endpoint.volume->hardwareSupport & ENDPOINT_HARDWARE_SUPPORT_VOLUME) != 0;
    const std::vector<PartOf> parts = places.partsBehind(endpoint.id);
    if (!isHard || endpoint.state != sim::stateActive || parts.empty())
        return;
    const auto hasVolume = [&](const PartOf& part)
    { return part.part->volume || places.hasFailure("IPart::Activate", part.part->id, "IAudioVolumeLevel"); };
    if (std::none_of(parts.begin(), parts.end(), hasVolume))
        findings.addOfEndpoint(endpoint.id,
                               {Finding::Kind::oddity, "hardware-volume-without-control",
                                "Its driver announces a volume in hardware, and its hardware path has none.",
                                "Moving its volume may change nothing that can be heard.",
                                "The driver announces more than its hardware has. Another volume, such as that of the "
                                "device itself, may still work.",
                                std::nullopt});
}

void judgeAccount(const Places& places, Findings& findings)
{
    if (places.machine().account == sim::Account::ordinary)
        findings.addOfComputer(
            {Finding::Kind::oddity, "ordinary-account", "This program runs under an ordinary account.",
             "It can read formats and cannot change them, as Windows lets only administrators do "
             "that. Volumes can be changed.",
             "This is usual on Windows. To change a format, run the program as an administrator.", std::nullopt});
}
}

void findOddities(const Places& places, Findings& findings)
{
    judgeAccount(places, findings);
    judgeTitles(places, findings);
    for (const Endpoint& endpoint : places.snapshot().endpoints())
        judgeJack(findings, endpoint);
    for (const sim::Endpoint* const endpoint : places.listed())
        judgeHardwareVolume(places, findings, *endpoint);
}
}
