/// A machine in which every field differs from its default.
#pragma once

#include "simulator/machine/deviceformat.h"
#include "simulator/machine/machine.h"
#include "simulator/machine/namedvalues.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"

namespace sample
{
inline const std::string speakers = "{0.0.0.00000000}.{11111111-0000-4000-8000-000000000001}";
inline const std::string microphone = "{0.0.1.00000000}.{11111111-0000-4000-8000-000000000002}";
inline const std::string codec = "{2}.\\\\?\\hdaudio#func_01&ven_c0de#4&1&0&0001#{6994ad04}\\topo";

inline sim::Properties allKindsOfProperties()
{
    constexpr GUID otherFormat = {0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};
    sim::Properties properties;
    sim::setProperty(properties, sim::keys::deviceDescription,
                     sim::PropertyValue::ofText("Überlautsprecher \xF0\x9F\x94\x8A"));
    sim::setProperty(properties, sim::keys::deviceFormat,
                     sim::PropertyValue::ofBytes(sim::DeviceFormat{24, 96000, 6}.bytes()));
    sim::setProperty(properties, sim::keys::instancePath, sim::PropertyValue::ofText({}));
    sim::setProperty(properties, sim::keys::speakerConfig, sim::PropertyValue::ofNumber(0xFFFFFFFF));
    sim::setProperty(properties, sim::keys::friendlyName, sim::PropertyValue());
    sim::setProperty(properties, sim::keys::endpointGuid, sim::PropertyValue::ofNumber(7, 11));
    sim::setProperty(properties, sim::keys::containerId, sim::PropertyValue::ofGuid(otherFormat));
    sim::setProperty(properties, {otherFormat, 1}, sim::PropertyValue::ofNumber(0xFEDCBA9876543210u, VT_UI8));
    sim::setProperty(properties, {otherFormat, 2}, sim::PropertyValue::ofBoolean(true));
    sim::setProperty(properties, {otherFormat, 3}, sim::PropertyValue::ofReal(1.5f));
    sim::setProperty(properties, {otherFormat, 4}, sim::PropertyValue::ofNumber(0xFEDCBA9876543210u, VT_I8));
    sim::setProperty(properties, {otherFormat, 5}, sim::PropertyValue::ofNumber(1, VT_FILETIME));
    sim::setProperty(properties, {otherFormat, 6}, sim::PropertyValue::ofLongReal(0.1));
    sim::setProperty(properties, {otherFormat, 7}, sim::PropertyValue::ofNarrowText("caf\xE9"));
    sim::setProperty(properties, {otherFormat, 8}, sim::PropertyValue::ofTag(VT_VECTOR | VT_LPWSTR));
    sim::setProperty(properties, {otherFormat, 4294967295u}, sim::PropertyValue::ofBytes({0x00, 0xFF, 0x5A}));
    return properties;
}

inline sim::Connector jack()
{
    sim::Connector connector;
    connector.id = codec + "/jack";
    connector.localId = 7;
    connector.reportsId = false;
    connector.name = "Rear \"green\"";
    connector.subType = sim::nodetypes::speaker;
    connector.incoming = {codec + "/node"};
    connector.outgoing = {codec + "/stream", codec + "/node"};
    connector.type = Physical_Internal;
    connector.direction = In;
    connector.jacks = {{3, 0x00FF00, eConnType3Point5mm, eGeoLocRearPanel, eGenLocSeparate, ePortConnIntegratedDevice,
                        true, true, false}};
    connector.volume = sim::VolumeControl{{{-96.0f, 12.0f, 1.5f, -0.1f}}};
    connector.mute = sim::MuteControl{true};
    connector.selector = sim::SelectorControl{9};
    connector.furtherControls = {{sim::controlInterfaceNames[0].value, "Automatic Gain"},
                                 {{0xAAAAAAAA, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}}, {}}};
    return connector;
}

inline sim::Topology graph()
{
    sim::Connector stream;
    stream.id = codec + "/stream";
    stream.localId = 0x00010001;
    stream.type = static_cast<ConnectorType>(7);
    stream.subType = {0xAAAAAAAA, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};

    sim::Subunit node;
    node.id = codec + "/node";
    node.localId = 9;
    node.reportsId = false;
    node.name = "";
    node.subType = sim::nodetypes::multiplexer;
    node.incoming = {codec + "/stream"};
    node.outgoing = {codec + "/jack"};
    node.volume = sim::VolumeControl{{{-34.5f, 0.0f, 0.5f, -10.0f}, {-30.0f, 6.0f, 0.75f, 1e-3f}}};
    node.mute = sim::MuteControl{false};
    node.selector = sim::SelectorControl{0x00010001};
    node.furtherControls = {{sim::controlInterfaceNames[8].value, ""}};

    sim::Topology topology;
    topology.deviceId = std::nullopt;
    topology.connectors = {jack(), stream};
    topology.subunits = {node};
    topology.signalPaths = {{stream.id, codec + "/jack", {node.id}, true}, {codec + "/jack", stream.id, {}, false}};
    return topology;
}

inline std::vector<sim::Endpoint> endpoints()
{
    sim::Endpoint output;
    output.id = speakers;
    output.state = sim::stateUnplugged;
    output.openable = false;
    output.installed = false;
    output.hasAudioClient = true;
    output.hasBaseFilter = true;
    output.hasMeter = true;
    output.periods = sim::DevicePeriods{101587, 29025};
    output.mixFormat = sim::MixFormat{{24, 44100, 6}, false};
    output.properties = allKindsOfProperties();
    output.unlistedProperties = {{sim::keys::association, sim::PropertyValue::ofText("unlisted")}};
    output.volume =
        sim::EndpointVolume{-60.0f, 6.0f, 0.25f, {-12.34f, -60.0f, 6.0f}, true, 5, {"SetMute", "GetVolumeRange"}};
    output.defaultFor = {eMultimedia, eCommunications};
    output.topology = sim::Topology();
    output.topology->deviceId = output.id;
    sim::Connector plug;
    plug.id = speakers + "/plug";
    plug.localId = 0x00010000;
    output.topology->connectors = {plug};

    sim::Endpoint input;
    input.id = microphone;
    input.flow = eCapture;
    input.state = 5;
    input.volume = sim::EndpointVolume{
        -96.0f, 12.0f, 1.5f, {-0.1f}, true, 4, {}, sim::Taper::measured, {{-50.0f, 0.25f}, {-0.1f, 0.9f}}, -3.5f, 51};
    input.volume->hardware = {codec + "/jack", codec + "/jack"};
    input.defaultFor = {eConsole};
    input.mixFormatBytes = {0x55, 0, 2, 0, 0x80, 0xBB, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0xAB, 0xCD};
    return {output, input};
}

inline std::vector<sim::ScriptEvent> script()
{
    using Kind = sim::ScriptEvent::Kind;
    std::vector<sim::ScriptEvent> events(9);
    constexpr Kind kinds[] = {Kind::added,         Kind::removed,         Kind::plugged,
                              Kind::unplugged,     Kind::stateChanged,    Kind::defaultChanged,
                              Kind::volumeChanged, Kind::propertyChanged, Kind::defaultChanged};
    for (std::size_t index = 0; index < events.size(); ++index)
    {
        events[index].afterMilliseconds = static_cast<std::uint32_t>(index * 100);
        events[index].kind = kinds[index];
        events[index].endpoint = speakers;
    }
    events[4].state = sim::stateDisabled;
    events[5].role = eCommunications;
    events[6].level = -3.5f;
    events[6].muted = true;
    events[7].key = sim::keys::friendlyName;
    events[7].value = sim::PropertyValue::ofText("Renamed");
    events[8].endpoint = "";
    events[8].flow = eCapture;
    for (const sim::ScriptEvent::Kind kind : {sim::ScriptEvent::Kind::plugUsb, sim::ScriptEvent::Kind::driverUpdate})
    {
        events.emplace_back();
        events.back().kind = kind;
        events.back().endpoint = microphone;
    }
    for (const sim::ScriptEvent::Kind kind : {sim::ScriptEvent::Kind::wake, sim::ScriptEvent::Kind::serviceStop})
    {
        events.emplace_back();
        events.back().kind = kind;
        events.back().afterMilliseconds = 7;
    }
    return events;
}

inline sim::Machine machine()
{
    sim::Adapter adapter;
    adapter.id = codec;
    adapter.state = sim::stateDisabled;
    adapter.openable = false;
    adapter.hasBaseFilter = true;
    adapter.properties = allKindsOfProperties();
    adapter.unlistedProperties = {{sim::keys::association, sim::PropertyValue::ofText("unlisted")}};
    adapter.topology = graph();

    sim::Machine result;
    result.name = "sample";
    result.description = "Everything differs";
    result.account = sim::Account::ordinary;
    result.notPresentNames = sim::NotPresentNames::failing;
    result.removedEndpoints = sim::RemovedEndpoints::unknown;
    result.callbackThread = sim::CallbackThread::bare;
    result.captureAccess = sim::CaptureAccess::denied;
    result.composition = sim::Composition::none;
    result.endpoints = endpoints();
    result.adapters = {adapter};
    result.joins = {{speakers + "/plug", codec + "/jack", "{2}.elsewhere", false},
                    {codec + "/stream", "", "{2}.gone", true}};
    result.deviceInstances = {{"HDAUDIO\\FUNC_01", "PCI\\VEN_C0DE"}, {"ROOT\\MEDIA", {}}};
    result.waveOut = {{speakers, 8, 0}, {speakers, 0, 2}, {speakers}};
    result.waveIn = {{microphone}};
    result.script = script();
    result.faults = {{"IMMDevice::Activate", speakers, "IAudioClient", 2, sim::FaultRule::Outcome::result, E_FAIL},
                     {"IPart::GetName", codec + "/jack", "", 0, sim::FaultRule::Outcome::nullSuccess, E_FAIL},
                     {"Release", "*", "", 1, sim::FaultRule::Outcome::thrown, E_FAIL},
                     {"IMMDeviceEnumerator::GetDevice", "*", "", 0, sim::FaultRule::Outcome::result, E_NOTFOUND, 8000,
                      sim::ScriptEvent::Kind::plugged},
                     {"IPartsList::GetPart",
                      codec + "/jack outgoing",
                      "",
                      0,
                      sim::FaultRule::Outcome::result,
                      E_FAIL,
                      0,
                      std::nullopt,
                      {"1", "second"}}};
    result.latencyPreset = sim::LatencyPreset::windows;
    result.latency = {{"*", 5}, {"IMMDevice::Activate", 1200}, {"IMMDevice::Activate", 4000000, "IAudioClient"}};
    return result;
}
}
