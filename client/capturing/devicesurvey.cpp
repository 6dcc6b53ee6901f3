#include "COM/interfacequery.h"
#include "client/capturing/devicesteps.h"
#include "client/capturing/taken.h"
#include "client/capturing/volumeanswers.h"

#include <utility>

namespace sonavit::capturing
{
namespace
{
constexpr std::uint32_t allStates = DEVICE_STATEMASK_ALL;

template<class I>
reading::Handle<I> activated(IMMDevice& device, const IID& interfaceId, HRESULT& result)
{
    void* place = nullptr;
    result = device.Activate(interfaceId, CLSCTX_ALL, nullptr, &place);
    return reading::Handle<I>(SUCCEEDED(result) ? static_cast<I*>(place) : nullptr);
}

Call activationOf(const char* interfaceName, const sim::Device& record)
{
    return {"IMMDevice::Activate", record.id, {interfaceName, argument(DWORD{CLSCTX_ALL})}};
}

/// Activates an interface of the device's streams and stores whether it has it. An endpoint that is not installed or
/// not active has no streams, whatever it has otherwise.
template<class I>
reading::Handle<I> surveyStream(IMMDevice& device, const IID& interfaceId, const char* name, sim::Device& record,
                                bool sim::Device::*has, bool isInstalled, Recorder& recorder)
{
    HRESULT result = S_OK;
    reading::Handle<I> object = activated<I>(device, interfaceId, result);
    const Call call = activationOf(name, record);
    const bool hasStreams = isInstalled && (record.state & DEVICE_STATE_ACTIVE) != 0;
    if (result == AUDCLNT_E_DEVICE_INVALIDATED && !hasStreams)
        record.*has = true;
    else if (recorder.gives(result, object.get(), call, {E_NOINTERFACE}))
        record.*has = true;
    else
        record.*has = result == AUDCLNT_E_DEVICE_INVALIDATED || result == AUDCLNT_E_SERVICE_NOT_RUNNING;
    return object;
}
}

bool surveyState(IMMDevice& device, sim::Device& record, Recorder& recorder)
{
    DWORD state = 0;
    if (!recorder.passes(device.GetState(&state), {"IMMDevice::GetState", record.id}))
        return false;
    record.state = static_cast<std::uint32_t>(state);
    return true;
}

reading::Handle<IAudioClient> surveyInterfaces(IMMDevice& device, sim::Device& record, bool isInstalled,
                                               Recorder& recorder)
{
    reading::Handle<IAudioClient> client = surveyStream<IAudioClient>(
        device, IID_IAudioClient, "IAudioClient", record, &sim::Device::hasAudioClient, isInstalled, recorder);
    HRESULT result = S_OK;
    const reading::Handle<IBaseFilter> filter = activated<IBaseFilter>(device, IID_IBaseFilter, result);
    record.hasBaseFilter = recorder.gives(result, filter.get(), activationOf("IBaseFilter", record), {E_NOINTERFACE});
    surveyStream<IAudioMeterInformation>(device, IID_IAudioMeterInformation, "IAudioMeterInformation", record,
                                         &sim::Device::hasMeter, isInstalled, recorder);
    return client;
}

bool surveyFlow(IMMDevice& device, sim::Endpoint& endpoint, Recorder& recorder)
{
    IMMEndpoint* queried = nullptr;
    const HRESULT result = interfacequery::query(device, queried);
    const reading::Handle<IMMEndpoint> holder = taken(result, queried);
    if (!recorder.gives(result, queried, {"IMMDevice::QueryInterface", endpoint.id, {"IMMEndpoint"}}))
        return false;
    EDataFlow flow = eAll;
    if (!recorder.passes(queried->GetDataFlow(&flow), {"IMMEndpoint::GetDataFlow", endpoint.id}))
        return false;
    if (flow != eRender && flow != eCapture)
    {
        recorder.note("The flow of " + endpoint.id + " is " + argument(static_cast<int>(flow)) + ", which is none.");
        return false;
    }
    endpoint.flow = flow;
    return true;
}

void surveyDevice(IMMDevice& device, sim::Device& record, Recorder& recorder)
{
    surveyState(device, record, recorder);
    surveyProperties(device, record, recorder);
    surveyInterfaces(device, record, true, recorder);
}

/// In the machine an endpoint that is not installed has no streams; so they are not asked for.
void surveyUnlistedEndpoint(IMMDevice& device, sim::Endpoint& endpoint, Recorder& recorder)
{
    surveyFlow(device, endpoint, recorder);
    surveyState(device, endpoint, recorder);
    endpoint.installed = (endpoint.state & allStates) == 0;
    surveyProperties(device, endpoint, recorder);
    surveyInterfaces(device, endpoint, endpoint.installed, recorder);
    if (const std::optional<VolumeAnswers> answers = askVolume(device, endpoint.id, recorder))
        endpoint.volume = volumeOf(*answers, shownTaper(*answers).value_or(sim::Taper::audio), recorder);
}
}
