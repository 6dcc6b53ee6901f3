#include "tests/support/questionsdevice.h"

#include <cstring>
#include <string>
#include <vector>

namespace support
{
namespace
{
/// A format of linear samples.
WAVEFORMATEX formatOf(WORD tag, DWORD rate, WORD bits, WORD channels)
{
    WAVEFORMATEX format = {};
    format.wFormatTag = tag;
    format.nChannels = channels;
    format.nSamplesPerSec = rate;
    format.wBitsPerSample = bits;
    format.nBlockAlign = static_cast<WORD>(channels * bits / 8);
    format.nAvgBytesPerSec = rate * format.nBlockAlign;
    return format;
}

/// Formats as bytes, since an extensible one is longer than its structure.
using FormatBytes = std::vector<unsigned char>;

FormatBytes bytesOf(const WAVEFORMATEX& format)
{
    FormatBytes bytes(sizeof format + format.cbSize);
    std::memcpy(bytes.data(), &format, bytes.size());
    return bytes;
}

std::vector<FormatBytes> usualFormats()
{
    return {bytesOf(formatOf(WAVE_FORMAT_PCM, 44100, 16, 2)),        bytesOf(formatOf(WAVE_FORMAT_PCM, 48000, 16, 2)),
            bytesOf(formatOf(WAVE_FORMAT_PCM, 96000, 24, 2)),        bytesOf(formatOf(WAVE_FORMAT_PCM, 8000, 16, 1)),
            bytesOf(formatOf(WAVE_FORMAT_IEEE_FLOAT, 48000, 32, 2)), bytesOf(formatOf(WAVE_FORMAT_MULAW, 8000, 8, 1))};
}

/// Notes the format and frees it. @return its bytes; none without a format
FormatBytes addFormat(Notes& notes, const std::string& call, const std::string& name, HRESULT result,
                      WAVEFORMATEX* format)
{
    const bool isThere = SUCCEEDED(result) && format != nullptr;
    notes.add(call, name, result, isThere ? answerText(*format) : std::string("null"));
    if (!isThere)
        return {};
    const FormatBytes bytes = bytesOf(*format);
    CoTaskMemFree(format);
    return bytes;
}

void askForFormats(Notes& notes, const std::string& name, IAudioClient& client, const FormatBytes& mix)
{
    std::vector<FormatBytes> formats = usualFormats();
    if (!mix.empty())
        formats.push_back(mix);
    for (const FormatBytes& bytes : formats)
    {
        const auto* const format = reinterpret_cast<const WAVEFORMATEX*>(bytes.data());
        for (const AUDCLNT_SHAREMODE mode : {AUDCLNT_SHAREMODE_SHARED, AUDCLNT_SHAREMODE_EXCLUSIVE})
        {
            WAVEFORMATEX* closest = nullptr;
            const bool isShared = mode == AUDCLNT_SHAREMODE_SHARED;
            const HRESULT result = client.IsFormatSupported(mode, format, isShared ? &closest : nullptr);
            addFormat(notes, callText("IAudioClient::IsFormatSupported", answerText(mode), answerText(*format)), name,
                      result, closest);
        }
    }
}

/// All refuse, as nothing is initialised.
void askUninitialised(Notes& notes, const std::string& name, IAudioClient& client)
{
    UINT32 frames = 0;
    REFERENCE_TIME latency = 0;
    bench::Held<IAudioClock> clock;
    notes.add("IAudioClient::GetBufferSize", name, client.GetBufferSize(&frames), frames);
    notes.add("IAudioClient::GetStreamLatency", name, client.GetStreamLatency(&latency), latency);
    notes.add("IAudioClient::GetCurrentPadding", name, client.GetCurrentPadding(&frames), frames);
    const HRESULT result = client.GetService(sim::InterfaceTraits<IAudioClock>::iid(), clock.putVoid());
    notes.addObject("IAudioClient::GetService(IAudioClock)", name, result, clock);
}

void askPeriods(Notes& notes, const std::string& name, IAudioClient& client)
{
    REFERENCE_TIME usual = 0;
    REFERENCE_TIME minimum = 0;
    const HRESULT result = client.GetDevicePeriod(&usual, &minimum);
    notes.add("IAudioClient::GetDevicePeriod", name, result, std::to_string(usual) + " " + std::to_string(minimum));
}

/// What later versions of Windows have added.
void askLaterQuestions(Notes& notes, const std::string& name, const bench::Held<IAudioClient>& client,
                       const FormatBytes& mix)
{
    const bench::Held<IAudioClient2> second = client.as<IAudioClient2>();
    const bench::Held<IAudioClient3> third = client.as<IAudioClient3>();
    BOOL isCapable = FALSE;
    if (notes.addObject("QueryInterface(IAudioClient2)", name, S_OK, second))
        notes.add("IAudioClient2::IsOffloadCapable(0)", name,
                  second->IsOffloadCapable(static_cast<AUDIO_STREAM_CATEGORY>(0), &isCapable), isCapable);
    if (!notes.addObject("QueryInterface(IAudioClient3)", name, S_OK, third))
        return;
    UINT32 frames[4] = {};
    WAVEFORMATEX* format = nullptr;
    if (!mix.empty())
    {
        const HRESULT result = third->GetSharedModeEnginePeriod(reinterpret_cast<const WAVEFORMATEX*>(mix.data()),
                                                                &frames[0], &frames[1], &frames[2], &frames[3]);
        notes.add("IAudioClient3::GetSharedModeEnginePeriod", name, result,
                  std::to_string(frames[0]) + " " + std::to_string(frames[1]) + " " + std::to_string(frames[2]) + " " +
                      std::to_string(frames[3]));
    }
    const HRESULT result = third->GetCurrentSharedModeEnginePeriod(&format, &frames[0]);
    addFormat(notes, "IAudioClient3::GetCurrentSharedModeEnginePeriod", name, result, format);
    notes.add("IAudioClient3::GetCurrentSharedModeEnginePeriod, frames", name, result, frames[0]);
}

/// A level that a getter without further arguments stores.
template<class Value, class Object, class Getter>
void askValue(Notes& notes, const char* call, const std::string& name, Object& object, Getter getter)
{
    Value value = {};
    notes.add(call, name, (object.*getter)(&value), value);
}

void askChannels(Notes& notes, const std::string& name, IAudioEndpointVolume& volume)
{
    UINT count = 0;
    if (!notes.add("IAudioEndpointVolume::GetChannelCount", name, volume.GetChannelCount(&count), count))
        return; // channels that are not counted are not listed
    for (UINT channel = 0; channel <= believable(count); ++channel)
    {
        float level = 0;
        const std::string number = answerText(channel);
        notes.add(callText("IAudioEndpointVolume::GetChannelVolumeLevel", number), name,
                  volume.GetChannelVolumeLevel(channel, &level), level);
        notes.add(callText("IAudioEndpointVolume::GetChannelVolumeLevelScalar", number), name,
                  volume.GetChannelVolumeLevelScalar(channel, &level), level);
    }
}
}

void askAudioClient(Notes& notes, const std::string& name, const bench::Held<IAudioClient>& client)
{
    WAVEFORMATEX* stored = nullptr;
    const HRESULT result = client->GetMixFormat(&stored);
    const FormatBytes mix = addFormat(notes, "IAudioClient::GetMixFormat", name, result, stored);
    askPeriods(notes, name, *client.get());
    askForFormats(notes, name, *client.get(), mix);
    askUninitialised(notes, name, *client.get());
    askLaterQuestions(notes, name, client, mix);
}

void askMeter(Notes& notes, const std::string& name, IAudioMeterInformation& meter)
{
    UINT count = 0;
    DWORD support = 0;
    float peak = 0;
    notes.add("IAudioMeterInformation::GetPeakValue", name, meter.GetPeakValue(&peak), peak);
    notes.add("IAudioMeterInformation::GetMeteringChannelCount", name, meter.GetMeteringChannelCount(&count), count);
    for (const UINT channels : {believable(count), believable(count) + 1})
    {
        std::vector<float> peaks(channels + 1);
        const HRESULT result = meter.GetChannelsPeakValues(channels, peaks.data());
        notes.add(callText("IAudioMeterInformation::GetChannelsPeakValues", answerText(channels)), name, result,
                  peaks[0]);
    }
    notes.add("IAudioMeterInformation::QueryHardwareSupport", name, meter.QueryHardwareSupport(&support), support);
}

void askEndpointVolume(Notes& notes, const std::string& name, IAudioEndpointVolume& volume)
{
    askValue<float>(notes, "IAudioEndpointVolume::GetMasterVolumeLevel", name, volume,
                    &IAudioEndpointVolume::GetMasterVolumeLevel);
    askValue<float>(notes, "IAudioEndpointVolume::GetMasterVolumeLevelScalar", name, volume,
                    &IAudioEndpointVolume::GetMasterVolumeLevelScalar);
    askChannels(notes, name, volume);
    askValue<BOOL>(notes, "IAudioEndpointVolume::GetMute", name, volume, &IAudioEndpointVolume::GetMute);
    askValue<DWORD>(notes, "IAudioEndpointVolume::QueryHardwareSupport", name, volume,
                    &IAudioEndpointVolume::QueryHardwareSupport);
    UINT step = 0;
    UINT count = 0;
    const HRESULT stepped = volume.GetVolumeStepInfo(&step, &count);
    notes.add("IAudioEndpointVolume::GetVolumeStepInfo", name, stepped, answerText(step) + " of " + answerText(count));
    float range[3] = {};
    const HRESULT ranged = volume.GetVolumeRange(&range[0], &range[1], &range[2]);
    notes.add("IAudioEndpointVolume::GetVolumeRange", name, ranged,
              answerText(range[0]) + " to " + answerText(range[1]) + " by " + answerText(range[2]));
}
}
