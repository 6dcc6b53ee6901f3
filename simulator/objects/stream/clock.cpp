#include "simulator/objects/stream/service.h"

namespace sim
{
namespace
{
constexpr DWORD fixedFrequency = 1; // AUDIOCLOCK_CHARACTERISTIC_FIXED_FREQ

/// The position of a stream. Its unit is a byte in shared mode and a frame in exclusive mode.
class AudioClockObject final : public StreamService<IAudioClock, IAudioClock2>
{
public:
    AudioClockObject(SimulatedObject& client, std::shared_ptr<AudioStream> stream)
        : StreamService(client, std::move(stream))
    {
    }

    HRESULT STDMETHODCALLTYPE GetFrequency(UINT64* frequency) override
    {
        const auto answer = [&]() -> HRESULT
        {
            *frequency = stream().plan().format.rate * unitsPerFrame();
            return S_OK;
        };
        return use("IAudioClock::GetFrequency", outputs(frequency), answer);
    }

    /// The position of the counter may be null.
    HRESULT STDMETHODCALLTYPE GetPosition(UINT64* position, UINT64* counterPosition) override
    {
        return use("IAudioClock::GetPosition", outputs(position, omissible(counterPosition)),
                   [&] { return storePosition(unitsPerFrame(), *position, counterPosition); });
    }

    HRESULT STDMETHODCALLTYPE GetCharacteristics(DWORD* characteristics) override
    {
        const auto answer = [&]() -> HRESULT
        {
            *characteristics = fixedFrequency;
            return S_OK;
        };
        return use("IAudioClock::GetCharacteristics", outputs(characteristics), answer);
    }

    /// In frames.
    HRESULT STDMETHODCALLTYPE GetDevicePosition(UINT64* position, UINT64* counterPosition) override
    {
        return use("IAudioClock2::GetDevicePosition", outputs(position, omissible(counterPosition)),
                   [&] { return storePosition(1, *position, counterPosition); });
    }

private:
    std::uint64_t unitsPerFrame() const
    {
        return stream().plan().isExclusive ? 1 : stream().plan().format.frameBytes();
    }

    HRESULT storePosition(std::uint64_t units, UINT64& position, UINT64* counterPosition) const
    {
        const StreamTime time = now();
        position = stream().position(time) * units;
        if (counterPosition != nullptr)
            *counterPosition = counterUnits(time);
        return S_OK;
    }
};
}

IAudioClock* makeAudioClock(SimulatedObject& client, const std::shared_ptr<AudioStream>& stream)
{
    return new AudioClockObject(client, stream);
}
}
