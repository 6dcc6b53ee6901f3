#include "simulator/machine/file/schema.h"

#include "simulator/machine/file/codecs.h"
#include "simulator/machine/file/propertycodecs.h"
#include "simulator/machine/namedvalues.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"

namespace sim
{
namespace
{
constexpr const char* guidPattern = "\\{[0-9A-Fa-f]{8}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{12}\\}";

JsonValue string(const std::string& value)
{
    return JsonValue::ofString(value);
}

JsonValue number(const char* written)
{
    return JsonValue::ofNumber(written);
}

JsonValue described(const std::string& description)
{
    return JsonValue::object().add("description", string(description));
}

JsonValue pattern(const std::string& expression)
{
    return JsonValue::object().add("type", string("string")).add("pattern", string("^" + expression + "$"));
}

JsonValue integer(const char* maximum)
{
    return JsonValue::object()
        .add("type", string("integer"))
        .add("minimum", number("0"))
        .add("maximum", number(maximum));
}

/// One of the names in a table of names.
template<class Table>
JsonValue oneNameOf(const Table& table)
{
    JsonValue names = JsonValue::array();
    for (const auto& named : table)
        names.elements.push_back(string(std::string(named.name)));
    return JsonValue::object().add("enum", names);
}

template<class Codec>
void addNames(JsonValue& definitions, const Codec& codec)
{
    definitions.add(codec.definition, oneNameOf(*codec.names));
}

JsonValue objectSchema(const ObjectRule& rule)
{
    JsonValue required = JsonValue::array();
    JsonValue properties = JsonValue::object();
    for (const KeyRule* key : rule.keys)
    {
        properties.add(key->name, key->schema());
        if (key->isRequired)
            required.elements.push_back(string(key->name));
    }
    JsonValue result = rule.description.empty() ? JsonValue::object() : described(rule.description);
    result.add("type", string("object"));
    if (!required.elements.empty())
        result.add("required", required);
    return result.add("additionalProperties", JsonValue::ofBoolean(false)).add("properties", properties);
}

void addIds(JsonValue& definitions)
{
    const JsonValue aString = JsonValue::object().add("type", string("string"));
    definitions.add(definition::id, JsonValue(aString).add("minLength", number("1")));
    definitions.add(definition::partId,
                    described("Global id, unique in the machine. Within the topology of a device, /jack is "
                              "short for the device's id followed by /jack.")
                        .add("type", string("string"))
                        .add("minLength", number("1")));
    definitions.add(definition::partIds,
                    described("Ids of parts of the same topology, in the platform's order; short ones begin "
                              "with a slash.")
                        .add("type", string("array"))
                        .add("items", aString));
}

void addNamesAndNumbers(JsonValue& definitions)
{
    definitions.add(definition::number, integer("4294967295"));
    addNames(definitions, accountCodec);
    addNames(definitions, flowCodec);
    addNames(definitions, roleCodec);
    addNames(definitions, stateNameCodec);
    definitions.add(definition::state,
                    described("A state, or a number: a sum of states as the platform counts them, or any other.")
                        .add("oneOf", JsonValue::array({stateNameCodec.schema(), reference(definition::number)})));
    addNames(definitions, directionCodec);
    addNames(definitions, connectorTypeCodec);
    addNames(definitions, notPresentNamesCodec);
    addNames(definitions, compositionCodec);
    addNames(definitions, jackConnectionCodec);
    addNames(definitions, geometricLocationCodec);
    addNames(definitions, generalLocationCodec);
    addNames(definitions, portConnectionCodec);
    addNames(definitions, taperCodec);
    addNames(definitions, hardwareSupportCodec);
    addNames(definitions, captureAccessCodec);
    addNames(definitions, interfaceCodec);
    addNames(definitions, numberTagCodec);
    addNames(definitions, nodeTypeNameCodec);
    addNames(definitions, removedEndpointsCodec);
    addNames(definitions, callbackThreadCodec);
    addNames(definitions, latencyPresetCodec);
    addNames(definitions, controlInterfaceNameCodec);
    definitions.add(definition::controlInterface,
                    described("The interface of a control.")
                        .add("oneOf", JsonValue::array({controlInterfaceNameCodec.schema(), pattern(guidPattern)})));
    definitions.add(definition::nodeType,
                    described("Kind of a jack or node. If it is missing: the zero GUID.")
                        .add("oneOf", JsonValue::array({nodeTypeNameCodec.schema(), pattern(guidPattern)})));
}

void addProperties(JsonValue& definitions)
{
    const JsonValue key = pattern(std::string(guidPattern) + "/(0|[1-9][0-9]{0,9})");
    definitions.add(definition::propertyName,
                    described("A property's name, or its key: a format id, a slash, a number.")
                        .add("oneOf", JsonValue::array({oneNameOf(keyNames), key})));

    JsonValue forms = JsonValue::array();
    const JsonValue plainTypes = JsonValue::array({string("string"), string("null")});
    forms.elements.push_back(JsonValue::object().add("type", plainTypes));
    forms.elements.push_back(reference(definition::number));
    for (const FieldTable<PropertyValue>* form : propertyValueForms())
        forms.elements.push_back(reference(form->name()));
    definitions.add(definition::propertyValue,
                    described("A string, a number (VT_UI4), or null (VT_EMPTY); an object for everything else.")
                        .add("oneOf", forms));

    definitions.add(definition::properties,
                    described("What the property store contains, in its order. A key that is absent is "
                              "answered with VT_EMPTY.")
                        .add("type", string("object"))
                        .add("propertyNames", PropertyKeyCodec().schema())
                        .add("additionalProperties", PropertyValueCodec().schema()));
}

template<class... Objects>
void append(std::vector<ObjectRule>& rules)
{
    (rules.push_back(fieldsOf<Objects>().rule()), ...);
}

template<class Object>
void append(std::vector<ObjectRule>& rules, const std::vector<const FieldTable<Object>*>& forms)
{
    for (const FieldTable<Object>* form : forms)
        rules.push_back(form->rule());
}
}

std::vector<ObjectRule> objectRules()
{
    std::vector<ObjectRule> rules;
    append<Machine, Endpoint, Adapter>(rules);
    append(rules, propertyValueForms());
    append<EndpointVolume, TaperPoint, HardwareControls, DevicePeriods, Topology, Connector, Jack, Subunit,
           VolumeControl, ChannelLevel, MuteControl, SelectorControl, FurtherControl, SignalPath, Join, DeviceInstance,
           WaveDevice>(rules);
    append(rules, eventForms());
    append<FaultRule, LatencyRule>(rules);
    return rules;
}

std::string machineSchema()
{
    JsonValue definitions = JsonValue::object();
    for (const ObjectRule& rule : objectRules())
        definitions.add(rule.name, objectSchema(rule));
    addIds(definitions);
    addNamesAndNumbers(definitions);
    addProperties(definitions);

    return printJson(
        JsonValue::object()
            .add("$schema", string("https://json-schema.org/draft/2020-12/schema"))
            .add("title", string("A simulated machine"))
            .add(
                "description",
                string("What the simulated platform answers: endpoints, adapters, the connections between them, and "
                       "what happens to them. Ids refer to parts and devices exactly, case included. The reader checks "
                       "more than a schema can: that ids are unique, that references lead somewhere, and that no "
                       "minimum is above its maximum."))
            .add("$ref", string("#/$defs/machine"))
            .add("$defs", definitions));
}
}
