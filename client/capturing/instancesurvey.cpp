#include "client/capturing/devices.h"

#include "OSWindows/configmanager.h"
#include "simulator/machine/casefolding.h"
#include "simulator/machine/identity.h"
#include "simulator/machine/propertykeys.h"

#include <unordered_set>

namespace sonavit::capturing
{
namespace
{
std::string textOf(const sim::Device& device, const PROPERTYKEY& key)
{
    for (const sim::Properties* properties : {&device.properties, &device.unlistedProperties})
    {
        if (const sim::PropertyValue* const value = sim::findProperty(*properties, key))
            return value->text.value_or("");
    }
    return {};
}

/// Climbs from instances to their parents. The platform ignores the case of instance ids.
class InstanceSurvey
{
public:
    explicit InstanceSurvey(sim::Machine& machine) : m_machine(machine) {}

    void run()
    {
        for (const sim::Endpoint& endpoint : m_machine.endpoints)
        {
            climb(sim::instanceOfPath(textOf(endpoint, sim::keys::instancePath)));
            climb(textOf(endpoint, sim::keys::instanceId));
        }
        for (const sim::Adapter& adapter : m_machine.adapters)
        {
            climb(sim::instanceOfAdapter(adapter.id).value_or(""));
            climb(textOf(adapter, sim::keys::instanceId));
        }
    }

private:
    /// Up to an instance without parent, or to one that has been asked already.
    void climb(std::string id)
    {
        while (!id.empty() && m_asked.insert(sim::lowerCase(id)).second)
        {
            qor::String parent;
            if (!libOSWindows::ConfigManager::getParentDeviceInstanceId(qor::String::fromUtf8(id), parent))
                return;
            m_machine.deviceInstances.push_back({id, parent.toUtf8()});
            id = parent.toUtf8();
        }
    }

    sim::Machine& m_machine;
    std::unordered_set<std::string> m_asked; ///< in lower case
};
}

void surveyDeviceInstances(sim::Machine& machine)
{
    InstanceSurvey(machine).run();
}
}
