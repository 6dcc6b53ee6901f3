#include "tests/faults/library/rows.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace faults::library
{
namespace
{
constexpr const char* endpoint = "libSonavit.audioDeviceEndpoint";
constexpr const char* topology = "libSonavit.audioDeviceTopology";
constexpr const char* part = "libSonavit.audioPart";
constexpr const char* enumerator = "libSonavit.endpointDeviceEnumerator";
constexpr const char* soundcard = "libSonavit.soundcard";
constexpr const char* volume = "libSonavit.volumecontroller";
constexpr const char* code = "80004005";

using LogKey = std::tuple<int, std::string, std::string>;

/// How often a message is in the log.
struct Counts
{
    long clean = 0;
    long run = 0;
};

std::map<LogKey, Counts> countsOf(const Record& clean, const Record& run)
{
    std::map<LogKey, Counts> counts;
    for (const auto& record : clean.log)
        ++counts[{record.priority, record.channel, record.text}].clean;
    for (const auto& record : run.log)
        ++counts[{record.priority, record.channel, record.text}].run;
    return counts;
}

bool isKept(const Row& row, const std::map<LogKey, Counts>& counts)
{
    return std::any_of(counts.begin(), counts.end(),
                       [&](const auto& message)
                       {
                           const auto& [priority, channel, text] = message.first;
                           const Counts& count = message.second;
                           const std::string start = row.text;
                           const bool isThere =
                               count.run > count.clean || (row.isOfValue && count.run > 0 && count.run == count.clean);
                           return isThere && priority == row.priority && channel == row.channel &&
                                  text.compare(0, start.size(), start) == 0 &&
                                  text.find(row.behind, start.size()) != std::string::npos;
                       });
}

/// Records that are not there in a run without a fault.
std::vector<Finding> surplus(const std::map<LogKey, Counts>& counts)
{
    std::vector<Finding> findings;
    for (const auto& [key, count] : counts)
    {
        if (count.run > count.clean)
            findings.push_back({Kind::log, "a record that must not be there: " + std::get<1>(key) + " " +
                                               std::to_string(std::get<0>(key)) + " " + std::get<2>(key)});
    }
    return findings;
}
}

const std::vector<Row>& rows()
{
    static const std::vector<Row> all = {
        // The shared enumerator, and lists.
        {"EndpointDeviceEnumeratorCommon::registerNotificationObserver",
         "IMMDeviceEnumerator::RegisterEndpointNotificationCallback(*", Mode::fail, noRecord, "", "", ""},
        {"*", "CoCreateInstance(*", Mode::fail, 4, enumerator, "CoCreateInstance returns ", code},
        {"*", "CoCreateInstance(*", Mode::fail, 4, endpoint, "CoCreateInstance returns ", code},
        {"*", "IMMDeviceEnumerator::RegisterEndpointNotificationCallback(*", Mode::fail, 3, enumerator,
         "Fail to register notification callback ", ""},
        // A device.
        {"*", "IMMDeviceEnumerator::GetDevice(*", Mode::fail, 4, endpoint, "IMMDeviceEnumerator::GetDevice returns ",
         code},
        {"*", "IMMDevice::Activate(IDeviceTopology*", Mode::fail, 3, endpoint,
         "Interface is not available for this device ", code},
        {"*", "IMMDevice::Activate(IDeviceTopology*", Mode::null, 4, topology,
         "Using NULL deviceTopology invalidates this object", ""},
        {"*", "IMMDevice::Activate(IAudioEndpointVolume*", Mode::fail, 3, endpoint,
         "Interface is not available for this device ", code},
        {"*", "IMMDevice::OpenPropertyStore(*", Mode::fail, 4, endpoint, "OpenPropertyStore returns ", code},
        {"AudioDevice::setFormat*", "IMMDevice::OpenPropertyStore(*", Mode::fail, 3, endpoint,
         "Cannot open a new property store ", code},
        {"AudioDevice::setFormat*", "IPropertyStore::SetValue(*", Mode::fail, 3, endpoint,
         "IPropertyStore::SetValue failed ", code},
        {"*", "IPropertyStore::GetValue(deviceDescription*", Mode::fail, 4, endpoint,
         "m_propertyStore->GetValue(PKEY_Device_DeviceDesc, &deviceProperty) fails ", "", true},
        {"*", "IPropertyStore::GetValue(deviceFormat*", Mode::fail, 4, endpoint,
         "m_propertyStore->GetValue(PKEY_AudioEngine_DeviceFormat, &deviceProperty) fails", "", true},
        {"*", "IPropertyStore::GetValue(instancePath*", Mode::fail, 4, endpoint, "Fail to get instancePathKey value ",
         "", true},
        {"*", "IPropertyStore::GetValue(driverNodeStrongName*", Mode::fail, 4, endpoint,
         "Fail to get driverNodeStrongName value ", "", true},
        {"*", "IPropertyStore::GetValue(friendlyName*", Mode::fail, 4, endpoint, "Fail to get device friendly name ",
         "", true},
        {"*", "IPropertyStore::GetValue(speakerConfig*", Mode::fail, 4, endpoint,
         "Fail to get physical speaker config ", "", true},
        {"*", "CLSIDFromString(*", Mode::fail, 3, endpoint,
         "CLSIDFromString cannot convert sting guid to direct sound guid", ""},
        {"*", "IMMDevice::GetState(*", Mode::fail, 3, endpoint, "GetState failed ", code},
        {"AudioDevice::isDefaultEndpoint", "IMMDevice::QueryInterface(*", Mode::fail, 4, endpoint,
         "QueryInterface returns ", code},
        {"AudioDevice::isDefaultEndpoint", "IMMEndpoint::GetDataFlow(*", Mode::fail, 4, endpoint,
         "GetDataFlow returns ", code},
        {"*", "IMMDeviceEnumerator::GetDefaultAudioEndpoint(*", Mode::fail, 4, endpoint,
         "GetDefaultAudioEndpoint returns ", code},
        {"AudioDevice::isDefaultEndpoint", "IMMDevice::GetId(*", Mode::fail, 4, endpoint, "GetId returns ", code},
        {"AudioDevice::waveLegacyDeviceID", "wave*Message(*", Mode::fail, 3, endpoint, "waveMessage returns an error ",
         ""},
        {"AudioDevice::waveLegacyDeviceID", "CoTaskMemAlloc(*", Mode::fail, 3, endpoint,
         "Cannot allocate device id buffer", ""},
        {"AudioDevice::waveLegacyDeviceID", "CoTaskMemAlloc(*", Mode::null, 3, endpoint,
         "Cannot allocate device id buffer", ""},
        // Parts and graphs.
        {"*", "IPart::EnumPartsIncoming(*", Mode::fail, 4, part, "Unable to enumerate incoming parts", "", true},
        {"*", "IPart::EnumPartsOutgoing(*", Mode::fail, 4, part, "Unable to enumerate outgoing parts", "", true},
        {"*", "IPart::GetTopologyObject(*", Mode::fail, 4, topology, "GetTopologyObject fails ", code},
        {"*", "IPart::GetTopologyObject(*", Mode::fail, 3, part, "Unable to get topology object from part ", ""},
        {"*", "IPart::GetTopologyObject(*", Mode::null, 4, topology,
         "Using NULL deviceTopology invalidates this object", ""},
        {"*", "IPart::GetTopologyObject(*", Mode::null, 3, part, "Unable to get topology object from part ", ""},
        {"*", "IDeviceTopology::GetDeviceId(*", Mode::fail, 4, topology, "Unable to retrieve device id from topology ",
         code},
        {"*", "IDeviceTopology::GetConnector(*", Mode::fail, 4, topology, "Unable to retrieve connector index ", code},
        {"*", "IDeviceTopology::GetSubunit(*", Mode::fail, 4, topology, "Unable to retrieve subunit index ", code},
        {"*", "IDeviceTopology::GetSignalPath(*", Mode::fail, 3, topology, "No signal path from ", ""},
        // Cards and controls.
        {"SoundCard::createSoundCard*", "getParentDeviceInstanceId(*", Mode::fail, 3, soundcard,
         "Unable to get parent id from the child id ", ""},
        {"*", "IAudioEndpointVolume::RegisterControlChangeNotify(*", Mode::fail, 3, volume,
         "Unable to register control change notification ", ""}};
    return all;
}

std::vector<Finding> judgeLog(const std::string& operation, const Record& clean, const Record& run)
{
    const Fault& fault = run.faults.front();
    if (run.faults.size() != 1 || FAILED(fault.call.entry.result))
        return {};
    const std::map<LogKey, Counts> counts = countsOf(clean, run);
    std::string expected;
    for (const Row& row : rows())
    {
        if (row.mode != fault.mode || !isLike(operation, row.operation) || !isLike(fault.call.entry.call(), row.call))
            continue;
        if (row.priority == noRecord)
            return surplus(counts);
        if (isKept(row, counts))
            return {};
        expected.append("\n      ").append(row.channel).append(" ").append(std::to_string(row.priority));
        expected.append(" ").append(row.text);
    }
    if (expected.empty())
        return {};
    return {{Kind::log, "none of these records:" + expected}};
}
}
