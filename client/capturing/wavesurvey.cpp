#include "client/capturing/devices.h"

#include "client/reading/text.h"
#include "client/reading/wavefunctions.h"

#include <algorithm>

namespace sonavit::capturing
{
namespace
{
/// Asks one wave device for the size of its id and for the id.
class WaveDeviceSurvey
{
public:
    WaveDeviceSurvey(const reading::WaveFunctions& wave, UINT number, Recorder& recorder)
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
        const DWORD_PTR room = size == 0 || size > reading::longestWaveId ? reading::longestWaveId : size;
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
        return size > reading::longestWaveId || size < sizeof(WCHAR) ? "" : std::string(size / sizeof(WCHAR) - 1, '?');
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

    const reading::WaveFunctions& m_wave;
    const UINT m_number;
    Recorder& m_recorder;
};

std::vector<sim::WaveDevice> surveyFlow(const reading::WaveFunctions& wave, Recorder& recorder)
{
    std::vector<sim::WaveDevice> devices;
    const UINT count = wave.count();
    if (count > reading::mostWaveNumbers)
        recorder.fails(static_cast<HRESULT>(count), {wave.countName, ""});
    for (UINT number = 0; count <= reading::mostWaveNumbers && number < count; ++number)
        devices.push_back(WaveDeviceSurvey(wave, number, recorder).run());
    return devices;
}
}

void surveyWaveDevices(sim::Machine& machine, Recorder& recorder)
{
    machine.waveOut = surveyFlow(reading::waveFunctions(Flow::output), recorder);
    machine.waveIn = surveyFlow(reading::waveFunctions(Flow::input), recorder);
}
}
