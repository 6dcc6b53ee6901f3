// One endpoint: reading, questions, copies, setters, notification.
#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/soundcard.h"
#include "libSonavit/volumechangenotification.h"
#include "tests/faults/memory/librarytexts.h"
#include "tests/faults/memory/subject.h"

namespace faults::memory
{
namespace
{
/// The id of the first endpoint that has a volume, otherwise of the first one.
qor::String endpointOf(sim::Simulation& simulation)
{
    const sim::Machine machine = simulation.machine();
    for (const sim::Endpoint& endpoint : machine.endpoints)
    {
        if (endpoint.volume && endpoint.state == DEVICE_STATE_ACTIVE)
            return qor::String::fromUtf8(endpoint.id);
    }
    return machine.endpoints.empty() ? qor::String("unknown") : qor::String::fromUtf8(machine.endpoints[0].id);
}

class DeviceById final : public Subject
{
public:
    explicit DeviceById(sim::Simulation& simulation) : m_id(endpointOf(simulation)) {}

    void work() override
    {
        AudioDevice device(m_id);
        if (!device.isInitialized())
            device.initialize(m_id);
        m_device = device;
        if (!m_device.isInitialized())
            return; // the machine has no endpoint
        m_device.refreshDeviceInformation();
        m_device.refreshDeviceState();
    }

    std::string answer() override { return textOf(m_device); }

private:
    const qor::String m_id;
    AudioDevice m_device;
};

class DeviceQuestions final : public Subject
{
public:
    explicit DeviceQuestions(sim::Simulation& simulation) : m_device(endpointOf(simulation)) {}

    void work() override
    {
        if (!m_device.isInitialized())
            return;
        m_isEndpoint = m_device.isEndpoint();
        m_isDefault = m_device.isDefaultEndpoint();
        m_waveId = m_device.waveLegacyDeviceID();
        m_device.dataFlow(m_flow);
        m_device.deviceTopology(m_topology);
        AudioDeviceTopology copy(m_topology);
        copy = m_device.deviceTopology();
        m_connectors = m_device.connector(m_connectorList);
        m_hasClient = m_device.audioClient().get() != nullptr;
        m_hasFilter = m_device.baseFilter() != nullptr;
    }

    std::string answer() override
    {
        return std::to_string(m_isEndpoint) + std::to_string(m_isDefault) + " wave " + std::to_string(m_waveId) +
               " flow " + std::to_string(m_flow) + " connectors " + std::to_string(m_connectors) + " " +
               m_topology.deviceOwner().toUtf8() + std::to_string(m_hasClient) + std::to_string(m_hasFilter);
    }

private:
    AudioDevice m_device;
    bool m_isEndpoint = false;
    bool m_isDefault = false;
    unsigned int m_waveId = 0;
    EDataFlow m_flow = eAll;
    AudioDeviceTopology m_topology;
    qor::Array<AudioComponent<IConnector>> m_connectorList;
    unsigned int m_connectors = 0;
    bool m_hasClient = false;
    bool m_hasFilter = false;
};

/// The destructor of the device that has set a format restores the former one.
class FormatOfDevice final : public Subject
{
public:
    explicit FormatOfDevice(sim::Simulation& simulation) : m_id(endpointOf(simulation)) {}

    void work() override
    {
        AudioDevice device(m_id);
        if (!device.isInitialized() || device.m_propertyStore.get() == nullptr)
            return;
        WAVEFORMATEXTENSIBLE format = device.deviceProperty().format;
        format.Format.nSamplesPerSec = 44100;
        device.setFormat(format);
        m_rate = device.deviceProperty().format.Format.nSamplesPerSec;
    }

    std::string answer() override { return std::to_string(m_rate) + textOf(AudioDevice(m_id)); }

private:
    const qor::String m_id;
    DWORD m_rate = 0;
};

class Jacks final : public Subject
{
public:
    explicit Jacks(sim::Simulation&) : m_cards(SoundCard::enumerateSystemSoundDevices()) {}

    void work() override
    {
        m_found.clear();
        m_views.clear();
        for (unsigned int i = 0; i < m_cards.size(); ++i)
            ask(m_cards[i]);
    }

    std::string answer() override { return textOf(m_found) + std::to_string(m_views.size()); }

private:
    void ask(SoundCard& card)
    {
        card.microphoneEndpointDevice(m_found);
        card.waveOutEndpointDevice(m_found);
        card.lineInEndpointDevice(m_found, DEVICE_STATEMASK_ALL);
        card.spdifInEndpointDevice(m_found);
        card.spdifOutEndpointDevice(m_found, DEVICE_STATEMASK_ALL);
        card.allPlaybackDevice(m_found, DEVICE_STATE_ACTIVE);
        card.waveOutEndpointDevice(m_views);
        card.microphoneEndpointDevice(m_views);
    }

    qor::Array<SoundCard> m_cards;
    qor::Array<AudioDevice> m_found;
    qor::Array<AudioInterfacePtr> m_views;
};

class VolumeSetters final : public Subject
{
public:
    explicit VolumeSetters(sim::Simulation& simulation) : m_device(endpointOf(simulation)) {}

    void work() override
    {
        if (m_device.m_volumeControl.get() == nullptr)
            return;
        VolumeController<EndpointVolumeController> volume(
            static_cast<const VolumeController<EndpointVolumeController>&>(*m_device.m_volumeControl));
        if (volume.m_policy.endpointVolume.get() == nullptr)
            return;
        for (unsigned int channel = 0; channel < volume.numChannel(); ++channel)
            volume.setVolumeLevelDecibel(channel,
                                         -12.0F); // the master level moves the channels, and keeps their distance
        volume.registerVolumeChangeNotification(new VolumeChangeNotification);
        volume.setMasterVolumeLevelPercent(40);
        volume.setMasterVolumeLevelDecibel(-6.0F);
        volume.setVolumeLevelPercent(0, 30);
        volume.setVolumeLevelDecibel(0, -9.0F);
        volume.setMute(true);
        volume.setMute(false);
        m_percent = volume.masterVolumeLevelPercent();
        m_name = volume.ownerName();
    }

    std::string answer() override { return std::to_string(m_percent) + m_name.toUtf8(); }

private:
    AudioDevice m_device;
    unsigned int m_percent = 0;
    qor::String m_name;
};
}

std::vector<Case> deviceCases()
{
    return {caseOf<DeviceById>("AudioDevice by id"), caseOf<DeviceQuestions>("AudioDevice, questions"),
            caseOf<FormatOfDevice>("AudioDevice::setFormat"), caseOf<Jacks>("questions by jack"),
            caseOf<VolumeSetters>("volume setters and notification")};
}
}
