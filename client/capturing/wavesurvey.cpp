#include "client/capturing/devices.h"

#include "client/reading/text.h"

#include <algorithm>

namespace sonavit::capturing
{
namespace
{
/// No computer has more wave devices.
constexpr UINT mostNumbers = 4096;
/// Bytes; no endpoint has a longer id.
constexpr DWORD_PTR longestId = 0x10000;

/// The functions of one flow.
struct WaveFunctions
{
    UINT (*count)();
    const char* countName;
    MMRESULT (*message)(UINT number, UINT message, DWORD_PTR first, DWORD_PTR second);
    const char* messageName;
};

/// A device number is passed in place of a handle.
template<class Handle>
Handle handleOf(UINT number)
{
    return reinterpret_cast<Handle>(static_cast<DWORD_PTR>(number));
}

constexpr WaveFunctions outputs = {[]() -> UINT { return waveOutGetNumDevs(); }, "waveOutGetNumDevs",
                                   [](UINT number, UINT message, DWORD_PTR first, DWORD_PTR second) -> MMRESULT
                                   { return waveOutMessage(handleOf<HWAVEOUT>(number), message, first, second); },
                                   "waveOutMessage"};
constexpr WaveFunctions inputs = {[]() -> UINT { return waveInGetNumDevs(); }, "waveInGetNumDevs",
                                  [](UINT number, UINT message, DWORD_PTR first, DWORD_PTR second) -> MMRESULT
                                  { return waveInMessage(handleOf<HWAVEIN>(number), message, first, second); },
                                  "waveInMessage"};

/// Asks one wave device for the size of its id and for the id.
class WaveDeviceSurvey
{
public:
    WaveDeviceSurvey(const WaveFunctions& wave, UINT number, Recorder& recorder)
        : m_wave(wave),
          m_number(number),
          m_recorder(recorder)
    {
    }

    sim::WaveDevice run()
    {
        sim::WaveDevice device;
        DWORD_PTR size = 0;
        device.sizeResult = send(DRV_QUERYFUNCTIONINSTANCEIDSIZE, &size, 0);
        if (device.sizeResult != MMSYSERR_NOERROR)
            size = 0;
        else if (size == 0)
            m_recorder.givesNull(call(DRV_QUERYFUNCTIONINSTANCEIDSIZE));
        askId(device, size);
        return device;
    }

private:
    /// With room for the longest id if the right size is not known.
    void askId(sim::WaveDevice& device, DWORD_PTR size)
    {
        const DWORD_PTR room = size == 0 || size > longestId ? longestId : size;
        std::vector<WCHAR> text((room + 1) / sizeof(WCHAR)); // a driver may report success and write nothing
        device.idResult = send(DRV_QUERYFUNCTIONINSTANCEID, text.data(), room);
        const auto end = std::find(text.begin(), text.end(), WCHAR{0});
        const auto length = static_cast<std::size_t>(end - text.begin());
        const bool isWritten = device.idResult == MMSYSERR_NOERROR && (length > 0 || size <= sizeof(WCHAR));
        if (device.idResult == MMSYSERR_NOERROR && !isWritten)
            m_recorder.givesNull(call(DRV_QUERYFUNCTIONINSTANCEID));
        device.endpointId = isWritten ? reading::utf8(text.data(), length) : unknownId(size);
        noteSize(size, isWritten ? length : device.endpointId.size());
    }

    /// In place of an id that could not be read: one with the size that was reported.
    static std::string unknownId(DWORD_PTR size)
    {
        return size > longestId || size < sizeof(WCHAR) ? "" : std::string(size / sizeof(WCHAR) - 1, '?');
    }

    void noteSize(DWORD_PTR size, std::size_t length)
    {
        if (size != 0 && size != (length + 1) * sizeof(WCHAR))
            m_recorder.note(call(DRV_QUERYFUNCTIONINSTANCEIDSIZE).operation + (" reports " + argument(size)) +
                            " bytes for the id of device " + argument(m_number) + ", which is not the size of its id.");
    }

    MMRESULT send(UINT message, void* place, DWORD_PTR bytes)
    {
        const MMRESULT result = m_wave.message(m_number, message, reinterpret_cast<DWORD_PTR>(place), bytes);
        if (result != MMSYSERR_NOERROR)
            m_recorder.keeps(static_cast<HRESULT>(result), call(message));
        return result;
    }

    Call call(UINT message) const { return {m_wave.messageName, "", {argument(m_number), argument(message)}}; }

    const WaveFunctions& m_wave;
    const UINT m_number;
    Recorder& m_recorder;
};

std::vector<sim::WaveDevice> surveyFlow(const WaveFunctions& wave, Recorder& recorder)
{
    std::vector<sim::WaveDevice> devices;
    const UINT count = wave.count();
    if (count > mostNumbers)
        recorder.fails(static_cast<HRESULT>(count), {wave.countName, ""});
    for (UINT number = 0; count <= mostNumbers && number < count; ++number)
        devices.push_back(WaveDeviceSurvey(wave, number, recorder).run());
    return devices;
}
}

void surveyWaveDevices(sim::Machine& machine, Recorder& recorder)
{
    machine.waveOut = surveyFlow(outputs, recorder);
    machine.waveIn = surveyFlow(inputs, recorder);
}
}
