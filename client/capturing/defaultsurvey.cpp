#include "client/capturing/devices.h"

#include "COM/tasktext.h"
#include "client/reading/text.h"

#include <array>

namespace sonavit::capturing
{
namespace
{
struct NamedFlow
{
    EDataFlow flow;
    const char* name;
};

struct NamedRole
{
    ERole role;
    const char* name;
};

constexpr std::array<NamedFlow, 2> flows = {{{eRender, "eRender"}, {eCapture, "eCapture"}}};
constexpr std::array<NamedRole, 3> roles = {
    {{eConsole, "eConsole"}, {eMultimedia, "eMultimedia"}, {eCommunications, "eCommunications"}}};

void surveyDefault(IMMDeviceEnumerator& enumerator, const NamedFlow& flow, const NamedRole& role, sim::Machine& machine,
                   Recorder& recorder)
{
    const Call call = {"IMMDeviceEnumerator::GetDefaultAudioEndpoint", "enumerator", {flow.name, role.name}};
    IMMDevice* device = nullptr;
    const HRESULT result = enumerator.GetDefaultAudioEndpoint(flow.flow, role.role, &device);
    if (!recorder.gives(result, device, call, {E_NOTFOUND}))
        return;
    const reading::Handle<IMMDevice> holder(device);
    TaskText id(TaskText::NullText::skipped);
    const HRESULT idResult = device->GetId(id.put());
    sim::Endpoint* const endpoint =
        SUCCEEDED(idResult) && id.get() != nullptr ? machine.endpoint(reading::utf8(id.get())) : nullptr;
    if (endpoint != nullptr)
        endpoint->defaultFor.push_back(role.role);
}
}

void surveyDefaults(IMMDeviceEnumerator& enumerator, sim::Machine& machine, Recorder& recorder)
{
    for (const NamedFlow& flow : flows)
    {
        for (const NamedRole& role : roles)
            surveyDefault(enumerator, flow, role, machine, recorder);
    }
}
}
