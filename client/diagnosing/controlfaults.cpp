#include "client/diagnosing/findings.h"
#include "sonavit/text.h"

#include <algorithm>

namespace sonavit::diagnosing
{
namespace
{
constexpr const char* badDriver = "The driver has an error. A newer one may be better.";
/// Decibels; drivers store levels rounded.
constexpr float tolerance = 0.01F;

std::string decibels(float value)
{
    return text::shortest(static_cast<double>(value)) + " dB";
}

/// Judges the controls of one part.
class ControlJudge
{
public:
    ControlJudge(const Places& places, Findings& findings, const sim::Part& part)
        : m_places(places),
          m_findings(findings),
          m_part(part),
          m_name(places.nameOf(part))
    {
    }

    void judge()
    {
        if (m_part.volume)
            judgeVolume(*m_part.volume);
        if (m_part.selector)
            judgeSelector(*m_part.selector);
        for (const sim::FurtherControl& control : m_part.furtherControls)
            judgeRefused(control);
    }

private:
    void judgeVolume(const sim::VolumeControl& volume)
    {
        if (volume.channels.empty() && !m_places.hasFailure("IAudioVolumeLevel::GetChannelCount", m_part.id))
            add("control-without-channels", "The hardware volume " + m_name + " has no channels.",
                "It is listed, and its level can be neither seen nor changed.");
        if (m_places.hasFailure("IAudioVolumeLevel::GetLevelRange", m_part.id))
            return;
        for (const sim::ChannelLevel& channel : volume.channels)
        {
            if (judgeChannel(channel))
                return; // the first channel that is wrong speaks for the others
        }
    }

    /// Whether something is wrong.
    bool judgeChannel(const sim::ChannelLevel& channel)
    {
        const std::string range =
            text::shortest(static_cast<double>(channel.minimum)) + " to " + decibels(channel.maximum);
        if (channel.minimum > channel.maximum)
            add("range-inverted", "The range of the hardware volume " + m_name + " is upside down: " + range + ".",
                "Its level has no percent.");
        else if (channel.minimum == channel.maximum)
            add("range-empty",
                "The range of the hardware volume " + m_name + " is a single level, " + decibels(channel.minimum) + ".",
                "Moving it changes nothing.");
        else if (channel.level < channel.minimum - tolerance || channel.level > channel.maximum + tolerance)
            add("level-outside",
                "The hardware volume " + m_name + " is at " + decibels(channel.level) + ", outside its range of " +
                    range + ".",
                "Programs may show less than 0% or more than 100%.");
        else
            return false;
        return true;
    }

    void judgeSelector(const sim::SelectorControl& selector)
    {
        if (selector.selection == 0 || m_places.hasFailure("IAudioInputSelector::GetSelection", m_part.id) ||
            m_places.hasFailure("IPart::EnumPartsIncoming", m_part.id))
            return;
        const bool isInput = std::any_of(m_part.incoming.begin(), m_part.incoming.end(),
                                         [&](const std::string& id)
                                         {
                                             const PartOf input = m_places.part(id);
                                             return input.part != nullptr && input.part->localId == selector.selection;
                                         });
        if (!isInput)
            add("selection-no-input",
                "The selector " + m_name + " has chosen the part " + std::to_string(selector.selection) +
                    ", which is none of its inputs.",
                "Which input is recorded is not known.");
    }

    /// A control that the part lists, that the client layer uses, and that cannot be opened.
    void judgeRefused(const sim::FurtherControl& control)
    {
        const char* const noun = nounOf(control.interfaceId);
        if (noun == nullptr || m_places.hasFailure("IPart::Activate", m_part.id))
            return;
        add("control-refused",
            "The part " + m_name + " of the hardware lists " + noun +
                " and does not give it: IPart::Activate returns " + "0x80004002 (E_NOINTERFACE), no such interface.",
            std::string("Programs that look for ") + noun + " there do not find it.");
    }

    static const char* nounOf(const GUID& interfaceId)
    {
        if (IsEqualGUID(interfaceId, IID_IAudioVolumeLevel) != 0)
            return "a volume";
        if (IsEqualGUID(interfaceId, IID_IAudioMute) != 0)
            return "a mute";
        return IsEqualGUID(interfaceId, IID_IAudioInputSelector) != 0 ? "an input selector" : nullptr;
    }

    void add(const char* rule, std::string sentence, std::string effect)
    {
        m_findings.addOf(m_part.id, {Finding::Kind::data, rule, std::move(sentence), std::move(effect), badDriver, {}});
    }

    const Places& m_places;
    Findings& m_findings;
    const sim::Part& m_part;
    const std::string m_name;
};

void judgeParts(const Places& places, Findings& findings, const sim::Device& device)
{
    if (!device.topology)
        return;
    for (const sim::Connector& connector : device.topology->connectors)
        ControlJudge(places, findings, connector).judge();
    for (const sim::Subunit& subunit : device.topology->subunits)
        ControlJudge(places, findings, subunit).judge();
}
}

void findControlFaults(const Places& places, Findings& findings)
{
    for (const sim::Endpoint& endpoint : places.machine().endpoints)
        judgeParts(places, findings, endpoint);
    for (const sim::Adapter& adapter : places.machine().adapters)
        judgeParts(places, findings, adapter);
}
}
