#include "simulator/objects/stream/service.h"

namespace sim
{
namespace
{
/// The frames that a client writes are swallowed when their time has come.
class RenderClientObject final : public StreamService<IAudioRenderClient>
{
public:
    RenderClientObject(SimulatedObject& client, std::shared_ptr<AudioStream> stream)
        : StreamService(client, std::move(stream))
    {
    }

    /// No frames: S_OK and a null pointer.
    HRESULT STDMETHODCALLTYPE GetBuffer(UINT32 frames, BYTE** data) override
    {
        return use(
            "IAudioRenderClient::GetBuffer", outputs(data), [&] { return stream().takeBuffer(now(), frames, *data); },
            frames);
    }

    HRESULT STDMETHODCALLTYPE ReleaseBuffer(UINT32 frames, DWORD flags) override
    {
        return use(
            "IAudioRenderClient::ReleaseBuffer", outputs(), [&] { return stream().releaseBuffer(frames, flags); },
            frames, flags);
    }
};
}

IAudioRenderClient* makeRenderClient(SimulatedObject& client, const std::shared_ptr<AudioStream>& stream)
{
    return new RenderClientObject(client, stream);
}
}
