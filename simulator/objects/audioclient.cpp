#include "simulator/core/simulatedobject.h"
#include "simulator/objects/objects.h"

namespace sim
{
namespace
{
/// Can be activated and held. The machine plays and records nothing, so every operation returns E_NOTIMPL.
class AudioClientObject final : public ComObject<IAudioClient>
{
public:
    AudioClientObject(const std::shared_ptr<State>& state, std::string deviceId) : ComObject(state, std::move(deviceId))
    {
    }

    HRESULT STDMETHODCALLTYPE Initialize(AUDCLNT_SHAREMODE, DWORD, REFERENCE_TIME, REFERENCE_TIME, const WAVEFORMATEX*,
                                         LPCGUID) override
    {
        return refuse("IAudioClient::Initialize", outputs());
    }

    HRESULT STDMETHODCALLTYPE GetBufferSize(UINT32* frames) override
    {
        return refuse("IAudioClient::GetBufferSize", outputs(frames));
    }

    HRESULT STDMETHODCALLTYPE GetStreamLatency(REFERENCE_TIME* latency) override
    {
        return refuse("IAudioClient::GetStreamLatency", outputs(latency));
    }

    HRESULT STDMETHODCALLTYPE GetCurrentPadding(UINT32* frames) override
    {
        return refuse("IAudioClient::GetCurrentPadding", outputs(frames));
    }

    HRESULT STDMETHODCALLTYPE IsFormatSupported(AUDCLNT_SHAREMODE, const WAVEFORMATEX*,
                                                WAVEFORMATEX** closestMatch) override
    {
        if (closestMatch != nullptr) // null is allowed in exclusive mode
            *closestMatch = nullptr;
        return refuse("IAudioClient::IsFormatSupported", outputs());
    }

    HRESULT STDMETHODCALLTYPE GetMixFormat(WAVEFORMATEX** format) override
    {
        return refuse("IAudioClient::GetMixFormat", outputs(format));
    }

    HRESULT STDMETHODCALLTYPE GetDevicePeriod(REFERENCE_TIME*, REFERENCE_TIME*) override
    {
        return refuse("IAudioClient::GetDevicePeriod", outputs());
    }

    HRESULT STDMETHODCALLTYPE Start() override { return refuse("IAudioClient::Start", outputs()); }

    HRESULT STDMETHODCALLTYPE Stop() override { return refuse("IAudioClient::Stop", outputs()); }

    HRESULT STDMETHODCALLTYPE Reset() override { return refuse("IAudioClient::Reset", outputs()); }

    HRESULT STDMETHODCALLTYPE SetEventHandle(HANDLE) override
    {
        return refuse("IAudioClient::SetEventHandle", outputs());
    }

    HRESULT STDMETHODCALLTYPE GetService(REFIID iid, void** object) override
    {
        return call(
            "IAudioClient::GetService", outputs(object), [] { return E_NOTIMPL; }, iid);
    }

private:
    template<class Outputs>
    HRESULT refuse(const char* operation, const Outputs& results)
    {
        return call(operation, results, [] { return E_NOTIMPL; });
    }
};
}

IAudioClient* makeAudioClient(const std::shared_ptr<State>& state, std::string deviceId)
{
    return new AudioClientObject(state, std::move(deviceId));
}
}
