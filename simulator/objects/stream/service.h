/// @file
/// What IAudioClient::GetService returns. Each function creates one object and returns it with one reference.
#pragma once

#include "simulator/core/audiostream.h"
#include "simulator/core/simulatedobject.h"
#include "simulator/objects/stream/onendpoint.h"

#include <memory>
#include <string>

namespace sim
{
IAudioRenderClient* makeRenderClient(SimulatedObject& client, const std::shared_ptr<AudioStream>& stream);
IAudioCaptureClient* makeCaptureClient(SimulatedObject& client, const std::shared_ptr<AudioStream>& stream);
IAudioClock* makeAudioClock(SimulatedObject& client, const std::shared_ptr<AudioStream>& stream);
IAudioStreamVolume* makeStreamVolume(SimulatedObject& client, const std::shared_ptr<AudioStream>& stream);
/// Both act on the volume of @p session.
ISimpleAudioVolume* makeSimpleVolume(SimulatedObject& client, const std::shared_ptr<AudioStream>& stream,
                                     const std::string& session);
IChannelAudioVolume* makeChannelVolume(SimulatedObject& client, const std::shared_ptr<AudioStream>& stream,
                                       const std::string& session);

/// Base of the services. It holds a reference on the client that it belongs to.
template<class... Interfaces>
class StreamService : public ComObject<Interfaces...>
{
protected:
    StreamService(SimulatedObject& client, std::shared_ptr<AudioStream> stream)
        : ComObject<Interfaces...>(client.state(), client.name()),
          m_client(client),
          m_stream(std::move(stream))
    {
        m_client.lend();
    }

    ~StreamService() override { m_client.takeBack(); }

    AudioStream& stream() const { return *m_stream; }

    StreamTime now() const { return this->state()->streams.now(); }

    /// One call whose work needs the endpoint.
    template<class Outputs, class Body, class... Arguments>
    HRESULT use(const char* operation, const Outputs& results, const Body& body, const Arguments&... arguments)
    {
        const auto answer = [&]() -> HRESULT
        {
            const HRESULT result = requireActiveEndpoint(*this->state(), this->name());
            return FAILED(result) ? result : body();
        };
        return this->call(operation, results, answer, arguments...);
    }

private:
    SimulatedObject& m_client;
    const std::shared_ptr<AudioStream> m_stream;
};
}
