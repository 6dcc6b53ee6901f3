// What is kept by operations of endpoints and volumes.
#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/volumechangenotification.h"
#include "tests/faults/kept/row.h"

#include <memory>

namespace faults::kept
{
namespace
{
typedef VolumeController<EndpointVolumeController> Volume;

std::vector<qor::String> endpointIds(const sim::Simulation& simulation)
{
    std::vector<qor::String> ids;
    for (const sim::Endpoint& endpoint : simulation.machine().endpoints)
    {
        if (endpoint.installed)
            ids.push_back(qor::String::fromUtf8(endpoint.id));
    }
    return ids;
}

/// The operation @p ask for each endpoint of the machine.
template<class Ask>
std::function<std::function<void()>(sim::Simulation&)> ofEachDevice(Ask ask)
{
    return [ask](sim::Simulation& simulation)
    {
        auto devices = std::make_shared<std::vector<std::shared_ptr<AudioDevice>>>();
        for (const qor::String& id : endpointIds(simulation))
            devices->push_back(std::make_shared<AudioDevice>(id));
        return [ask, devices]
        {
            for (const std::shared_ptr<AudioDevice>& device : *devices)
                ask(*device);
        };
    };
}

std::function<void()> openById(sim::Simulation& simulation)
{
    return [ids = endpointIds(simulation)]
    {
        for (const qor::String& id : ids)
            const AudioDevice device(id);
    };
}

std::function<void()> adopt(sim::Simulation& simulation)
{
    return [&simulation]
    {
        for (const sim::Endpoint& endpoint : simulation.machine().endpoints)
            const AudioDevice device(simulation.device(endpoint.id));
    };
}

void copyDevice(AudioDevice& device)
{
    AudioDevice copy(device);
    copy = device;
    AudioDevice empty;
    copy = empty;
}

void setFormat(AudioDevice& device)
{
    if (device.m_propertyStore.get() == nullptr)
        return;
    WAVEFORMATEXTENSIBLE format = device.deviceProperty().format;
    const WAVEFORMATEXTENSIBLE former = format;
    format.Format.nSamplesPerSec = format.Format.nSamplesPerSec == 44100 ? 48000 : 44100;
    device.setFormat(format);
    device.setFormat(former);
}

/// The rest of what a device is asked.
void askDevice(AudioDevice& device)
{
    device.isEndpoint();
    EDataFlow flow = eAll;
    device.dataFlow(flow);
    device.device();
    device.deviceTopology();
    AudioDeviceTopology topology;
    device.deviceTopology(topology);
    qor::Array<AudioComponent<IConnector>> connectors;
    device.connector(connectors);
    device.audioClient();
    device.baseFilter();
    device.volumeControl();
}

/// The endpoint's own controller; null if it has no volume.
Volume* volumeOf(const AudioDevice& device)
{
    auto* const volume = static_cast<Volume*>(device.m_volumeControl.get());
    return volume == nullptr || volume->m_policy.endpointVolume.get() == nullptr ? nullptr : volume;
}

void useVolume(AudioDevice& device)
{
    const Volume* const own = volumeOf(device);
    if (own == nullptr)
        return;
    Volume volume(*own);
    volume.setMasterVolumeLevelPercent(volume.masterVolumeLevelPercent());
    volume.setMasterVolumeLevelDecibel(volume.masterVolumeLevelDecibel());
    for (unsigned int channel = 0; channel < volume.numChannel(); ++channel)
    {
        VolumeControllerInterface::DbVolumeRange range = {};
        volume.volumeRangeDecibel(channel, range);
        volume.setVolumeLevelPercent(channel, volume.volumeLevelPercent(channel));
        volume.setVolumeLevelDecibel(channel, volume.volumeLevelDecibel(channel));
    }
    volume.setMute(!volume.isMuted());
}

void registerNotification(AudioDevice& device)
{
    const Volume* const own = volumeOf(device);
    if (own == nullptr)
        return;
    Volume volume(*own);
    volume.registerVolumeChangeNotification(new VolumeChangeNotification);
    volume.registerVolumeChangeNotification(new VolumeChangeNotification);
}

/// What stays registered for good stays within reach, so that a leak checker does not take it for lost.
VolumeChangeNotification* withinReach(VolumeChangeNotification* notification)
{
    static std::vector<const VolumeChangeNotification*> all;
    all.push_back(notification);
    return notification;
}

/// A controller gets an interface of another endpoint while a notification is registered with its own.
std::function<void()> rebind(sim::Simulation& simulation)
{
    auto devices = std::make_shared<std::vector<std::shared_ptr<AudioDevice>>>();
    for (const qor::String& id : endpointIds(simulation))
        devices->push_back(std::make_shared<AudioDevice>(id));
    return [devices]
    {
        for (std::size_t i = 1; i < devices->size(); ++i)
        {
            const Volume* const first = volumeOf(*(*devices)[i - 1]);
            const Volume* const second = volumeOf(*(*devices)[i]);
            if (first == nullptr || second == nullptr)
                continue;
            Volume volume(*first);
            volume.registerVolumeChangeNotification(withinReach(new VolumeChangeNotification));
            volume.initialize(second->m_policy);
        }
    };
}
}

std::vector<Row> deviceRows()
{
    return {
        {"AudioDevice::AudioDevice of an id", {Kind::directSoundTexts, Kind::enumerator}, openById},
        {"AudioDevice::AudioDevice of a device", {Kind::directSoundTexts}, adopt},
        {"AudioDevice, copied and assigned", {}, ofEachDevice(copyDevice)},
        {"AudioDevice::refreshDeviceInformation",
         {Kind::directSoundTexts},
         ofEachDevice([](AudioDevice& device) { device.refreshDeviceInformation(); })},
        {"AudioDevice::refreshDeviceState", {}, ofEachDevice([](AudioDevice& device) { device.refreshDeviceState(); })},
        {"AudioDevice::setFormat", {Kind::directSoundTexts}, ofEachDevice(setFormat)},
        {"AudioDevice::isDefaultEndpoint",
         {Kind::defaultIds},
         ofEachDevice([](AudioDevice& device) { device.isDefaultEndpoint(); })},
        {"AudioDevice::waveLegacyDeviceID", {}, ofEachDevice([](AudioDevice& device) { device.waveLegacyDeviceID(); })},
        {"AudioDevice, further questions", {}, ofEachDevice(askDevice)},
        {"VolumeController of an endpoint", {}, ofEachDevice(useVolume)},
        {"VolumeController::registerVolumeChangeNotification", {}, ofEachDevice(registerNotification)},
        {"VolumeController::initialize with a notification", {Kind::volumeClients}, rebind},
    };
}
}
