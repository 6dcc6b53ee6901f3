// Numbers that no enumeration has, and truth values that are neither.
#include "tests/hostile/platforms/platform.h"

#include <cstdint>

namespace hostile
{
namespace
{
constexpr std::uint32_t allOnes = 0xFFFFFFFF;

struct NumberCall
{
    const char* name;
    const char* operation;
    std::vector<std::uint32_t> numbers;
};

const std::vector<NumberCall> numberCalls = {
    {"DeviceState", "IMMDevice::GetState", {0, 5, 16, 0x80000001, allOnes}},
    {"DeviceFlow", "IMMEndpoint::GetDataFlow", {2, 77, allOnes}},
    {"PartType", "IPart::GetPartType", {2, allOnes}},
    {"LocalId", "IPart::GetLocalId", {0, allOnes}},
    {"ConnectorType", "IConnector::GetType", {99, allOnes}},
    {"ConnectorFlow", "IConnector::GetDataFlow", {9, allOnes}},
    {"IsConnected", "IConnector::IsConnected", {2, allOnes}},
    {"NumericProperty", "IPropertyStore::GetValue", {0, 11, 0x80000000, allOnes}},
    {"Selection", "IAudioInputSelector::GetSelection", {0, 77, allOnes}},
    {"Mute", "IAudioEndpointVolume::GetMute", {2, allOnes}},
    {"PartMute", "IAudioMute::GetMute", {2, allOnes}},
    {"HardwareSupport", "IAudioEndpointVolume::QueryHardwareSupport", {8, allOnes}},
    {"StepInfo", "IAudioEndpointVolume::GetVolumeStepInfo", {0, allOnes}},
};
}

std::vector<Platform> platformsThatLieInNumbers()
{
    std::vector<Platform> platforms;
    for (const NumberCall& call : numberCalls)
    {
        for (const std::uint32_t number : call.numbers)
        {
            const auto lie = [operation = call.operation, number](sim::Simulation& simulation)
            {
                simulation.faults().lie(operation, sim::Lie::ofNumber(number));
                return References();
            };
            platforms.push_back({std::string(call.name) + "Of" + std::to_string(number), {}, lie, {}});
        }
    }
    return platforms;
}
}
