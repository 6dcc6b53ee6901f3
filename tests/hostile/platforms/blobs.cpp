// Device formats and other blobs of sizes that no format has, and without data.
#include "tests/hostile/platforms/platform.h"

#include "simulator/machine/propertykeys.h"

#include <cstdint>

namespace hostile
{
namespace
{
constexpr std::size_t extensibleSize = 40;
constexpr std::size_t plainSize = 18;

std::vector<std::uint8_t> bytesOf(std::size_t size, std::uint8_t value)
{
    return std::vector<std::uint8_t>(size, value);
}

Platform withFormat(const std::string& name, sim::PropertyValue value)
{
    const auto change = [value](sim::Machine& machine)
    {
        for (sim::Endpoint& endpoint : machine.endpoints)
            sim::setProperty(endpoint.properties, sim::keys::deviceFormat, value);
    };
    return {name, change, {}, {}};
}

/// Each string property of endpoints and adapters becomes a blob, each number a string, and so on.
void mistype(sim::Machine& machine)
{
    const auto change = [](sim::Device& device)
    {
        for (sim::Property& property : device.properties)
        {
            if (property.value.tag == VT_LPWSTR)
                property.value = sim::PropertyValue::ofBytes(bytesOf(extensibleSize, 'a'));
            else if (property.value.tag == VT_BLOB)
                property.value = sim::PropertyValue::ofNumber(40);
            else
                property.value = sim::PropertyValue::ofText("a text");
        }
    };
    for (sim::Endpoint& endpoint : machine.endpoints)
        change(endpoint);
    for (sim::Adapter& adapter : machine.adapters)
        change(adapter);
}
}

std::vector<Platform> platformsWithStrangeBlobs()
{
    std::vector<Platform> platforms;
    for (const std::size_t size : {std::size_t(0), std::size_t(1), plainSize - 1, plainSize, plainSize + 1,
                                   extensibleSize - 1, extensibleSize, extensibleSize + 1, std::size_t(0x10000)})
    {
        for (const std::uint8_t value : {std::uint8_t(0), std::uint8_t(0xFF)})
            platforms.push_back(withFormat("AFormatOf" + std::to_string(size) + "Bytes" + (value == 0 ? "Of0" : "OfFF"),
                                           sim::PropertyValue::ofBytes(bytesOf(size, value))));
    }
    platforms.push_back(withFormat("AFormatThatIsANumber", sim::PropertyValue::ofNumber(40)));
    platforms.push_back(withFormat("AFormatThatIsAText", sim::PropertyValue::ofText("16/48000/2")));
    platforms.push_back({"PropertiesOfOtherTypes", &mistype, {}, {}});
    for (const std::uint32_t size : {0u, 18u, 40u, 0xFFFFFFFFu})
    {
        const auto lie = [size](sim::Simulation& simulation)
        {
            simulation.faults().lie("IPropertyStore::GetValue", sim::Lie::ofBlobWithoutData(size));
            return References();
        };
        platforms.push_back({"BlobsOf" + std::to_string(size) + "BytesWithoutData", {}, lie, {}});
    }
    return platforms;
}
}
