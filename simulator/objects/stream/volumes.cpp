#include "simulator/objects/stream/service.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace sim
{
namespace
{
/// NaN compares false, so it is no level.
bool isLevel(float level)
{
    return level >= 0.0f && level <= 1.0f;
}

/// Operations on one level for each channel; E_INVALIDARG for a channel, a count or a level that does not fit.
HRESULT setLevel(std::vector<float>& levels, UINT32 channel, float level)
{
    if (channel >= levels.size() || !isLevel(level))
        return E_INVALIDARG;
    levels[channel] = level;
    return S_OK;
}

HRESULT getLevel(const std::vector<float>& levels, UINT32 channel, float& level)
{
    if (channel >= levels.size())
        return E_INVALIDARG;
    level = levels[channel];
    return S_OK;
}

HRESULT setLevels(std::vector<float>& levels, UINT32 count, const float* values)
{
    if (values == nullptr)
        return E_POINTER;
    if (count != levels.size() || !std::all_of(values, values + count, isLevel))
        return E_INVALIDARG;
    levels.assign(values, values + count);
    return S_OK;
}

HRESULT getLevels(const std::vector<float>& levels, UINT32 count, float* values)
{
    if (count != levels.size())
        return E_INVALIDARG;
    std::copy(levels.begin(), levels.end(), values);
    return S_OK;
}

class StreamVolumeObject final : public StreamService<IAudioStreamVolume>
{
public:
    StreamVolumeObject(SimulatedObject& client, std::shared_ptr<AudioStream> stream)
        : StreamService(client, std::move(stream))
    {
    }

    HRESULT STDMETHODCALLTYPE GetChannelCount(UINT32* count) override
    {
        const auto answer = [&]() -> HRESULT
        {
            *count = stream().plan().format.channels;
            return S_OK;
        };
        return use("IAudioStreamVolume::GetChannelCount", outputs(count), answer);
    }

    HRESULT STDMETHODCALLTYPE SetChannelVolume(UINT32 channel, float level) override
    {
        const auto answer = [&]
        { return stream().withLevels([&](auto& levels) { return setLevel(levels, channel, level); }); };
        return use("IAudioStreamVolume::SetChannelVolume", outputs(), answer, channel, level);
    }

    HRESULT STDMETHODCALLTYPE GetChannelVolume(UINT32 channel, float* level) override
    {
        const auto answer = [&]
        { return stream().withLevels([&](auto& levels) { return getLevel(levels, channel, *level); }); };
        return use("IAudioStreamVolume::GetChannelVolume", outputs(level), answer, channel);
    }

    HRESULT STDMETHODCALLTYPE SetAllVolumes(UINT32 count, const float* values) override
    {
        const auto answer = [&]
        { return stream().withLevels([&](auto& levels) { return setLevels(levels, count, values); }); };
        return use("IAudioStreamVolume::SetAllVolumes", outputs(), answer, count);
    }

    HRESULT STDMETHODCALLTYPE GetAllVolumes(UINT32 count, float* values) override
    {
        const auto answer = [&]
        { return stream().withLevels([&](auto& levels) { return getLevels(levels, count, values); }); };
        return use("IAudioStreamVolume::GetAllVolumes", outputs(several(values, count)), answer, count);
    }
};

/// Base of the two volumes of a session.
template<class Interface>
class SessionService : public StreamService<Interface>
{
protected:
    SessionService(SimulatedObject& client, std::shared_ptr<AudioStream> stream, std::string session)
        : StreamService<Interface>(client, std::move(stream)),
          m_session(std::move(session))
    {
    }

    /// One call whose work needs the session's volume, with a level for each channel of the stream at least.
    template<class Outputs, class Action, class... Arguments>
    HRESULT onSession(const char* operation, const Outputs& results, const Action& action,
                      const Arguments&... arguments)
    {
        const auto answer = [&]
        {
            HRESULT result = S_OK;
            this->state()->streams.withSession(m_session,
                                               [&](SessionVolume& volume)
                                               {
                                                   volume.channels.resize(std::max(volume.channels.size(), channels()),
                                                                          1.0f);
                                                   result = action(volume);
                                               });
            return result;
        };
        return this->use(operation, results, answer, arguments...);
    }

    std::size_t channels() const { return this->stream().plan().format.channels; }

private:
    const std::string m_session;
};

class SimpleVolumeObject final : public SessionService<ISimpleAudioVolume>
{
public:
    SimpleVolumeObject(SimulatedObject& client, std::shared_ptr<AudioStream> stream, std::string session)
        : SessionService(client, std::move(stream), std::move(session))
    {
    }

    HRESULT STDMETHODCALLTYPE SetMasterVolume(float level, LPCGUID context) override
    {
        const auto set = [&](SessionVolume& volume) -> HRESULT
        {
            if (!isLevel(level))
                return E_INVALIDARG;
            volume.level = level;
            return S_OK;
        };
        return onSession("ISimpleAudioVolume::SetMasterVolume", outputs(), set, level, context);
    }

    HRESULT STDMETHODCALLTYPE GetMasterVolume(float* level) override
    {
        const auto get = [&](const SessionVolume& volume) -> HRESULT
        {
            *level = volume.level;
            return S_OK;
        };
        return onSession("ISimpleAudioVolume::GetMasterVolume", outputs(level), get);
    }

    HRESULT STDMETHODCALLTYPE SetMute(const BOOL mute, LPCGUID context) override
    {
        const auto set = [&](SessionVolume& volume) -> HRESULT
        {
            volume.isMuted = mute != FALSE;
            return S_OK;
        };
        return onSession("ISimpleAudioVolume::SetMute", outputs(), set, mute, context);
    }

    HRESULT STDMETHODCALLTYPE GetMute(BOOL* mute) override
    {
        const auto get = [&](const SessionVolume& volume) -> HRESULT
        {
            *mute = volume.isMuted ? TRUE : FALSE;
            return S_OK;
        };
        return onSession("ISimpleAudioVolume::GetMute", outputs(mute), get);
    }
};

class ChannelVolumeObject final : public SessionService<IChannelAudioVolume>
{
public:
    ChannelVolumeObject(SimulatedObject& client, std::shared_ptr<AudioStream> stream, std::string session)
        : SessionService(client, std::move(stream), std::move(session))
    {
    }

    HRESULT STDMETHODCALLTYPE GetChannelCount(UINT32* count) override
    {
        const auto get = [&](const SessionVolume& volume) -> HRESULT
        {
            *count = static_cast<UINT32>(volume.channels.size());
            return S_OK;
        };
        return onSession("IChannelAudioVolume::GetChannelCount", outputs(count), get);
    }

    HRESULT STDMETHODCALLTYPE SetChannelVolume(UINT32 channel, float level, LPCGUID context) override
    {
        const auto set = [&](SessionVolume& volume) { return setLevel(volume.channels, channel, level); };
        return onSession("IChannelAudioVolume::SetChannelVolume", outputs(), set, channel, level, context);
    }

    HRESULT STDMETHODCALLTYPE GetChannelVolume(UINT32 channel, float* level) override
    {
        const auto get = [&](const SessionVolume& volume) { return getLevel(volume.channels, channel, *level); };
        return onSession("IChannelAudioVolume::GetChannelVolume", outputs(level), get, channel);
    }

    HRESULT STDMETHODCALLTYPE SetAllVolumes(UINT32 count, const float* values, LPCGUID context) override
    {
        const auto set = [&](SessionVolume& volume) { return setLevels(volume.channels, count, values); };
        return onSession("IChannelAudioVolume::SetAllVolumes", outputs(), set, count, context);
    }

    HRESULT STDMETHODCALLTYPE GetAllVolumes(UINT32 count, float* values) override
    {
        const auto get = [&](const SessionVolume& volume) { return getLevels(volume.channels, count, values); };
        return onSession("IChannelAudioVolume::GetAllVolumes", outputs(several(values, count)), get, count);
    }
};
}

IAudioStreamVolume* makeStreamVolume(SimulatedObject& client, const std::shared_ptr<AudioStream>& stream)
{
    return new StreamVolumeObject(client, stream);
}

ISimpleAudioVolume* makeSimpleVolume(SimulatedObject& client, const std::shared_ptr<AudioStream>& stream,
                                     const std::string& session)
{
    return new SimpleVolumeObject(client, stream, session);
}

IChannelAudioVolume* makeChannelVolume(SimulatedObject& client, const std::shared_ptr<AudioStream>& stream,
                                       const std::string& session)
{
    return new ChannelVolumeObject(client, stream, session);
}
}
