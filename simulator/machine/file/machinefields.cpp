// The tables of the machine and of what connects its devices.
#include "simulator/machine/file/codecs.h"

namespace sim
{
namespace
{
/// Only the endpoint id if the driver answers both questions, otherwise an object.
struct WaveDeviceCodec
{
    WaveDevice read(const JsonCursor& cursor) const
    {
        return cursor.isString() ? WaveDevice{cursor.string()} : fieldsOf<WaveDevice>().read(cursor);
    }

    JsonValue write(const WaveDevice& device) const
    {
        const bool isPlain = device.sizeResult == 0 && device.idResult == 0;
        return isPlain ? JsonValue::ofString(device.endpointId) : fieldsOf<WaveDevice>().write(device);
    }

    JsonValue schema() const
    {
        const JsonValue either = JsonValue::array({StringCodec().schema(), ObjectCodec<WaveDevice>().schema()});
        return JsonValue::object().add("oneOf", either);
    }
};

/// An event, whose keys depend on what happens.
struct ScriptEventCodec
{
    ScriptEvent read(const JsonCursor& cursor) const
    {
        const auto event = cursor.isObject() ? cursor.find("event") : std::nullopt;
        if (!event)
            cursor.fail("an object with the key \"event\"");
        return eventForm(event->named(eventNames)).read(cursor);
    }

    JsonValue write(const ScriptEvent& event) const { return eventForm(event.kind).write(event); }

    JsonValue schema() const
    {
        JsonValue any = JsonValue::array();
        for (const FieldTable<ScriptEvent>* form : eventForms())
            any.elements.push_back(reference(form->name()));
        return JsonValue::object().add("oneOf", any);
    }
};

/// A key for editors, without a member in the data.
void addSchema(FieldTable<Machine>& table)
{
    const auto read = [](const JsonCursor& cursor, Machine&) { cursor.string(); };
    const auto write = [](const Machine&) { return JsonValue::ofString("machine.schema.json"); };
    const auto isEqual = [](const Machine&, const Machine&) { return true; };
    table.add({"$schema", false, [] { return StringCodec().schema(); }, true}, read, write, isEqual);
}

FieldTable<Machine> machineTable()
{
    FieldTable<Machine> table("machine");
    addSchema(table);
    table.required("name", &Machine::name, StringCodec())
        .optional("description", &Machine::description, StringCodec())
        .optional("account", &Machine::account, accountCodec,
                  "Under which a program uses the machine. An ordinary account opens property stores for reading only.")
        .optional("removedEndpoints", &Machine::removedEndpoints, removedEndpointsCodec,
                  "unknown: an endpoint that is not installed is not found by its id, and its objects say that it is "
                  "gone.")
        .optional("callbackThread", &Machine::callbackThread, callbackThreadCodec,
                  "bare: the thread that notifies clients has not initialised COM.")
        .optional("notPresentNames", &Machine::notPresentNames, notPresentNamesCodec,
                  "Whether the names of an endpoint that is not present can be read; failing: 0xE000020B.")
        .optional("composition", &Machine::composition, compositionCodec,
                  "none: the property stores contain what the file says and nothing else.")
        .optional("captureAccess", &Machine::captureAccess, captureAccessCodec,
                  "denied: IAudioClient::Initialize returns E_ACCESSDENIED on capture endpoints.")
        .optional("endpoints", &Machine::endpoints, listCodec(ObjectCodec<Endpoint>()),
                  "In the order in which the platform enumerates them.")
        .optional("adapters", &Machine::adapters, listCodec(ObjectCodec<Adapter>()),
                  "Devices on the adapter side: they have a topology, but no collection contains them.")
        .optional("joins", &Machine::joins, listCodec(ObjectCodec<Join>()),
                  "Connections between connectors. The peer of a connector is that of the first join that starts at "
                  "it, or that ends at it and runs both ways.")
        .optional("deviceInstances", &Machine::deviceInstances, listCodec(ObjectCodec<DeviceInstance>()))
        .optional("waveOut", &Machine::waveOut, listCodec(WaveDeviceCodec()),
                  "What the legacy wave interface returns; the position in the list is the wave id.")
        .optional("waveIn", &Machine::waveIn, listCodec(WaveDeviceCodec()))
        .optional("script", &Machine::script, listCodec(ScriptEventCodec()),
                  "What happens to the machine, one event after the other.")
        .optional("faults", &Machine::faults, listCodec(ObjectCodec<FaultRule>()),
                  "Calls that fail. The first rule that fires decides.")
        .optional("latencyPreset", &Machine::latencyPreset, latencyPresetCodec,
                  "How long calls take that no rule of latency names.")
        .optional("latency", &Machine::latency, listCodec(ObjectCodec<LatencyRule>()));
    return table;
}
}

template<>
const FieldTable<Machine>& fieldsOf<Machine>()
{
    static const auto& table = *new FieldTable<Machine>(machineTable());
    return table;
}

template<>
const FieldTable<Join>& fieldsOf<Join>()
{
    static const auto& table = *new FieldTable<Join>(
        FieldTable<Join>("join")
            .required("from", &Join::from, StringCodec(), "Id of a connector, in full.")
            .optional("to", &Join::to, StringCodec(),
                      "Id of a connector, in full. If it is missing, the far connector cannot be asked for, and "
                      "toDevice is required.")
            .optional("toDevice", &Join::toDevice, optionalCodec(StringCodec()),
                      "The far device's id as the near connector reports it. If it is missing: the id of the device "
                      "that has the far connector.")
            .optional("bothWays", &Join::bothWays, BooleanCodec(),
                      "false: the far connector does not report the near one."));
    return table;
}

template<>
const FieldTable<DeviceInstance>& fieldsOf<DeviceInstance>()
{
    static const auto& table = *new FieldTable<DeviceInstance>(
        FieldTable<DeviceInstance>("deviceInstance")
            .required("id", &DeviceInstance::id, StringCodec{definition::id})
            .required("parent", &DeviceInstance::parent, NullableStringCodec(), "null: asking for the parent fails."));
    return table;
}

template<>
const FieldTable<WaveDevice>& fieldsOf<WaveDevice>()
{
    static const auto& table = *new FieldTable<WaveDevice>(
        FieldTable<WaveDevice>("waveDevice")
            .required("endpoint", &WaveDevice::endpointId, StringCodec(),
                      "The endpoint id that the wave driver returns.")
            .optional("sizeResult", &WaveDevice::sizeResult, NumberCodec(),
                      "MMRESULT of the question for the id's size.")
            .optional("idResult", &WaveDevice::idResult, NumberCodec(), "MMRESULT of the question for the id."));
    return table;
}
}
