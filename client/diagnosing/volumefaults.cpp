#include "client/diagnosing/findings.h"
#include "sonavit/text.h"

#include <algorithm>
#include <cmath>

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

std::string rangeText(float minimum, float maximum)
{
    return text::shortest(static_cast<double>(minimum)) + " to " + decibels(maximum);
}

bool isOutside(float level, float minimum, float maximum)
{
    return level < minimum - tolerance || level > maximum + tolerance;
}

/// Judges the volume of one endpoint.
class VolumeJudge
{
public:
    VolumeJudge(const Places& places, Findings& findings, const sim::Endpoint& endpoint)
        : m_places(places),
          m_findings(findings),
          m_endpoint(endpoint),
          m_volume(*endpoint.volume)
    {
    }

    void judge()
    {
        if (!fails("GetVolumeRange"))
            judgeRange();
        if (fails("GetChannelCount"))
            return;
        if (m_volume.channels.empty())
            add("volume-without-channels", "Its volume has no channels.",
                "Its volume cannot be changed, although programs show one.");
    }

private:
    bool fails(const std::string& operation) const
    {
        return m_places.hasFailure("IAudioEndpointVolume::" + operation, m_endpoint.id);
    }

    void judgeRange()
    {
        const float minimum = m_volume.minimum;
        const float maximum = m_volume.maximum;
        const bool isHard = (m_volume.hardwareSupport & ENDPOINT_HARDWARE_SUPPORT_VOLUME) != 0;
        if (minimum > maximum)
            add("range-inverted", "The range of its volume is upside down: " + rangeText(minimum, maximum) + ".",
                "Percent and decibels of its volume cannot be converted.");
        else if (minimum == maximum)
            add("range-empty", "The range of its volume is a single level, " + decibels(minimum) + ".",
                isHard ? "The driver announces a volume in hardware, and moving it changes nothing."
                       : "Its volume has no percent, and moving it changes nothing.");
        else
        {
            judgeStep(maximum - minimum);
            judgeLevels();
        }
    }

    void judgeStep(float span)
    {
        if (m_volume.step <= 0 || m_volume.step > span + tolerance)
            add("step-wrong",
                "The steps of its volume are " + decibels(m_volume.step) + " in a range of " + decibels(span) + ".",
                "Programs that change it step by step may not move it.");
    }

    void judgeLevels()
    {
        const auto isWrong = [this](float level) { return isOutside(level, m_volume.minimum, m_volume.maximum); };
        auto wrong = std::find_if(m_volume.channels.begin(), m_volume.channels.end(), isWrong);
        if (wrong == m_volume.channels.end() && !(m_volume.master && isWrong(*m_volume.master)))
            return;
        const float level = wrong == m_volume.channels.end() ? *m_volume.master : *wrong;
        add("level-outside",
            "Its volume is at " + decibels(level) + ", outside its range of " +
                rangeText(m_volume.minimum, m_volume.maximum) + ".",
            "Programs may show less than 0% or more than 100%.");
    }

    void add(const char* rule, std::string sentence, std::string effect)
    {
        m_findings.addOfEndpoint(m_endpoint.id,
                                 {Finding::Kind::data, rule, std::move(sentence), std::move(effect), badDriver, {}});
    }

    const Places& m_places;
    Findings& m_findings;
    const sim::Endpoint& m_endpoint;
    const sim::EndpointVolume& m_volume;
};
}

void findVolumeFaults(const Places& places, Findings& findings)
{
    for (const sim::Endpoint* const listed : places.listed())
    {
        const sim::Endpoint& endpoint = *listed;
        if (endpoint.volume)
            VolumeJudge(places, findings, endpoint).judge();
        else if (endpoint.state == sim::stateActive &&
                 !places.hasFailure("IMMDevice::Activate", endpoint.id, "IAudioEndpointVolume"))
            findings.addOfEndpoint(endpoint.id,
                                   {Finding::Kind::oddity,
                                    "volume-missing",
                                    "It is active and has no volume.",
                                    "Programs can neither change how loud it is nor silence it.",
                                    "Some drivers leave the volume to the device, as with digital outputs; others fail "
                                    "to offer one.",
                                    {}});
    }
}
}
