#include "simulator/core/sampleformat.h"
#include "simulator/core/simulatedobject.h"
#include "simulator/objects/objects.h"
#include "simulator/objects/stream/onendpoint.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace sim
{
namespace
{
/// The peaks of an endpoint, which are 0: no sound is played.
class MeterObject final : public ComObject<IAudioMeterInformation>
{
public:
    MeterObject(const std::shared_ptr<State>& state, std::string endpointId) : ComObject(state, std::move(endpointId))
    {
    }

    HRESULT STDMETHODCALLTYPE GetPeakValue(float* peak) override
    {
        return read("IAudioMeterInformation::GetPeakValue", outputs(peak),
                    [&](const Endpoint&)
                    {
                        *peak = 0.0f;
                        return S_OK;
                    });
    }

    HRESULT STDMETHODCALLTYPE GetMeteringChannelCount(UINT* count) override
    {
        return read("IAudioMeterInformation::GetMeteringChannelCount", outputs(count),
                    [&](const Endpoint& endpoint)
                    {
                        *count = channels(endpoint);
                        return S_OK;
                    });
    }

    HRESULT STDMETHODCALLTYPE GetChannelsPeakValues(UINT32 count, float* peaks) override
    {
        return read(
            "IAudioMeterInformation::GetChannelsPeakValues", outputs(several(peaks, count)),
            [&](const Endpoint& endpoint)
            {
                if (count != channels(endpoint))
                    return E_INVALIDARG;
                std::fill(peaks, peaks + count, 0.0f);
                return S_OK;
            },
            count);
    }

    HRESULT STDMETHODCALLTYPE QueryHardwareSupport(DWORD* mask) override
    {
        return read("IAudioMeterInformation::QueryHardwareSupport", outputs(mask),
                    [&](const Endpoint& endpoint)
                    {
                        *mask = endpoint.volume ? endpoint.volume->hardwareSupport : 0;
                        return S_OK;
                    });
    }

private:
    static UINT channels(const Endpoint& endpoint)
    {
        const std::vector<std::uint8_t> mix = mixFormatOf(endpoint);
        WAVEFORMATEX format = {};
        if (mix.size() >= sizeof format)
            std::memcpy(&format, mix.data(), sizeof format);
        return format.nChannels;
    }

    template<class Outputs, class Action, class... Arguments>
    HRESULT read(const char* operation, const Outputs& results, const Action& action, const Arguments&... arguments)
    {
        const auto answer = [&]
        {
            return onActiveEndpoint(*state(), name(),
                                    [&](const Machine&, const Endpoint& endpoint) -> HRESULT
                                    { return action(endpoint); });
        };
        return call(operation, results, answer, arguments...);
    }
};
}

IAudioMeterInformation* makeMeter(const std::shared_ptr<State>& state, std::string endpointId)
{
    return new MeterObject(state, std::move(endpointId));
}
}
