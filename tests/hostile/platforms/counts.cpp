// Counts other than the number of what is there.
#include "tests/hostile/platforms/platform.h"

#include <cstdint>

namespace hostile
{
namespace
{
constexpr std::uint32_t allOnes = 0xFFFFFFFF; ///< -1 as well

const char* const asksForEach = "each of the announced ones is asked for, and a null one keeps its place in the list";

struct Count
{
    const char* name;
    const char* operation;
    std::uint32_t mostForObjectModel; ///< from a larger number on the object model takes as long, or as much memory
    const char* whyNotMore;
};

const char* const asksForEachPart = "each of the announced parts is asked for, and the number is not limited";

const std::vector<Count> counts = {
    {"Endpoints", "IMMDeviceCollection::GetCount", 10000, asksForEach},
    {"Connectors", "IDeviceTopology::GetConnectorCount", 10000, asksForEachPart},
    {"Subunits", "IDeviceTopology::GetSubunitCount", 10000, asksForEachPart},
    {"Neighbours", "IPartsList::GetCount", 10000, asksForEachPart},
    {"Channels", "IAudioEndpointVolume::GetChannelCount", allOnes, ""},
    {"ChannelsOfParts", "IAudioVolumeLevel::GetChannelCount", 10000,
     "the master level is the mean of all announced channels, each of which is asked"},
    {"Jacks", "IKsJackDescription::GetJackCount", allOnes, ""},
    {"Properties", "IPropertyStore::GetCount", allOnes, ""},
    {"Controls", "IPart::GetControlInterfaceCount", allOnes, ""},
};
}

std::vector<Platform> platformsThatLieInCounts()
{
    std::vector<Platform> platforms;
    for (const Count& count : counts)
    {
        for (const std::uint32_t number : {0u, 1u, 50u, 10000u, allOnes})
        {
            const auto lie = [operation = count.operation, number](sim::Simulation& simulation)
            {
                simulation.faults().lie(operation, sim::Lie::ofNumber(number));
                return References();
            };
            platforms.push_back({"Announces" + std::to_string(number) + count.name,
                                 {},
                                 lie,
                                 number > count.mostForObjectModel ? count.whyNotMore : ""});
        }
    }
    return platforms;
}
}
