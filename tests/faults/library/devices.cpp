// One device: what it reads, activates and writes.
#include "benchmarks/direct/client.h"
#include "benchmarks/direct/text.h"
#include "libModuleCommon/guid.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "tests/benchmarks/direct/supportvalues.h"
#include "tests/faults/library/choice.h"
#include "tests/faults/library/operation.h"

namespace faults::library
{
namespace
{
using directvalues::Lines;

/// Notes what the device holds, as the first of the lists.
void answerWith(Run& run, const AudioDevice& device)
{
    EndpointDeviceEnumeratorCommon lists;
    lists.m_active.append(device);
    Lines lines;
    directvalues::add(lines, lists);
    for (const std::string& line : lines)
        run.answer(line);
}

Operation opening(const std::string& name, std::size_t index)
{
    const auto idOf = [=](sim::Simulation& simulation)
    {
        const std::vector<std::string> ids = deviceIds(simulation.machine());
        return index < ids.size() ? ids[index] : std::string("unknown");
    };
    const auto perform = [=](Run& run)
    {
        const qor::String id = text(idOf(run.simulation()));
        AudioDevice device;
        run.act([&] { device.initialize(id); });
        answerWith(run, device);
        device.initialize(id);
        run.later(device.isInitialized() ? "initialized" : "not initialized");
        run.later(std::to_string(device.deviceProperty().deviceState));
    };
    const auto model = [=](sim::Simulation& simulation, const std::function<void()>& arm)
    {
        const std::string id = idOf(simulation);
        direct::Client client;
        arm();
        const std::u16string wide = direct::copyOf(platform::wide(text(id).getUCS2Buffer()));
        direct::StateLists lists;
        lists.active.push_back(client.open(wide));
        Lines lines;
        directvalues::add(lines, lists);
        return lines;
    };
    return {name, perform, model};
}

std::string textOf(GUID guid)
{
    return guidToString(&guid).toUtf8();
}

std::string textOf(const WAVEFORMATEXTENSIBLE& format)
{
    return std::to_string(format.Format.nChannels) + "/" + std::to_string(format.Format.nSamplesPerSec) + "/" +
           std::to_string(format.Format.wBitsPerSample);
}

std::vector<std::string> propertiesOf(const AudioDevice& device)
{
    const AudioDevice::Properties& properties = device.m_properties;
    return {"id " + properties.deviceId.toUtf8(),
            "type " + properties.endpointType.toUtf8(),
            "name " + properties.friendlyName.toUtf8(),
            "path " + properties.instancePath.toUtf8(),
            "driver " + properties.driverNodeStrongName.toUtf8(),
            "jack " + textOf(properties.subType),
            "sound " + textOf(properties.directSoundGuid),
            "speakers " + std::to_string(properties.speakerConfig),
            "state " + std::to_string(properties.deviceState),
            "format " + textOf(properties.format)};
}

/// The device on which most operations are tried: the first endpoint that has a volume, otherwise any.
AudioDevice endpointOf(sim::Simulation& simulation)
{
    const sim::Machine machine = simulation.machine();
    std::string id = endpointWithVolume(machine);
    const std::vector<std::string> ids = endpointIds(machine);
    if (id.empty() && !ids.empty())
        id = ids.front();
    return AudioDevice(text(id));
}

/// An operation on an endpoint. @param action returns what it answers; the device is asked again afterwards
Operation onEndpoint(const std::string& name, std::string (*action)(AudioDevice&),
                     std::optional<std::vector<Effect>> effects)
{
    const auto perform = [=](Run& run)
    {
        AudioDevice device = endpointOf(run.simulation());
        const bool isThere = device.isInitialized();
        if (isThere)
            device.refreshDeviceState(); // not read yet where an ordinary account may not open the property store
        run.act(
            [&]
            {
                if (isThere)
                    run.answer(action(device));
            });
        for (const std::string& line : propertiesOf(device))
            run.answer(line);
        if (isThere)
            run.later(action(device));
        for (const std::string& line : propertiesOf(device))
            run.later(line);
    };
    return {name, perform, nullptr, std::move(effects)};
}

std::string yesOrNo(const char* what, bool value)
{
    return what + std::string(value ? " yes" : " no");
}

std::string refreshAll(AudioDevice& device)
{
    return yesOrNo("read", device.refreshDeviceInformation());
}

std::string refreshState(AudioDevice& device)
{
    return "refreshed " + std::to_string(device.refreshDeviceState());
}

std::string isEndpoint(AudioDevice& device)
{
    return yesOrNo("endpoint", device.isEndpoint());
}

std::string flowOf(AudioDevice& device)
{
    EDataFlow flow = eAll;
    const bool isKnown = device.dataFlow(flow);
    return yesOrNo("flow", isKnown) + " " + std::to_string(flow);
}

std::string isDefault(AudioDevice& device)
{
    return yesOrNo("default", device.isDefaultEndpoint());
}

std::string waveId(AudioDevice& device)
{
    return "wave " + std::to_string(device.waveLegacyDeviceID());
}

std::string clientOf(AudioDevice& device)
{
    return yesOrNo("client", device.audioClient().get() != nullptr);
}

std::string filterOf(AudioDevice& device)
{
    return yesOrNo("filter", device.baseFilter() != nullptr);
}

std::string topologyOf(AudioDevice& device)
{
    AudioDeviceTopology topology;
    device.deviceTopology(topology);
    qor::Array<AudioComponent<IConnector>> connectors;
    const unsigned int count = device.connector(connectors);
    const bool hasTopology = device.deviceTopology().get() != nullptr && device.device().get() != nullptr;
    return yesOrNo("topology", hasTopology && topology.isInitialized()) + " " + std::to_string(count);
}

std::string copyOf(AudioDevice& device)
{
    const AudioDevice copy(device);
    AudioDevice assigned;
    assigned = copy;
    qor::Array<AudioDevice> list;
    for (int i = 0; i < 9; ++i) // one more than an array has room for at first
        list.append(assigned);
    return yesOrNo("equal", list[8] == device);
}

/// Another rate, and back when the copy ends.
void setFormat(Run& run)
{
    AudioDevice device = endpointOf(run.simulation());
    WAVEFORMATEXTENSIBLE format = device.m_properties.format;
    const bool hasStore = device.m_propertyStore.get() != nullptr;
    format.Format.nSamplesPerSec = format.Format.nSamplesPerSec == 44100 ? 48000 : 44100;
    bool isSet = false;
    run.act(
        [&]
        {
            if (hasStore)
                isSet = device.setFormat(format);
        });
    const bool isOpen = device.m_propertyStore.get() != nullptr;
    run.answer(yesOrNo("set", isSet));
    run.answer(yesOrNo("store", isOpen));
    if (isOpen)
        device.setFormat(device.m_savedProperties.format);
    else
        device.m_savedProperties = device.m_properties; // nothing is restored without one
}

/// The end of a device whose format was changed.
void restoreFormat(Run& run)
{
    AudioDevice* const device = new AudioDevice(endpointOf(run.simulation()));
    WAVEFORMATEXTENSIBLE format = device->m_properties.format;
    format.Format.nSamplesPerSec = format.Format.nSamplesPerSec == 44100 ? 48000 : 44100;
    if (device->m_propertyStore.get() != nullptr)
        device->setFormat(format);
    run.act([&] { delete device; });
}

std::vector<Effect> effectsOnDefault()
{
    std::vector<Effect> effects;
    for (const char* const call : {"CoCreateInstance(*", "IMMDevice::QueryInterface(*", "IMMEndpoint::GetDataFlow(*",
                                   "IMMDeviceEnumerator::GetDefaultAudioEndpoint(*", "IMMDevice::GetId(*"})
        effects.push_back({call, "fail", "default ", "no"});
    for (const char* const call :
         {"CoCreateInstance(*", "IMMDevice::QueryInterface(*", "IMMDeviceEnumerator::GetDefaultAudioEndpoint(*"})
        effects.push_back({call, "null", "default ", "no"});
    for (const char* const call : {"IMMEndpoint::GetDataFlow(*", "IMMDevice::GetId(*"})
        effects.push_back({call, "null", "default ", "*"});
    return effects;
}
}

std::vector<Operation> deviceOperations()
{
    return {opening("AudioDevice::initialize render", 0),
            opening("AudioDevice::initialize capture", 1),
            opening("AudioDevice::initialize adapter", 2),
            onEndpoint("AudioDevice::refreshDeviceInformation", refreshAll,
                       std::vector<Effect>{{"IMMDevice::OpenPropertyStore(*", "*", "read ", "no"},
                                           {"IMMDevice::GetState(*", "null", "state ", "0"},
                                           {"CLSIDFromString(*", "*", "sound ", "*"},
                                           {"IPropertyStore::GetValue(endpointGuid*", "null", "sound ", "*"},
                                           {"IConnector::*", "*", "jack ", "*"},
                                           {"IPart::GetSubType(*", "*", "jack ", "*"}}),
            onEndpoint("AudioDevice::refreshDeviceState", refreshState,
                       std::vector<Effect>{{"IMMDevice::GetState(*", "null", "refreshed ", "0"},
                                           {"IMMDevice::GetState(*", "null", "state ", "0"}}),
            onEndpoint("AudioDevice::isEndpoint", isEndpoint,
                       std::vector<Effect>{{"IMMDevice::QueryInterface(*", "fail", "endpoint ", "no"}}),
            onEndpoint("AudioDevice::dataFlow", flowOf,
                       std::vector<Effect>{{"IMMDevice::QueryInterface(*", "*", "flow ", "no 2"},
                                           {"IMMEndpoint::GetDataFlow(*", "fail", "flow ", "yes 2"},
                                           {"IMMEndpoint::GetDataFlow(*", "null", "flow ", "yes 0"}}),
            onEndpoint("AudioDevice::isDefaultEndpoint", isDefault, effectsOnDefault()),
            onEndpoint("AudioDevice::waveLegacyDeviceID", waveId,
                       std::vector<Effect>{{"IMMDevice::QueryInterface(*", "*", "wave ", "4294967295"},
                                           {"IMMEndpoint::GetDataFlow(*", "*", "wave ", "*"},
                                           {"CoTaskMemAlloc(*", "*", "wave ", "4294967295"},
                                           {"wave*", "*", "wave ", "*"}}),
            onEndpoint("AudioDevice::audioClient", clientOf,
                       std::vector<Effect>{{"IMMDevice::Activate(*", "*", "client ", "no"}}),
            onEndpoint("AudioDevice::baseFilter", filterOf,
                       std::vector<Effect>{{"IMMDevice::Activate(*", "*", "filter ", "no"}}),
            onEndpoint("AudioDevice topologies", topologyOf, std::vector<Effect>{}),
            onEndpoint("AudioDevice copies", copyOf, std::vector<Effect>{}),
            {"AudioDevice::setFormat", setFormat, nullptr,
             std::vector<Effect>{{"IPropertyStore::SetValue(*", "fail", "set ", "no"},
                                 {"IMMDevice::OpenPropertyStore(*", "fail", "set ", "no"},
                                 {"IMMDevice::OpenPropertyStore(*", "fail", "store ", "no"}}},
            {"AudioDevice::setFormat, end", restoreFormat}};
}
}
