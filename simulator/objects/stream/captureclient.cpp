#include "simulator/objects/stream/service.h"

namespace sim
{
namespace
{
/// Silence, in packets of one period.
class CaptureClientObject final : public StreamService<IAudioCaptureClient>
{
public:
    CaptureClientObject(SimulatedObject& client, std::shared_ptr<AudioStream> stream)
        : StreamService(client, std::move(stream))
    {
    }

    /// Both positions may be null. If no packet is complete, data and frames become null and 0.
    HRESULT STDMETHODCALLTYPE GetBuffer(BYTE** data, UINT32* frames, DWORD* flags, UINT64* devicePosition,
                                        UINT64* counterPosition) override
    {
        const auto answer = [&]() -> HRESULT
        {
            StreamPacket packet;
            const HRESULT result = stream().takePacket(now(), packet);
            *frames = packet.frames;
            if (result != S_OK)
                return result;
            *data = packet.data;
            *flags = packet.flags;
            if (devicePosition != nullptr)
                *devicePosition = packet.position;
            if (counterPosition != nullptr)
                *counterPosition = counterUnits(packet.time);
            return S_OK;
        };
        return use("IAudioCaptureClient::GetBuffer",
                   outputs(data, frames, flags, omissible(devicePosition), omissible(counterPosition)), answer);
    }

    HRESULT STDMETHODCALLTYPE ReleaseBuffer(UINT32 frames) override
    {
        return use(
            "IAudioCaptureClient::ReleaseBuffer", outputs(), [&] { return stream().releasePacket(frames); }, frames);
    }

    HRESULT STDMETHODCALLTYPE GetNextPacketSize(UINT32* frames) override
    {
        const auto answer = [&]() -> HRESULT
        {
            *frames = stream().nextPacket(now());
            return S_OK;
        };
        return use("IAudioCaptureClient::GetNextPacketSize", outputs(frames), answer);
    }
};
}

IAudioCaptureClient* makeCaptureClient(SimulatedObject& client, const std::shared_ptr<AudioStream>& stream)
{
    return new CaptureClientObject(client, stream);
}
}
