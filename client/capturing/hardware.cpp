#include "client/capturing/hardware.h"

#include "client/capturing/hardwarerecord.h"
#include "client/capturing/hardwaresurvey.h"
#include "simulator/machine/casefolding.h"
#include "simulator/machine/identity.h"

namespace sonavit::capturing
{
void HardwareSurvey::record()
{
    HardwareRecord(m_devices, m_parts, m_machine, m_recorder).write();
    reportUnopened();
}

/// A machine knows the ids of its devices regardless of case, and what an id looks like.
void HardwareSurvey::reportUnopened()
{
    std::set<std::string> known;
    for (const sim::Endpoint& endpoint : m_machine.endpoints)
        known.insert(sim::lowerCase(endpoint.id));
    for (const sim::Adapter& adapter : m_machine.adapters)
        known.insert(sim::lowerCase(adapter.id));
    for (const auto& [id, code] : m_unopened)
    {
        const Call call = {"IMMDeviceEnumerator::GetDevice", "enumerator", {id}};
        const bool isId = sim::isDeviceId(id) || known.count(sim::lowerCase(id)) != 0;
        if (code)
            m_recorder.fails(*code, call, {isId ? E_NOTFOUND : E_INVALIDARG});
        else
            m_recorder.givesNull(call);
    }
}

void surveyHardware(IMMDeviceEnumerator& enumerator, const std::vector<OpenEndpoint>& endpoints, sim::Machine& machine,
                    Recorder& recorder, const Pause& pause)
{
    HardwareSurvey survey(enumerator, machine, recorder);
    survey.walk(endpoints, pause);
    survey.record();
}
}
