#include "simulator/machine/file/objectkeys.h"

#include <stdexcept>
#include <string>

namespace sim
{
namespace
{
constexpr bool required = true;
}

const std::vector<FileObject>& fileObjects()
{
    static const std::vector<FileObject> objects = {
        {"machine",
         {{"$schema"},
          {"name", required},
          {"description"},
          {"endpoints"},
          {"adapters"},
          {"joins"},
          {"deviceInstances"},
          {"waveOut"},
          {"waveIn"},
          {"script"},
          {"faults"},
          {"latency"}}},
        {"endpoint",
         {{"id", required},
          {"flow", required},
          {"state"},
          {"installed"},
          {"openable"},
          {"defaultFor"},
          {"interfaces"},
          {"properties"},
          {"volume"},
          {"topology"}}},
        {"adapter", {{"id", required}, {"state"}, {"openable"}, {"interfaces"}, {"properties"}, {"topology"}}},
        {"textValue", {{"text", required}}},
        {"numberValue", {{"number", required}, {"tag", required}}},
        {"blobValue", {{"blob", required}}},
        {"formatValue", {{"format", required}}},
        {"endpointVolume",
         {{"minimum", required},
          {"maximum", required},
          {"step", required},
          {"channels", required},
          {"muted"},
          {"hardwareSupport"},
          {"refused"}}},
        {"topology", {{"deviceId"}, {"connectors"}, {"subunits"}, {"signalPaths"}}},
        {"connector",
         {{"id", required},
          {"localId"},
          {"reportsId"},
          {"name"},
          {"type"},
          {"kind"},
          {"direction"},
          {"incoming"},
          {"outgoing"},
          {"volume"},
          {"mute"},
          {"selector"}}},
        {"subunit",
         {{"id", required},
          {"localId"},
          {"reportsId"},
          {"name"},
          {"type"},
          {"incoming"},
          {"outgoing"},
          {"volume"},
          {"mute"},
          {"selector"}}},
        {"volumeControl", {{"channels", required}}},
        {"channelLevel", {{"minimum", required}, {"maximum", required}, {"step", required}, {"level", required}}},
        {"muteControl", {{"muted", required}}},
        {"selectorControl", {{"selection", required}}},
        {"signalPath", {{"from", required}, {"to", required}, {"through"}, {"mixed"}}},
        {"join", {{"from", required}, {"to"}, {"toDevice"}, {"bothWays"}}},
        {"deviceInstance", {{"id", required}, {"parent", required}}},
        {"waveDevice", {{"endpoint", required}, {"sizeResult"}, {"idResult"}}},
        {"endpointEvent", {{"afterMilliseconds"}, {"event", required}, {"endpoint", required}}},
        {"stateEvent", {{"afterMilliseconds"}, {"event", required}, {"endpoint", required}, {"state", required}}},
        {"defaultEvent",
         {{"afterMilliseconds"}, {"event", required}, {"endpoint", required}, {"flow", required}, {"role", required}}},
        {"volumeEvent", {{"afterMilliseconds"}, {"event", required}, {"endpoint", required}, {"level"}, {"muted"}}},
        {"propertyEvent",
         {{"afterMilliseconds"},
          {"event", required},
          {"endpoint", required},
          {"property", required},
          {"value", required}}},
        {"faultRule", {{"operation", required}, {"object"}, {"argument"}, {"call"}, {"result", required}}},
        {"latencyRule", {{"operation", required}, {"microseconds", required}}},
    };
    return objects;
}

const FileObject& fileObject(std::string_view name)
{
    for (const FileObject& object : fileObjects())
    {
        if (object.name == name)
            return object;
    }
    throw std::logic_error("no kind of object is called " + std::string(name));
}

std::string_view eventObject(ScriptEvent::Kind kind)
{
    switch (kind)
    {
    case ScriptEvent::Kind::added:
    case ScriptEvent::Kind::removed:
    case ScriptEvent::Kind::plugged:
    case ScriptEvent::Kind::unplugged:
        return "endpointEvent";
    case ScriptEvent::Kind::stateChanged:
        return "stateEvent";
    case ScriptEvent::Kind::defaultChanged:
        return "defaultEvent";
    case ScriptEvent::Kind::volumeChanged:
        return "volumeEvent";
    case ScriptEvent::Kind::propertyChanged:
        return "propertyEvent";
    }
    return {};
}
}
