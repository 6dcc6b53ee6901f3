#include "libSonavit/audiodeviceendpoint.h"

#include "COM/resultcode.h"
#include "libSonavit/audiodeviceendpoint/log.h"

namespace
{
constexpr unsigned int noWaveId = 0xFFFFFFFF;

/// Memory for an endpoint id. Its kind of handle counts under a lock.
typedef qor::SharedResource<ComTaskMemStorage<unsigned short>, 1> IdBuffer;
}

// The label names outputs only; it stands for both directions.
unsigned int AudioDevice::waveLegacyDeviceID()
{
    SONAVIT_TRACE(endpointlog, "waveOutLegacyDeviceID");
    const qor::String deviceId(deviceProperty().deviceId);
    EDataFlow flow = eAll;
    if (!dataFlow(flow))
    {
        SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("Audio stream flow cannot be determined"));
        return noWaveId;
    }
    // Inputs, too, are searched among as many numbers as there are outputs, counted anew each time: devices come and
    // go.
    for (unsigned int id = 0; id < waveOutGetNumDevs(); ++id)
    {
        DWORD_PTR size = 0; // the driver fills the width of a pointer
        unsigned int result =
            waveMessage(flow, id, DRV_QUERYFUNCTIONINSTANCEIDSIZE, reinterpret_cast<DWORD_PTR>(&size), 0);
        if (result != MMSYSERR_NOERROR)
        {
            SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("waveMessage returns an error ").append(decimalText(result)));
            continue;
        }
        const IdBuffer buffer(static_cast<unsigned short*>(CoTaskMemAlloc(size)));
        if (buffer.get() == nullptr)
        {
            SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("Cannot allocate device id buffer"));
            break;
        }
        result = waveMessage(flow, id, DRV_QUERYFUNCTIONINSTANCEID, reinterpret_cast<DWORD_PTR>(buffer.get()), size);
        if (result != MMSYSERR_NOERROR)
        {
            SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("waveMessage returns an error ").append(decimalText(result)));
            continue;
        }
        if (qor::String(buffer.get()) == deviceId)
        {
            SONAVIT_LOG(endpointlog, LOG_INFO, out.append("Wave out device ").append(deviceId).append(" has waveOut id = ").append(decimalText(id)));
            return id;
        }
    }
    return noWaveId;
}

/// Sends @p message to the driver behind a wave number, which stands in the place of a handle.
unsigned int AudioDevice::waveMessage(EDataFlow flow, unsigned int deviceId, unsigned int message,
                                      unsigned __int64 param1, unsigned __int64 param2)
{
    const INT_PTR number = static_cast<int>(deviceId);
    const DWORD_PTR first = static_cast<DWORD_PTR>(param1);
    const DWORD_PTR second = static_cast<DWORD_PTR>(param2);
    if (flow == eRender)
        return waveOutMessage(reinterpret_cast<HWAVEOUT>(number), message, first, second);
    return waveInMessage(reinterpret_cast<HWAVEIN>(number), message, first, second);
}
