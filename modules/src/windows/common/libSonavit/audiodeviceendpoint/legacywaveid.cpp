#include "libSonavit/audiodeviceendpoint.h"

#include "COM/resultcode.h"
#include "libSonavit/audiodeviceendpoint/log.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace
{
constexpr unsigned int noWaveId = 0xFFFFFFFF;

/// Memory for an endpoint id. The share count of this handle type is guarded by a lock.
typedef qor::SharedResource<ComTaskMemStorage<unsigned short>, 1> IdBuffer;

struct TaskMemoryFree
{
    void operator()(void* block) const noexcept { CoTaskMemFree(block); }
};

/// A buffer of @p size bytes; nil without memory for it or for its count.
/// @exception std::bad_alloc without memory for the lock, which the first buffer makes
IdBuffer idBuffer(std::size_t size)
{
    std::unique_ptr<void, TaskMemoryFree> block(CoTaskMemAlloc(size));
    IdBuffer buffer(static_cast<unsigned short*>(block.get()));
    if (buffer.isComplete())
        static_cast<void>(block.release()); // the buffer owns it now
    else
        buffer.disown();
    return buffer;
}

/// The string in a block of @p bytes bytes: up to its terminator or, if the driver has written none, up to the end.
qor::String boundedString(const unsigned short* block, std::size_t bytes)
{
    const std::size_t count = bytes / sizeof(*block);
    std::vector<unsigned short> units(count + 1, 0); // the last one stays the terminator
    std::copy_n(block, count, units.begin());
    return qor::String(units.data());
}
}

// Required behaviour: the label names outputs only, for inputs as well.
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
    // Required behaviour: inputs, too, are searched among the numbers of outputs, which are counted again on each pass.
    for (unsigned int id = 0; id < waveOutGetNumDevs(); ++id)
    {
        DWORD_PTR size = 0; // the driver writes as many bytes as a pointer has
        unsigned int result =
            waveMessage(flow, id, DRV_QUERYFUNCTIONINSTANCEIDSIZE, reinterpret_cast<DWORD_PTR>(&size), 0);
        if (result != MMSYSERR_NOERROR)
        {
            SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("waveMessage returns an error ").append(decimalText(result)));
            continue;
        }
        const IdBuffer buffer = idBuffer(size);
        if (buffer.get() == nullptr)
        {
            SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("Cannot allocate device id buffer"));
            break;
        }
        std::memset(buffer.get(), 0, size); // a driver may report success and write nothing
        result = waveMessage(flow, id, DRV_QUERYFUNCTIONINSTANCEID, reinterpret_cast<DWORD_PTR>(buffer.get()), size);
        if (result != MMSYSERR_NOERROR)
        {
            SONAVIT_LOG(endpointlog, LOG_WARNING, out.append("waveMessage returns an error ").append(decimalText(result)));
            continue;
        }
        if (boundedString(buffer.get(), size) == deviceId)
        {
            SONAVIT_LOG(endpointlog, LOG_INFO, out.append("Wave out device ").append(deviceId).append(" has waveOut id = ").append(decimalText(id)));
            return id;
        }
    }
    return noWaveId;
}

/// Sends @p message to the driver of a device number, which is passed in place of a handle.
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
