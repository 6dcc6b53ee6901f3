#include "comparison.h"

#include <algorithm>
#include <cstring>

namespace bench
{
namespace
{
sonavit::Guid guidOf(const GUID& guid)
{
    sonavit::Guid result;
    static_assert(sizeof result == sizeof guid);
    std::memcpy(static_cast<void*>(&result), &guid, sizeof guid);
    return result;
}

std::optional<sonavit::Guid> guidOf(const std::optional<GUID>& guid)
{
    return guid ? std::optional<sonavit::Guid>(guidOf(*guid)) : std::nullopt;
}

std::optional<sonavit::State> stateOf(const std::optional<DWORD>& state)
{
    if (state == DEVICE_STATE_ACTIVE)
        return sonavit::State::active;
    if (state == DEVICE_STATE_DISABLED)
        return sonavit::State::disabled;
    if (state == DEVICE_STATE_NOTPRESENT)
        return sonavit::State::notPresent;
    return state == DEVICE_STATE_UNPLUGGED ? std::optional<sonavit::State>(sonavit::State::unplugged) : std::nullopt;
}

sonavit::Level levelOf(const plain::Level& level)
{
    sonavit::Level result;
    if (level.percent)
        result.percent = sonavit::Percent(*level.percent);
    if (level.decibels)
        result.decibels = sonavit::Decibels(*level.decibels);
    return result;
}

sonavit::Volume volumeOf(const plain::Volume& volume)
{
    sonavit::Volume result;
    result.master = levelOf(volume.master);
    if (volume.range)
        result.range = sonavit::LevelRange{volume.range->minimum, volume.range->maximum, volume.range->step};
    result.channels.emplace();
    for (const plain::Level& channel : volume.channels)
        result.channels->push_back(levelOf(channel));
    result.isMuted = volume.isMuted;
    result.isInHardware = volume.isInHardware;
    return result;
}

sonavit::Format formatOf(const plain::Format& format)
{
    sonavit::Format result;
    result.rate = format.rate;
    result.bits = format.bits;
    result.validBits = format.validBits;
    result.channels = format.channels;
    result.encoding = sonavit::Format::Encoding::other;
    if (format.tag == WAVE_FORMAT_PCM)
        result.encoding = sonavit::Format::Encoding::integer;
    if (format.tag == WAVE_FORMAT_IEEE_FLOAT)
        result.encoding = sonavit::Format::Encoding::floatingPoint;
    result.speakers = format.speakers;
    result.subFormat = guidOf(format.subFormat);
    return result;
}

sonavit::Jack jackOf(const plain::Jack& jack)
{
    sonavit::Jack result;
    result.type = guidOf(jack.type);
    if (jack.formFactor)
        result.formFactor = static_cast<sonavit::FormFactor>(*jack.formFactor);
    if (!jack.description)
        return result;
    const KSJACK_DESCRIPTION& description = *jack.description;
    const auto part = [&](unsigned shift) { return static_cast<std::uint8_t>((description.Color >> shift) & 0xFF); };
    result.channels = static_cast<std::uint32_t>(description.ChannelMapping);
    result.colour = sonavit::Colour{part(16), part(8), part(0)};
    result.place = static_cast<sonavit::JackPlace>(description.GenLocation);
    result.geometry = static_cast<sonavit::JackGeometry>(description.GeoLocation);
    result.connection = static_cast<sonavit::JackConnection>(description.ConnectionType);
    result.port = static_cast<sonavit::JackPort>(description.PortConnection);
    result.isConnected = description.IsConnected != FALSE;
    return result;
}

/// The endpoint as the layer would have it. Problems are compared by their number: the layer adds sentences.
sonavit::Endpoint endpointOf(const plain::Endpoint& endpoint, const sonavit::Endpoint& ours)
{
    sonavit::Endpoint::Content result;
    result.id = sonavit::EndpointId(endpoint.id);
    result.description = endpoint.description;
    result.interfaceName = endpoint.interfaceName;
    result.flow = endpoint.flow == eRender ? sonavit::Flow::output : sonavit::Flow::input;
    result.state = stateOf(endpoint.state);
    for (const sonavit::Role role : sonavit::allRoles)
    {
        if ((endpoint.roles & (1u << static_cast<unsigned>(role))) != 0)
            result.roles.add(role);
    }
    for (const plain::Jack& jack : endpoint.jacks)
        result.jacks.push_back(jackOf(jack));
    if (endpoint.volume)
        result.volume = volumeOf(*endpoint.volume);
    if (endpoint.format)
        result.format = formatOf(*endpoint.format);
    result.speakers = endpoint.speakers;
    result.waveId = endpoint.waveId;
    result.directSoundId = guidOf(endpoint.directSoundId);
    result.driverNode = endpoint.driverNode;
    result.container = guidOf(endpoint.container);
    result.instancePath = endpoint.instancePath;
    result.incarnation = ours.incarnation();
    if (endpoint.problems.size() == ours.problems().size())
        result.problems = ours.problems();
    return sonavit::Endpoint(std::move(result));
}

sonavit::Card cardOf(const plain::Card& card, const sonavit::Card& ours)
{
    sonavit::Card::Content result;
    result.id = sonavit::CardId(card.id);
    result.instancePath = card.instancePath;
    result.instanceId = card.instanceId;
    result.parent = card.parent;
    result.container = guidOf(card.container);
    result.bus = card.bus;
    result.title = card.title;
    const std::size_t count = std::min(card.endpoints.size(), ours.endpoints().size());
    for (std::size_t index = 0; index < count; ++index)
        result.endpoints.push_back(endpointOf(card.endpoints[index], ours.endpoints()[index]));
    result.problems = ours.problems();
    return sonavit::Card(std::move(result));
}
}

std::vector<std::string> differences(const plain::Client& client, const sonavit::Snapshot& snapshot)
{
    std::vector<std::string> found;
    if (client.cards().size() != snapshot.cards().size())
        return {"the number of cards"};
    for (std::size_t index = 0; index < client.cards().size(); ++index)
    {
        const sonavit::Card& ours = snapshot.cards()[index];
        if (client.cards()[index].endpoints.size() != ours.endpoints().size())
            found.push_back("number of endpoints of " + ours.id().text());
        const sonavit::Card theirs = cardOf(client.cards()[index], ours);
        for (std::size_t place = 0; place < theirs.endpoints().size(); ++place)
        {
            if (theirs.endpoints()[place] != ours.endpoints()[place])
                found.push_back("endpoint " + ours.endpoints()[place].id().text());
        }
        if (theirs != ours)
            found.push_back("card " + ours.id().text());
    }
    for (std::size_t flow = 0; flow < 2; ++flow)
    {
        for (std::size_t role = 0; role < 3; ++role)
        {
            if (sonavit::EndpointId(client.defaults()[flow][role]) != snapshot.content().defaults[flow][role])
                found.emplace_back("a default");
        }
    }
    return found;
}
}
