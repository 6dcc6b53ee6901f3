// Numbers that no enumeration has, and truth values that are neither.
#include "tests/hostile/platforms/platform.h"

#include <cstdint>

namespace hostile
{
namespace
{
constexpr std::uint32_t minusOne = 0xFFFFFFFF;

struct NumberCall
{
    const char* name;
    const char* operation;
    std::vector<std::uint32_t> numbers;
};

const std::vector<NumberCall> numberCalls = {
    {"DeviceState", "IMMDevice::GetState", {0, 5, 16, 0x80000001, minusOne}},
    {"DeviceFlow", "IMMEndpoint::GetDataFlow", {2, 77, minusOne}},
    {"PartType", "IPart::GetPartType", {2, minusOne}},
    {"LocalId", "IPart::GetLocalId", {0, minusOne}},
    {"ConnectorType", "IConnector::GetType", {99, minusOne}},
    {"ConnectorFlow", "IConnector::GetDataFlow", {9, minusOne}},
    {"IsConnected", "IConnector::IsConnected", {2, minusOne}},
    {"NumericProperty", "IPropertyStore::GetValue", {0, 11, 0x80000000, minusOne}},
    {"Selection", "IAudioInputSelector::GetSelection", {0, 77, minusOne}},
    {"Mute", "IAudioEndpointVolume::GetMute", {2, minusOne}},
    {"PartMute", "IAudioMute::GetMute", {2, minusOne}},
    {"HardwareSupport", "IAudioEndpointVolume::QueryHardwareSupport", {8, minusOne}},
    {"StepInfo", "IAudioEndpointVolume::GetVolumeStepInfo", {0, minusOne}},
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
