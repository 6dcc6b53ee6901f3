// The operations of EndpointBuilder.
#include "simulator/machine/builder/machinebuilder.h"

#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"

#include <algorithm>
#include <utility>

namespace sim
{
EndpointBuilder::EndpointBuilder(MachineBuilder& owner, std::size_t wiring) : m_owner(&owner), m_wiring(wiring) {}

EndpointBuilder& EndpointBuilder::state(std::uint32_t states)
{
    // The platform opens streams on active endpoints only, and knows no volume of what is not there.
    endpoint().state = states;
    endpoint().hasAudioClient = states == stateActive;
    endpoint().hasBaseFilter = states == stateActive;
    if (states == stateNotPresent)
        endpoint().volume.reset();
    return *this;
}

EndpointBuilder& EndpointBuilder::disabled()
{
    return state(stateDisabled);
}

EndpointBuilder& EndpointBuilder::unplugged()
{
    return state(stateUnplugged);
}

EndpointBuilder& EndpointBuilder::notPresent()
{
    return state(stateNotPresent);
}

EndpointBuilder& EndpointBuilder::notInstalled()
{
    endpoint().installed = false;
    return *this;
}

EndpointBuilder& EndpointBuilder::isDefault()
{
    return defaultFor(eConsole).defaultFor(eMultimedia).defaultFor(eCommunications);
}

EndpointBuilder& EndpointBuilder::defaultFor(ERole role)
{
    for (Endpoint& other : m_owner->m_machine.endpoints)
    {
        if (other.flow == endpoint().flow)
            other.defaultFor.erase(std::remove(other.defaultFor.begin(), other.defaultFor.end(), role),
                                   other.defaultFor.end());
    }
    endpoint().defaultFor.push_back(role);
    return *this;
}

EndpointBuilder& EndpointBuilder::volume(const EndpointVolume& volume)
{
    endpoint().volume = volume;
    return *this;
}

EndpointBuilder& EndpointBuilder::level(float decibels)
{
    if (!endpoint().volume)
        endpoint().volume = EndpointVolume();
    for (float& channel : endpoint().volume->channels)
        channel = decibels;
    return *this;
}

EndpointBuilder& EndpointBuilder::muted()
{
    if (!endpoint().volume)
        endpoint().volume = EndpointVolume();
    endpoint().volume->muted = true;
    return *this;
}

EndpointBuilder& EndpointBuilder::withoutVolume()
{
    endpoint().volume.reset();
    return *this;
}

EndpointBuilder& EndpointBuilder::format(const DeviceFormat& format)
{
    property(keys::speakerConfig, PropertyValue::ofNumber(format.speakers()));
    return property(keys::deviceFormat, PropertyValue::ofBytes(format.bytes()));
}

EndpointBuilder& EndpointBuilder::property(const PROPERTYKEY& key, PropertyValue value)
{
    setProperty(endpoint().properties, key, std::move(value));
    return *this;
}

EndpointBuilder& EndpointBuilder::withoutProperty(const PROPERTYKEY& key)
{
    removeProperty(endpoint().properties, key);
    return *this;
}

EndpointBuilder& EndpointBuilder::hardwareVolume(const ChannelLevel& channel, std::size_t channels)
{
    Subunit volume;
    volume.name = "Volume";
    volume.subType = nodetypes::volume;
    volume.volume = VolumeControl{std::vector<ChannelLevel>(channels, channel)};
    return node(std::move(volume));
}

EndpointBuilder& EndpointBuilder::hardwareMute(bool muted)
{
    Subunit mute;
    mute.name = "Mute";
    mute.subType = nodetypes::mute;
    mute.mute = MuteControl{muted};
    return node(std::move(mute));
}

EndpointBuilder& EndpointBuilder::volumeInHardware()
{
    EndpointVolume volume = endpoint().volume.value_or(EndpointVolume());
    for (const std::string& id : m_owner->m_wirings[m_wiring].wire)
    {
        const ChangeablePartPlace part = m_owner->part(id);
        if (part->volume)
        {
            const ChannelLevel range = part->volume->channels.front();
            volume.minimum = range.minimum;
            volume.maximum = range.maximum;
            volume.step = range.step;
            volume.channels.clear();
            for (const ChannelLevel& channel : part->volume->channels)
                volume.channels.push_back(channel.level);
            volume.hardware.volume = id;
        }
        if (part->mute)
        {
            volume.muted = part->mute->muted;
            volume.hardware.mute = id;
        }
    }
    endpoint().volume = std::move(volume);
    return *this;
}

EndpointBuilder& EndpointBuilder::node(Subunit node)
{
    MachineBuilder::Wiring& wiring = m_owner->m_wirings[m_wiring];
    CardBuilder card(*m_owner, wiring.card);

    card.unchain(signal());
    wiring.wire.insert(wiring.wire.end() - 1, card.subunit(std::move(node)));
    card.chain(signal());
    return *this;
}

EndpointBuilder& EndpointBuilder::jackName(OptionalString name)
{
    jack().name = std::move(name);
    return *this;
}

EndpointBuilder& EndpointBuilder::unjoined()
{
    std::vector<Join>& joins = m_owner->m_machine.joins;
    const auto isOurs = [&](const Join& join) { return join.from == connectorId() || join.to == connectorId(); };
    joins.erase(std::remove_if(joins.begin(), joins.end(), isOurs), joins.end());
    return *this;
}

EndpointBuilder& EndpointBuilder::withoutTopology()
{
    unjoined();
    endpoint().topology.reset();
    return *this;
}

std::string EndpointBuilder::id() const
{
    return endpoint().id;
}

std::string EndpointBuilder::connectorId() const
{
    return m_owner->m_wirings[m_wiring].connector;
}

std::string EndpointBuilder::jackId() const
{
    return m_owner->m_wirings[m_wiring].wire.front();
}

std::string EndpointBuilder::streamId() const
{
    return m_owner->m_wirings[m_wiring].wire.back();
}

Endpoint& EndpointBuilder::endpoint() const
{
    return m_owner->m_machine.endpoints[m_owner->m_wirings[m_wiring].endpoint];
}

Part& EndpointBuilder::jack() const
{
    return *m_owner->part(jackId()).part;
}

std::vector<std::string> EndpointBuilder::signal() const
{
    std::vector<std::string> parts = m_owner->m_wirings[m_wiring].wire;
    if (endpoint().flow == eRender)
        std::reverse(parts.begin(), parts.end());
    return parts;
}
}
