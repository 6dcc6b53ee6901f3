// One text in place of all that a call has to report, so that all objects have one name, or one id, too.
#include "tests/hostile/platforms/platform.h"

#include <optional>

namespace hostile
{
namespace
{
struct TextCall
{
    const char* name;
    const char* operation;
};

struct StrangeText
{
    const char* name;
    std::optional<std::u16string> text;
};

constexpr std::size_t kilobytes64 = 0x10000;

const std::vector<TextCall> textCalls = {{"DeviceIds", "IMMDevice::GetId"},
                                         {"Properties", "IPropertyStore::GetValue"},
                                         {"PartIds", "IPart::GetGlobalId"},
                                         {"PartNames", "IPart::GetName"},
                                         {"TopologyOwners", "IDeviceTopology::GetDeviceId"},
                                         {"FarDevices", "IConnector::GetDeviceIdConnectedTo"},
                                         {"FarConnectors", "IConnector::GetConnectorIdConnectedTo"},
                                         {"ControlNames", "IControlInterface::GetName"}};

const std::vector<StrangeText> strangeTexts = {
    {"Null", std::nullopt},
    {"Empty", u""},
    {"SixtyFourKilobytesLong", std::u16string(kilobytes64, u'x')},
    {"SingleSurrogates", std::u16string{char16_t(0xDC00), u'a', char16_t(0xD800)}},
    {"ControlCharacters", u"\u0001\u001B[31m\u0085\u202E\r\n\t\u007F\uFFFF"}};
}

std::vector<Platform> platformsThatLieInTexts()
{
    std::vector<Platform> platforms;
    for (const TextCall& call : textCalls)
    {
        for (const StrangeText& strange : strangeTexts)
        {
            const auto lie = [operation = call.operation, text = strange.text](sim::Simulation& simulation)
            {
                simulation.faults().lie(operation, sim::Lie::ofText(text));
                return References();
            };
            platforms.push_back({std::string(call.name) + "That" + "Are" + strange.name, {}, lie, {}});
        }
    }
    return platforms;
}
}
