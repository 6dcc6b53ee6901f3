#include "simulator/machine/equality.h"

#include "simulator/machine/machine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <type_traits>
#include <utility>

namespace
{
// The members of each type. A structured binding names all members of a type, so this file does not compile when a type
// gets another member, until the member is named here and so becomes part of the test.

auto membersOf(sim::PropertyValue& value)
{
    auto& [tag, text, number, real, guid, bytes, longReal] = value;
    return std::tie(tag, text, number, real, guid, bytes, longReal);
}

auto membersOf(sim::Property& value)
{
    auto& [key, content] = value;
    return std::tie(key, content);
}

auto membersOf(sim::ChannelLevel& value)
{
    auto& [minimum, maximum, step, level] = value;
    return std::tie(minimum, maximum, step, level);
}

auto membersOf(sim::VolumeControl& value)
{
    auto& [channels] = value;
    return std::tie(channels);
}

auto membersOf(sim::MuteControl& value)
{
    auto& [muted] = value;
    return std::tie(muted);
}

auto membersOf(sim::SelectorControl& value)
{
    auto& [selection] = value;
    return std::tie(selection);
}

auto membersOf(sim::FurtherControl& value)
{
    auto& [interfaceId, name] = value;
    return std::tie(interfaceId, name);
}

auto membersOf(sim::Part& value)
{
    auto& [id, localId, reportsId, name, subType, incoming, outgoing, volume, mute, selector, further] = value;
    return std::tie(id, localId, reportsId, name, subType, incoming, outgoing, volume, mute, selector, further);
}

auto membersOf(sim::Jack& value)
{
    auto& [channels, colour, connection, geometric, general, port, detectsPresence, changesFormat, connected] = value;
    return std::tie(channels, colour, connection, geometric, general, port, detectsPresence, changesFormat, connected);
}

auto membersOf(sim::Connector& value)
{
    return std::tuple_cat(membersOf(static_cast<sim::Part&>(value)),
                          std::tie(value.type, value.direction, value.jacks));
}

auto membersOf(sim::Subunit& value)
{
    return membersOf(static_cast<sim::Part&>(value));
}

auto membersOf(sim::SignalPath& value)
{
    auto& [from, to, through, mixed] = value;
    return std::tie(from, to, through, mixed);
}

auto membersOf(sim::Topology& value)
{
    auto& [deviceId, connectors, subunits, signalPaths] = value;
    return std::tie(deviceId, connectors, subunits, signalPaths);
}

auto membersOf(sim::Device& value)
{
    auto& [id, openable, state, properties, unlisted, topology, hasAudioClient, hasBaseFilter, hasMeter] = value;
    return std::tie(id, openable, state, properties, unlisted, topology, hasAudioClient, hasBaseFilter, hasMeter);
}

auto membersOf(sim::HardwareControls& value)
{
    auto& [volume, mute] = value;
    return std::tie(volume, mute);
}

auto membersOf(sim::TaperPoint& value)
{
    auto& [level, scalar] = value;
    return std::tie(level, scalar);
}

auto membersOf(sim::EndpointVolume& value)
{
    auto& [minimum, maximum, step, channels, muted, support, refused, taper, points, master, steps, hardware] = value;
    return std::tie(minimum, maximum, step, channels, muted, support, refused, taper, points, master, steps, hardware);
}

auto membersOf(sim::DevicePeriods& value)
{
    auto& [usual, minimum] = value;
    return std::tie(usual, minimum);
}

auto membersOf(sim::Endpoint& value)
{
    return std::tuple_cat(membersOf(static_cast<sim::Device&>(value)),
                          std::tie(value.flow, value.installed, value.volume, value.defaultFor, value.periods,
                                   value.mixFormat, value.mixFormatBytes));
}

auto membersOf(sim::Adapter& value)
{
    return membersOf(static_cast<sim::Device&>(value));
}

auto membersOf(sim::Join& value)
{
    auto& [from, to, toDevice, bothWays] = value;
    return std::tie(from, to, toDevice, bothWays);
}

auto membersOf(sim::DeviceInstance& value)
{
    auto& [id, parent] = value;
    return std::tie(id, parent);
}

auto membersOf(sim::WaveDevice& value)
{
    auto& [endpointId, sizeResult, idResult] = value;
    return std::tie(endpointId, sizeResult, idResult);
}

auto membersOf(sim::ScriptEvent& value)
{
    auto& [after, kind, endpoint, state, flow, role, level, muted, key, content] = value;
    return std::tie(after, kind, endpoint, state, flow, role, level, muted, key, content);
}

auto membersOf(sim::FaultRule& value)
{
    auto& [operation, object, argument, call, outcome, result, forMilliseconds, after, arguments] = value;
    return std::tie(operation, object, argument, call, outcome, result, forMilliseconds, after, arguments);
}

auto membersOf(sim::LatencyRule& value)
{
    auto& [operation, microseconds, argument] = value;
    return std::tie(operation, microseconds, argument);
}

auto membersOf(sim::Machine& value)
{
    auto& [name, description, account, removed, thread, absentNames, composition, captureAccess, endpoints, adapters,
           joins, instances, waveOut, waveIn, script, faults, latencyPreset, latency] = value;
    return std::tie(name, description, account, removed, thread, absentNames, composition, captureAccess, endpoints,
                    adapters, joins, instances, waveOut, waveIn, script, faults, latencyPreset, latency);
}

// A structured binding cannot name the members of a derived type; their number is found by initialising it.

struct Anything
{
    template<class Member>
    operator Member() const;
};

template<class Object, class... Members>
auto takes(int) -> decltype(Object{std::declval<Members>()...}, std::true_type());
template<class Object, class... Members>
std::false_type takes(...);

/// Whether @p Members are the base and all further members of the derived type @p Object.
template<class Object, class... Members>
constexpr bool hasExactly =
    decltype(takes<Object, Members...>(0))::value && !decltype(takes<Object, Members..., Anything>(0))::value &&
    !decltype(takes<Object, Members..., std::nullopt_t>(0))::value;

static_assert(hasExactly<sim::Connector, sim::Part, ConnectorType, DataFlow, std::vector<sim::Jack>>,
              "membersOf() knows all members");
static_assert(hasExactly<sim::Subunit, sim::Part>, "membersOf() knows all members");
static_assert(
    hasExactly<sim::Endpoint, sim::Device, EDataFlow, bool, std::optional<sim::EndpointVolume>, std::vector<ERole>,
               std::optional<sim::DevicePeriods>, std::optional<sim::MixFormat>, std::vector<std::uint8_t>>,
    "membersOf() knows all members");
static_assert(hasExactly<sim::Adapter, sim::Device>, "membersOf() knows all members");

// Any change of a value.

void change(bool& value)
{
    value = !value;
}

void change(float& value)
{
    value = std::nextafter(value, 1000.0f);
}

void change(double& value)
{
    value = std::nextafter(value, 1000.0);
}

void change(std::string& value)
{
    value += "x";
}

void change(GUID& value)
{
    value.Data4[7] ^= 1;
}

void change(PROPERTYKEY& value)
{
    value.pid += 1;
}

void change(sim::PropertyValue& value)
{
    value.number += 1;
}

void change(sim::HardwareControls& value)
{
    value.volume += "x";
}

template<class Value>
void change(std::optional<Value>& value)
{
    value.emplace();
}

template<class Value>
void change(std::vector<Value>& list)
{
    list.emplace_back();
}

/// To the neighbour of an enumerator's pair, as each enumeration here has both 0 and 1, and 3 if it has 2.
template<class Value>
std::enable_if_t<std::is_enum_v<Value> || std::is_integral_v<Value>> change(Value& value)
{
    value = static_cast<Value>(static_cast<int>(value) ^ 1);
}

template<class Object>
class MachineEquality : public testing::Test
{
protected:
    template<std::size_t... Index>
    static void expectEachMemberToCount(std::index_sequence<Index...>)
    {
        (expectMemberToCount<Index>(), ...);
    }

    template<std::size_t Index>
    static void expectMemberToCount()
    {
        const Object original = {};
        Object changed = {};
        EXPECT_TRUE(original == changed);

        change(std::get<Index>(membersOf(changed)));

        EXPECT_FALSE(original == changed) << "member " << Index;
        EXPECT_FALSE(changed == original) << "member " << Index;
        EXPECT_TRUE(changed == Object(changed)) << "member " << Index;
    }
};

using AllTypes =
    testing::Types<sim::PropertyValue, sim::Property, sim::ChannelLevel, sim::VolumeControl, sim::MuteControl,
                   sim::SelectorControl, sim::FurtherControl, sim::Jack, sim::Connector, sim::Subunit, sim::SignalPath,
                   sim::Topology, sim::HardwareControls, sim::TaperPoint, sim::EndpointVolume, sim::DevicePeriods,
                   sim::Endpoint, sim::Adapter, sim::Join, sim::DeviceInstance, sim::WaveDevice, sim::ScriptEvent,
                   sim::FaultRule, sim::LatencyRule, sim::Machine>;
TYPED_TEST_SUITE(MachineEquality, AllTypes);

TYPED_TEST(MachineEquality, ComparesEachMember)
{
    using Members = decltype(membersOf(std::declval<TypeParam&>()));

    this->expectEachMemberToCount(std::make_index_sequence<std::tuple_size_v<Members>>());
}

TEST(MachineInequality, IsTheOppositeOfEquality)
{
    sim::Machine changed;
    changed.name = "changed";

    EXPECT_NE(changed, sim::Machine());
    EXPECT_FALSE(changed != sim::Machine(changed));
}

TEST(MachineInequality, SeesADifferenceDeepInside)
{
    sim::Machine machine;
    machine.adapters.emplace_back().topology.emplace().subunits.emplace_back().volume.emplace().channels.resize(2);
    sim::Machine changed = machine;

    float& level = changed.adapters[0].topology->subunits[0].volume->channels[1].level;
    level = std::nextafter(level, 1.0f);

    EXPECT_NE(machine, changed);
}
}
