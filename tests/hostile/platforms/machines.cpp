// The machines that the tests of captures have: data that no machine file may contain.
#include "tests/client/capturing/hostilities.h"

#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/propertykeys.h"
#include "tests/hostile/platforms/platform.h"

namespace hostile
{
std::vector<Platform> platformsWithStrangeData()
{
    std::vector<Platform> platforms;
    for (const Hostility& hostility : hostilities())
    {
        const auto change = [apply = hostility.apply](sim::Machine& machine)
        {
            static const sim::Machine laptop = sim::findMachine("laptop");
            machine = laptop;
            machine.script.clear();
            machine.latency.clear();
            apply(machine);
            for (sim::Endpoint& endpoint : machine.endpoints)
                sim::removeProperty(endpoint.properties, sim::keys::endpointGuid);
        };
        platforms.push_back({hostility.name, change, {}, {}});
    }
    return platforms;
}
}
