// Streams: what a client is told before and after it is initialised. Nothing is played.
#include "tests/conformity/fact.h"
#include "tests/conformity/results.h"
#include "tests/conformity/system.h"

#include <cstring>

namespace conformity
{
namespace
{
const char* const clientDocumentation = "Microsoft's documentation of IAudioClient";

using ClientAction = std::function<void(const EndpointInSystem&, IAudioClient&)>;

void eachClient(System& system, const ClientAction& action)
{
    system.eachActive(
        [&](const EndpointInSystem& endpoint)
        {
            if (const Held<IAudioClient> client = activated<IAudioClient>(*endpoint.device.get()))
                action(endpoint, *client.get());
        });
}

/// Whether the endpoint cannot be tried now: recording is denied by the privacy switch of Windows, or another program
/// has the endpoint to itself.
bool isDenied(const EndpointInSystem& endpoint, HRESULT result)
{
    constexpr HRESULT inUse = static_cast<HRESULT>(0x8889000Au); // AUDCLNT_E_DEVICE_IN_USE
    return (endpoint.flow == eCapture && result == E_ACCESSDENIED) || result == inUse;
}

std::function<Finding(System&)> eachResult(HRESULT expected, const std::function<HRESULT(IAudioClient&)>& call)
{
    return [expected, call](System& system)
    {
        Observation observation;
        eachClient(system,
                   [&](const EndpointInSystem& endpoint, IAudioClient& client)
                   {
                       const HRESULT result = call(client);
                       if (!isDenied(endpoint, result))
                           observation.see(result == expected, resultName(result), endpoint.name);
                   });
        return observation.finding("no endpoint with a stream");
    };
}

/// The format in which the engine mixes, freed by itself.
class MixFormat
{
public:
    explicit MixFormat(IAudioClient& client) { client.GetMixFormat(&m_format); }
    MixFormat(const MixFormat&) = delete;
    MixFormat& operator=(const MixFormat&) = delete;
    ~MixFormat() { CoTaskMemFree(m_format); }

    const WAVEFORMATEX* get() const { return m_format; }

private:
    WAVEFORMATEX* m_format = nullptr;
};

HRESULT initialize(IAudioClient& client, const WAVEFORMATEX* format)
{
    constexpr REFERENCE_TIME halfASecond = 5000000;
    return client.Initialize(AUDCLNT_SHAREMODE_SHARED, 0, halfASecond, 0, format, nullptr);
}

HRESULT initialize(IAudioClient& client)
{
    const MixFormat format(client);
    return initialize(client, format.get());
}

Finding mixesFloats(System& system)
{
    Observation observation;
    eachClient(system,
               [&](const EndpointInSystem& endpoint, IAudioClient& client)
               {
                   const MixFormat format(client);
                   if (format.get() == nullptr)
                       return observation.see(false, "no format", endpoint.name);
                   const std::string found = std::to_string(format.get()->wBitsPerSample) + " bits, tag " +
                                             std::to_string(format.get()->wFormatTag);
                   observation.see(found == "32 bits, tag 65534", found, endpoint.name);
               });
    return observation.finding("no endpoint with a stream");
}

Finding periodsAreOrdered(System& system)
{
    Observation observation;
    eachClient(system,
               [&](const EndpointInSystem& endpoint, IAudioClient& client)
               {
                   REFERENCE_TIME usual = 0;
                   REFERENCE_TIME minimum = 0;
                   const HRESULT result = client.GetDevicePeriod(&usual, &minimum);
                   const bool isRight = result == S_OK && minimum > 0 && minimum <= usual;
                   observation.see(isRight, isRight ? "not above" : resultName(result), endpoint.name);
               });
    return observation.finding("no endpoint with a stream");
}

Finding bufferHoldsWhatWasAsked(System& system)
{
    Observation observation;
    eachClient(system,
               [&](const EndpointInSystem& endpoint, IAudioClient& client)
               {
                   const MixFormat format(client);
                   const HRESULT result = initialize(client, format.get());
                   if (format.get() == nullptr || isDenied(endpoint, result))
                       return;
                   UINT32 frames = 0;
                   if (SUCCEEDED(result))
                       client.GetBufferSize(&frames);
                   const bool isRight = result == S_OK && frames >= format.get()->nSamplesPerSec / 2;
                   observation.see(isRight,
                                   isRight ? "half a second" : resultName(result) + ", " + std::to_string(frames),
                                   endpoint.name);
               });
    return observation.finding("no endpoint with a stream");
}

HRESULT withService(IAudioClient& client)
{
    const HRESULT result = initialize(client);
    Held<IAudioClock> clock;
    return FAILED(result) ? result : client.GetService(sim::InterfaceTraits<IAudioClock>::iid(), clock.putVoid());
}
}

Facts streamFacts()
{
    return {
        {"The engine mixes 32-bit floating-point samples", "32 bits, tag 65534",
         "Microsoft's documentation of IAudioClient::GetMixFormat", mixesFloats},
        {"The minimum period and the usual one", "not above",
         "Microsoft's documentation of IAudioClient::GetDevicePeriod", periodsAreOrdered},
        {"The mix format is supported in shared mode", "S_OK",
         "Microsoft's documentation of IAudioClient::IsFormatSupported",
         eachResult(S_OK,
                    [](IAudioClient& client)
                    {
                        const MixFormat format(client);
                        WAVEFORMATEX* closest = nullptr;
                        const HRESULT result =
                            client.IsFormatSupported(AUDCLNT_SHAREMODE_SHARED, format.get(), &closest);
                        CoTaskMemFree(closest);
                        return result;
                    })},
        {"The size of the buffer before Initialize", "AUDCLNT_E_NOT_INITIALIZED", clientDocumentation,
         eachResult(AUDCLNT_E_NOT_INITIALIZED,
                    [](IAudioClient& client)
                    {
                        UINT32 frames = 0;
                        return client.GetBufferSize(&frames);
                    })},
        {"Start before Initialize", "AUDCLNT_E_NOT_INITIALIZED", clientDocumentation,
         eachResult(AUDCLNT_E_NOT_INITIALIZED, [](IAudioClient& client) { return client.Start(); })},
        {"The buffer holds at least what was asked for", "half a second",
         "Microsoft's documentation of IAudioClient::Initialize", bufferHoldsWhatWasAsked},
        {"Initialize without a format", "E_POINTER", "Microsoft's documentation of IAudioClient::Initialize",
         eachResult(E_POINTER, [](IAudioClient& client) { return initialize(client, nullptr); })},
        {"Initialize once more", "AUDCLNT_E_ALREADY_INITIALIZED",
         "Microsoft's documentation of IAudioClient::Initialize",
         eachResult(static_cast<HRESULT>(0x88890002u),
                    [](IAudioClient& client)
                    {
                        initialize(client);
                        return initialize(client);
                    })},
        {"A stream that was initialised has a clock", "S_OK", "Microsoft's documentation of IAudioClient::GetService",
         eachResult(S_OK, withService)},
    };
}
}
