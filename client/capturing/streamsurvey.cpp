#include "client/capturing/devicesteps.h"
#include "simulator/machine/propertykeys.h"

#include <algorithm>
#include <cstring>

namespace sonavit::capturing
{
namespace
{
/// Units of 100 ns; the platform refuses longer ones.
constexpr REFERENCE_TIME longestPeriod = 50000000;

/// A format from the platform's task memory.
class TaskFormat
{
public:
    TaskFormat() = default;
    ~TaskFormat()
    {
        if (m_format != nullptr)
            CoTaskMemFree(m_format);
    }
    TaskFormat(const TaskFormat&) = delete;
    TaskFormat& operator=(const TaskFormat&) = delete;

    WAVEFORMATEX** put() noexcept { return &m_format; }

    /// Whether it says that something follows it, although plain samples have nothing behind them.
    bool promisesTooMuch() const { return m_format->wFormatTag == WAVE_FORMAT_PCM && m_format->cbSize != 0; }

    /// The structure with what follows it.
    std::vector<std::uint8_t> bytes() const
    {
        WAVEFORMATEX format = {};
        std::memcpy(&format, m_format, sizeof format);
        if (promisesTooMuch())
            format.cbSize = 0;
        std::vector<std::uint8_t> copy(sizeof format + format.cbSize);
        std::memcpy(copy.data(), m_format, copy.size());
        std::memcpy(copy.data(), &format, sizeof format);
        return copy;
    }

private:
    WAVEFORMATEX* m_format = nullptr;
};

bool hasBytes(const sim::MixFormat& format, const std::vector<std::uint8_t>& bytes)
{
    const WAVEFORMATEXTENSIBLE wave = format.waveFormat();
    return bytes.size() == sizeof wave && std::memcmp(bytes.data(), &wave, sizeof wave) == 0;
}

/// The mix format whose structure has exactly these bytes.
std::optional<sim::MixFormat> mixFormatOf(const std::vector<std::uint8_t>& bytes)
{
    WAVEFORMATEX wave = {};
    std::memcpy(&wave, bytes.data(), sizeof wave);
    const sim::DeviceFormat numbers = {wave.wBitsPerSample, wave.nSamplesPerSec, wave.nChannels};
    for (const bool isFloatingPoint : {true, false})
    {
        const sim::MixFormat format = {numbers, isFloatingPoint};
        const bool isWritable = (!isFloatingPoint || numbers.bits == 32) && sim::MixFormat::fromText(format.text());
        if (isWritable && hasBytes(format, bytes))
            return format;
    }
    return std::nullopt;
}

bool hasDeviceFormat(const sim::Endpoint& endpoint)
{
    return sim::findProperty(endpoint.properties, sim::keys::deviceFormat) != nullptr ||
           sim::findProperty(endpoint.unlistedProperties, sim::keys::deviceFormat) != nullptr;
}

/// Without a mix format a machine has that of the device format; without both the call fails.
void surveyMixFormat(IAudioClient& client, sim::Endpoint& endpoint, Recorder& recorder)
{
    TaskFormat format;
    const Call call = {"IAudioClient::GetMixFormat", endpoint.id};
    const HRESULT result = client.GetMixFormat(format.put());
    const bool isGiven = hasDeviceFormat(endpoint)
                             ? recorder.gives(result, *format.put(), call)
                             : recorder.gives(result, *format.put(), call, {AUDCLNT_E_UNSUPPORTED_FORMAT});
    if (!isGiven)
        return;
    if (format.promisesTooMuch())
        recorder.note("The mix format of " + endpoint.id + " is of plain samples and says that more follows it.");
    std::vector<std::uint8_t> bytes = format.bytes();
    endpoint.mixFormat = mixFormatOf(bytes);
    if (!endpoint.mixFormat)
        endpoint.mixFormatBytes = std::move(bytes);
}

void surveyPeriods(IAudioClient& client, sim::Endpoint& endpoint, Recorder& recorder)
{
    const Call call = {"IAudioClient::GetDevicePeriod", endpoint.id};
    REFERENCE_TIME usual = 0;
    REFERENCE_TIME minimum = 0;
    if (!recorder.passes(client.GetDevicePeriod(&usual, &minimum), call))
        return;
    if (usual == 0 && minimum == 0)
        return recorder.givesNull(call);
    const REFERENCE_TIME possibleUsual = std::clamp<REFERENCE_TIME>(usual, 1, longestPeriod);
    const REFERENCE_TIME possibleMinimum = std::clamp<REFERENCE_TIME>(minimum, 1, possibleUsual);
    endpoint.periods = {static_cast<std::uint32_t>(possibleUsual), static_cast<std::uint32_t>(possibleMinimum)};
    if (possibleUsual != usual || possibleMinimum != minimum)
        recorder.note("The periods of " + endpoint.id + " are " + argument(usual) + " and " + argument(minimum) +
                      ", which no machine has.");
}
}

void surveyStreams(IAudioClient& client, sim::Endpoint& endpoint, Recorder& recorder)
{
    surveyMixFormat(client, endpoint, recorder);
    surveyPeriods(client, endpoint, recorder);
}
}
