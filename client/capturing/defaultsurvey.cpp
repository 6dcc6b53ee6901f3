#include "client/capturing/devices.h"

#include "COM/tasktext.h"
#include "client/capturing/taken.h"
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

/// The default of one flow in one role.
class DefaultSurvey
{
public:
    DefaultSurvey(const NamedFlow& flow, const NamedRole& role, sim::Machine& machine, Recorder& recorder)
        : m_flow(flow),
          m_role(role),
          m_machine(machine),
          m_recorder(recorder)
    {
    }

    void run(IMMDeviceEnumerator& enumerator)
    {
        IMMDevice* device = nullptr;
        const HRESULT result = enumerator.GetDefaultAudioEndpoint(m_flow.flow, m_role.role, &device);
        const reading::Handle<IMMDevice> holder = taken(result, device);
        if (!m_recorder.gives(result, device, question(), {E_NOTFOUND}))
            return;
        TaskText id(TaskText::NullText::skipped);
        const HRESULT idResult = device->GetId(id.put());
        if (sim::Endpoint* const endpoint = endpointOf(idResult, id.get()))
            endpoint->defaultFor.push_back(m_role.role);
        else if (FAILED(idResult))
            m_recorder.fails(idResult, question());
        else if (id.get() == nullptr)
            m_recorder.givesNull(question());
        else
            m_recorder.note("The default " + reading::utf8(id.get()) + " is no active endpoint of the list.");
    }

private:
    Call question() const
    {
        return {"IMMDeviceEnumerator::GetDefaultAudioEndpoint", "enumerator", {m_flow.name, m_role.name}};
    }

    /// The endpoint with that id, otherwise the first one whose id could not be read; null if there is none. The
    /// machine elects active endpoints alone.
    sim::Endpoint* endpointOf(HRESULT idResult, const WCHAR* id) const
    {
        if (SUCCEEDED(idResult) && id != nullptr)
        {
            sim::Endpoint* const endpoint = m_machine.endpoint(reading::utf8(id));
            if (endpoint != nullptr && isElectable(*endpoint))
                return endpoint;
        }
        for (sim::Endpoint& endpoint : m_machine.endpoints)
        {
            if (isElectable(endpoint) && m_recorder.hasFailed({"IMMDevice::GetId", endpoint.id}))
                return &endpoint;
        }
        return nullptr;
    }

    bool isElectable(const sim::Endpoint& endpoint) const
    {
        return endpoint.installed && endpoint.flow == m_flow.flow && endpoint.state == sim::stateActive;
    }

    const NamedFlow& m_flow;
    const NamedRole& m_role;
    sim::Machine& m_machine;
    Recorder& m_recorder;
};
}

void surveyDefaults(IMMDeviceEnumerator& enumerator, sim::Machine& machine, Recorder& recorder)
{
    for (const NamedFlow& flow : flows)
    {
        for (const NamedRole& role : roles)
            DefaultSurvey(flow, role, machine, recorder).run(enumerator);
    }
}
}
