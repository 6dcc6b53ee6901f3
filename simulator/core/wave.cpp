#include "simulator/core/wave.h"

#include "simulator/core/runtimecall.h"
#include "simulator/core/utf16.h"

#include <cstring>

namespace sim::wave
{
namespace
{
MMRESULT storeId(const WaveDevice& device, UINT message, DWORD_PTR first, DWORD_PTR second)
{
    const std::vector<WCHAR> id = utf16(device.endpointId);
    const std::size_t bytes = id.size() * sizeof(WCHAR);
    void* const place = reinterpret_cast<void*>(first);
    if (place == nullptr)
        return MMSYSERR_INVALPARAM;
    if (message == DRV_QUERYFUNCTIONINSTANCEIDSIZE)
    {
        const DWORD_PTR size = bytes;
        std::memcpy(place, &size, sizeof size);
        return MMSYSERR_NOERROR;
    }
    if (second < bytes)
        return MMSYSERR_INVALPARAM;
    std::memcpy(place, id.data(), bytes);
    return MMSYSERR_NOERROR;
}

MMRESULT answerMessage(const std::vector<WaveDevice>& devices, std::size_t id, UINT message, DWORD_PTR first,
                       DWORD_PTR second)
{
    if (id >= devices.size())
        return MMSYSERR_BADDEVICEID;
    const WaveDevice& device = devices[id];
    if (message != DRV_QUERYFUNCTIONINSTANCEIDSIZE && message != DRV_QUERYFUNCTIONINSTANCEID)
        return MMSYSERR_NOTSUPPORTED;
    const std::uint32_t planned = message == DRV_QUERYFUNCTIONINSTANCEID ? device.idResult : device.sizeResult;
    return planned != MMSYSERR_NOERROR ? planned : storeId(device, message, first, second);
}

/// The journal records the wave id and the message.
MMRESULT send(const char* function, std::vector<WaveDevice> Machine::*devices, std::size_t id, UINT message,
              DWORD_PTR first, DWORD_PTR second)
{
    const auto answer = [&](const std::shared_ptr<State>& state) -> HRESULT
    {
        if (state == nullptr)
            return static_cast<HRESULT>(MMSYSERR_BADDEVICEID);
        return static_cast<HRESULT>(
            state->withHardware([&](const Hardware& hardware)
                                { return answerMessage(hardware.machine().*devices, id, message, first, second); }));
    };
    return static_cast<MMRESULT>(runtimeCall(function, outputs(), answer, id, message));
}

UINT count(const char* function, std::vector<WaveDevice> Machine::*devices)
{
    const auto answer = [&](const std::shared_ptr<State>& state) -> HRESULT
    {
        if (state == nullptr)
            return 0;
        return state->withHardware([&](const Hardware& hardware)
                                   { return static_cast<HRESULT>((hardware.machine().*devices).size()); });
    };
    return static_cast<UINT>(runtimeCall(function, outputs(), answer));
}
}

UINT countOutputs()
{
    return count("waveOutGetNumDevs", &Machine::waveOut);
}

UINT countInputs()
{
    return count("waveInGetNumDevs", &Machine::waveIn);
}

MMRESULT sendToOutput(std::size_t id, UINT message, DWORD_PTR first, DWORD_PTR second)
{
    return send("waveOutMessage", &Machine::waveOut, id, message, first, second);
}

MMRESULT sendToInput(std::size_t id, UINT message, DWORD_PTR first, DWORD_PTR second)
{
    return send("waveInMessage", &Machine::waveIn, id, message, first, second);
}
}
