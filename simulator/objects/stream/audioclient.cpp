#include "simulator/core/simulatedobject.h"
#include "simulator/machine/valuetext.h"
#include "simulator/mutex.h"
#include "simulator/objects/objects.h"
#include "simulator/objects/stream/agreement.h"
#include "simulator/objects/stream/onendpoint.h"
#include "simulator/objects/stream/service.h"

#include <cstring>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace sim
{
namespace
{
constexpr REFERENCE_TIME second = 10000000;
/// Without the member Options, which Windows 8.1 added.
constexpr UINT32 oldPropertiesBytes = sizeof(AudioClientProperties) - sizeof(AUDCLNT_STREAMOPTIONS);

/// One stream of an endpoint, without sound.
class AudioClientObject final : public ComObject<IAudioClient3>
{
public:
    AudioClientObject(const std::shared_ptr<State>& state, std::string deviceId)
        : ComObject(state, std::move(deviceId), InterfaceTraits<IAudioClient>::name)
    {
    }

    /// The client closes its event after the last Release.
    ~AudioClientObject() override
    {
        if (m_stream)
            m_stream->stop(state()->streams.now());
    }

    HRESULT STDMETHODCALLTYPE Initialize(AUDCLNT_SHAREMODE mode, DWORD flags, REFERENCE_TIME duration,
                                         REFERENCE_TIME periodicity, const WAVEFORMATEX* format,
                                         LPCGUID session) override
    {
        const StreamRequest request = {mode, flags, duration, periodicity, format, {}};
        return call(
            "IAudioClient::Initialize", outputs(), [&] { return initialize(request, session); }, mode, flags, duration,
            periodicity, format, session);
    }

    /// After Initialize has refused a size that is not aligned, the next one that is.
    HRESULT STDMETHODCALLTYPE GetBufferSize(UINT32* frames) override
    {
        const auto answer = [&]() -> HRESULT
        {
            const std::lock_guard<Mutex> lock(m_mutex);
            if (!m_stream && m_alignedFrames == 0)
                return AUDCLNT_E_NOT_INITIALIZED;
            *frames = m_stream ? m_stream->plan().bufferFrames : m_alignedFrames;
            return requireActiveEndpoint(*state(), name());
        };
        return call("IAudioClient::GetBufferSize", outputs(frames), answer);
    }

    /// One period.
    HRESULT STDMETHODCALLTYPE GetStreamLatency(REFERENCE_TIME* latency) override
    {
        const auto answer = [&](AudioStream& stream) -> HRESULT
        {
            *latency = second * stream.plan().periodFrames / stream.plan().format.rate;
            return S_OK;
        };
        return use("IAudioClient::GetStreamLatency", outputs(latency), answer);
    }

    HRESULT STDMETHODCALLTYPE GetCurrentPadding(UINT32* frames) override
    {
        const auto answer = [&](AudioStream& stream) -> HRESULT
        {
            *frames = stream.padding(state()->streams.now());
            return S_OK;
        };
        return use("IAudioClient::GetCurrentPadding", outputs(frames), answer);
    }

    HRESULT STDMETHODCALLTYPE IsFormatSupported(AUDCLNT_SHAREMODE mode, const WAVEFORMATEX* format,
                                                WAVEFORMATEX** closestMatch) override
    {
        return call(
            "IAudioClient::IsFormatSupported", outputs(omissible(closestMatch)), // null is allowed in exclusive mode
            [&] { return isFormatSupported(mode, format, closestMatch); }, mode, format);
    }

    HRESULT STDMETHODCALLTYPE GetMixFormat(WAVEFORMATEX** format) override
    {
        const auto answer = [&] { return storeMixFormat("IAudioClient::GetMixFormat", format); };
        return call("IAudioClient::GetMixFormat", outputs(format), answer);
    }

    /// One of both may be null.
    HRESULT STDMETHODCALLTYPE GetDevicePeriod(REFERENCE_TIME* usual, REFERENCE_TIME* minimum) override
    {
        const auto answer = [&]() -> HRESULT
        {
            return onActiveEndpoint(*state(), name(),
                                    [&](const Machine&, const Endpoint& endpoint)
                                    {
                                        const DevicePeriods periods = periodsOf(endpoint);
                                        if (usual != nullptr)
                                            *usual = periods.usual;
                                        if (minimum != nullptr)
                                            *minimum = periods.minimum;
                                        return S_OK;
                                    });
        };
        return call("IAudioClient::GetDevicePeriod", optionalOutputs(usual, minimum), answer);
    }

    HRESULT STDMETHODCALLTYPE Start() override
    {
        const auto answer = [&](AudioStream& stream)
        {
            const HRESULT result = stream.start(state()->streams.now());
            if (SUCCEEDED(result))
                state()->streams.started(m_stream);
            return result;
        };
        return use("IAudioClient::Start", outputs(), answer);
    }

    /// The stream stops even if the endpoint has gone.
    HRESULT STDMETHODCALLTYPE Stop() override
    {
        const auto answer = [&]() -> HRESULT
        {
            const std::shared_ptr<AudioStream> stream = initialized();
            if (!stream)
                return AUDCLNT_E_NOT_INITIALIZED;
            const HRESULT result = stream->stop(state()->streams.now());
            const HRESULT found = requireActiveEndpoint(*state(), name());
            return FAILED(found) ? found : result;
        };
        return call("IAudioClient::Stop", outputs(), answer);
    }

    HRESULT STDMETHODCALLTYPE Reset() override
    {
        return use("IAudioClient::Reset", outputs(), [](AudioStream& stream) { return stream.reset(); });
    }

    HRESULT STDMETHODCALLTYPE SetEventHandle(HANDLE event) override
    {
        return use("IAudioClient::SetEventHandle", outputs(),
                   [&](AudioStream& stream) { return stream.setEvent(event); });
    }

    HRESULT STDMETHODCALLTYPE GetService(REFIID iid, void** object) override
    {
        return use(
            "IAudioClient::GetService", outputs(object),
            [&](const AudioStream& stream) -> HRESULT
            {
                const bool isWrongSide =
                    IsEqualGUID(iid, stream.plan().captures ? InterfaceTraits<IAudioRenderClient>::iid()
                                                            : InterfaceTraits<IAudioCaptureClient>::iid());
                *object = isWrongSide ? nullptr : service(iid);
                if (isWrongSide)
                    return AUDCLNT_E_WRONG_ENDPOINT_TYPE;
                return *object == nullptr ? E_NOINTERFACE : S_OK;
            },
            iid);
    }

    /// Nothing is offloaded.
    HRESULT STDMETHODCALLTYPE IsOffloadCapable(AUDIO_STREAM_CATEGORY category, BOOL* capable) override
    {
        const auto answer = [&]() -> HRESULT
        {
            if (capable == nullptr)
                return E_INVALIDARG;
            *capable = FALSE;
            return requireActiveEndpoint(*state(), name());
        };
        return call("IAudioClient2::IsOffloadCapable", outputs(omissible(capable)), answer, category);
    }

    HRESULT STDMETHODCALLTYPE SetClientProperties(const AudioClientProperties* properties) override
    {
        const auto answer = [&]() -> HRESULT
        {
            const HRESULT result = requireActiveEndpoint(*state(), name());
            return FAILED(result) ? result : checkProperties(properties);
        };
        return call("IAudioClient2::SetClientProperties", outputs(), answer, presenceText(properties));
    }

    /// Only offloaded streams have limits.
    HRESULT STDMETHODCALLTYPE GetBufferSizeLimits(const WAVEFORMATEX* format, BOOL eventDriven, REFERENCE_TIME* minimum,
                                                  REFERENCE_TIME* maximum) override
    {
        const auto answer = [&]() -> HRESULT
        {
            const HRESULT result = requireActiveEndpoint(*state(), name());
            return FAILED(result) ? result : AUDCLNT_E_OFFLOAD_MODE_ONLY;
        };
        return call("IAudioClient2::GetBufferSizeLimits", outputs(minimum, maximum), answer, format, eventDriven);
    }

    /// One period only: the driver offers no other.
    HRESULT STDMETHODCALLTYPE GetSharedModeEnginePeriod(const WAVEFORMATEX* format, UINT32* usual, UINT32* fundamental,
                                                        UINT32* minimum, UINT32* maximum) override
    {
        const auto onEndpoint = [&](const Machine&, const Endpoint& endpoint) -> HRESULT
        {
            if (format == nullptr)
                return E_POINTER;
            const std::optional<SampleFormat> samples = sampleFormat(*format);
            if (!samples || !sharedEngineTakes(endpoint, *samples))
                return samples ? AUDCLNT_E_UNSUPPORTED_FORMAT : refusal(*format);
            *usual = *fundamental = *minimum = *maximum = enginePeriod(endpoint, samples->rate);
            return S_OK;
        };
        return call(
            "IAudioClient3::GetSharedModeEnginePeriod", outputs(usual, fundamental, minimum, maximum),
            [&] { return onActiveEndpoint(*state(), name(), onEndpoint); }, format);
    }

    HRESULT STDMETHODCALLTYPE GetCurrentSharedModeEnginePeriod(WAVEFORMATEX** format, UINT32* period) override
    {
        const auto answer = [&]() -> HRESULT
        {
            std::vector<std::uint8_t> mix;
            std::uint32_t frames = 0;
            const auto read = [&](const Machine&, const Endpoint& endpoint)
            {
                const std::optional<SampleFormat> samples = mixSamplesOf(endpoint);
                mix = mixFormatOf(endpoint);
                frames = samples ? enginePeriod(endpoint, samples->rate) : 0;
                return samples ? S_OK : AUDCLNT_E_UNSUPPORTED_FORMAT;
            };
            HRESULT result = onActiveEndpoint(*state(), name(), read);
            if (SUCCEEDED(result))
                result = storeFormat("IAudioClient3::GetCurrentSharedModeEnginePeriod", mix, format);
            if (SUCCEEDED(result))
                *period = frames;
            return result;
        };
        return call("IAudioClient3::GetCurrentSharedModeEnginePeriod", outputs(format, period), answer);
    }

    HRESULT STDMETHODCALLTYPE InitializeSharedAudioStream(DWORD flags, UINT32 period, const WAVEFORMATEX* format,
                                                          LPCGUID session) override
    {
        const StreamRequest request = {AUDCLNT_SHAREMODE_SHARED, flags, 0, 0, format, period};
        return call(
            "IAudioClient3::InitializeSharedAudioStream", outputs(), [&] { return initialize(request, session); },
            flags, period, format, session);
    }

private:
    HRESULT initialize(const StreamRequest& request, LPCGUID session)
    {
        const std::lock_guard<Mutex> lock(m_mutex);
        if (m_stream)
            return AUDCLNT_E_ALREADY_INITIALIZED;
        StreamPlan plan;
        const HRESULT result = onActiveEndpoint(*state(), name(),
                                                [&](const Machine& machine, const Endpoint& endpoint)
                                                { return agree(machine, endpoint, request, plan); });
        m_alignedFrames = result == AUDCLNT_E_BUFFER_SIZE_NOT_ALIGNED ? plan.bufferFrames : 0;
        if (FAILED(result))
            return result;
        std::shared_ptr<void> place = state()->streams.occupy(name(), plan.isExclusive);
        if (!place)
            return AUDCLNT_E_DEVICE_IN_USE;
        try
        {
            m_session = name() + " " + (session == nullptr ? guidText(GUID{}) : guidText(*session));
            m_stream = std::make_shared<AudioStream>(plan, std::move(place));
        }
        catch (const std::bad_alloc&)
        {
            return E_OUTOFMEMORY;
        }
        return S_OK;
    }

    /// In shared mode the engine converts nothing; the closest format to any linear one is its own, if that is linear.
    HRESULT isFormatSupported(AUDCLNT_SHAREMODE mode, const WAVEFORMATEX* format, WAVEFORMATEX** closestMatch)
    {
        const bool isShared = mode == AUDCLNT_SHAREMODE_SHARED;
        if (format == nullptr || (isShared && closestMatch == nullptr))
            return E_POINTER;
        if (!isShared && mode != AUDCLNT_SHAREMODE_EXCLUSIVE)
            return E_INVALIDARG;
        const std::optional<SampleFormat> samples = sampleFormat(*format);
        bool isTaken = false;
        bool isLinear = false;
        const HRESULT result = onActiveEndpoint(*state(), name(),
                                                [&](const Machine&, const Endpoint& endpoint)
                                                {
                                                    isLinear = mixSamplesOf(endpoint).has_value();
                                                    isTaken =
                                                        samples && (isShared ? sharedEngineTakes(endpoint, *samples)
                                                                             : deviceTakes(endpoint, *samples));
                                                    return S_OK;
                                                });
        if (FAILED(result) || isTaken)
            return result;
        if (!isShared || !samples || !isLinear)
            return AUDCLNT_E_UNSUPPORTED_FORMAT;
        const HRESULT stored = storeMixFormat("IAudioClient::IsFormatSupported", closestMatch);
        return FAILED(stored) ? stored : S_FALSE;
    }

    HRESULT storeMixFormat(const char* operation, WAVEFORMATEX** format) const
    {
        std::vector<std::uint8_t> mix;
        const HRESULT result = onActiveEndpoint(*state(), name(),
                                                [&](const Machine&, const Endpoint& endpoint)
                                                {
                                                    mix = mixFormatOf(endpoint);
                                                    return mix.empty() ? AUDCLNT_E_UNSUPPORTED_FORMAT : S_OK;
                                                });
        return FAILED(result) ? result : storeFormat(operation, mix, format);
    }

    /// Stores a copy in task memory.
    HRESULT storeFormat(const char* operation, const std::vector<std::uint8_t>& stored, WAVEFORMATEX** format) const
    {
        void* const memory = allocate(operation, stored.size());
        if (memory == nullptr)
            return E_OUTOFMEMORY;
        std::memcpy(memory, stored.data(), stored.size());
        *format = static_cast<WAVEFORMATEX*>(memory);
        return S_OK;
    }

    static HRESULT checkProperties(const AudioClientProperties* properties)
    {
        if (properties == nullptr)
            return E_POINTER;
        if (properties->cbSize != sizeof *properties && properties->cbSize != oldPropertiesBytes)
            return E_INVALIDARG;
        if (properties->bIsOffload != FALSE)
            return AUDCLNT_E_ENDPOINT_OFFLOAD_NOT_CAPABLE;
        const bool isRaw = properties->cbSize == sizeof *properties &&
                           (properties->Options & AUDCLNT_STREAMOPTIONS_RAW) != AUDCLNT_STREAMOPTIONS_NONE;
        return isRaw ? AUDCLNT_E_RAW_MODE_UNSUPPORTED : S_OK;
    }

    /// One call whose work needs an initialised stream and its endpoint: @p body(AudioStream&).
    template<class Outputs, class Body, class... Arguments>
    HRESULT use(const char* operation, const Outputs& results, const Body& body, const Arguments&... arguments)
    {
        const auto answer = [&]() -> HRESULT
        {
            const std::shared_ptr<AudioStream> stream = initialized();
            if (!stream)
                return AUDCLNT_E_NOT_INITIALIZED;
            const HRESULT result = requireActiveEndpoint(*state(), name());
            return FAILED(result) ? result : body(*stream);
        };
        return call(operation, results, answer, arguments...);
    }

    /// The stream, which never changes once it is there.
    std::shared_ptr<AudioStream> initialized() const
    {
        const std::lock_guard<Mutex> lock(m_mutex);
        return m_stream;
    }

    void* service(REFIID iid)
    {
        if (IsEqualGUID(iid, InterfaceTraits<IAudioRenderClient>::iid()))
            return makeRenderClient(*this, m_stream);
        if (IsEqualGUID(iid, InterfaceTraits<IAudioCaptureClient>::iid()))
            return makeCaptureClient(*this, m_stream);
        if (IsEqualGUID(iid, InterfaceTraits<IAudioClock>::iid()))
            return makeAudioClock(*this, m_stream);
        if (IsEqualGUID(iid, InterfaceTraits<IAudioStreamVolume>::iid()))
            return makeStreamVolume(*this, m_stream);
        if (IsEqualGUID(iid, InterfaceTraits<ISimpleAudioVolume>::iid()))
            return makeSimpleVolume(*this, m_stream, m_session);
        if (IsEqualGUID(iid, InterfaceTraits<IChannelAudioVolume>::iid()))
            return makeChannelVolume(*this, m_stream, m_session);
        return nullptr;
    }

    mutable Mutex m_mutex;
    std::shared_ptr<AudioStream> m_stream; ///< null before Initialize
    std::string m_session;
    std::uint32_t m_alignedFrames = 0;
};
}

IAudioClient* makeAudioClient(const std::shared_ptr<State>& state, std::string deviceId)
{
    return new AudioClientObject(state, std::move(deviceId));
}
}
