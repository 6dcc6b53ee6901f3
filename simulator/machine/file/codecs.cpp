#include "simulator/machine/file/codecs.h"

#include "simulator/machine/nodetypes.h"
#include "simulator/machine/valuetext.h"

#include <cmath>

namespace sim
{
namespace
{
JsonValue typeSchema(const std::string& type)
{
    return JsonValue::object().add("type", JsonValue::ofString(type));
}
}

JsonValue reference(const std::string& definition)
{
    return JsonValue::object().add("$ref", JsonValue::ofString("#/$defs/" + definition));
}

std::string realText(float value)
{
    return value == 0 && std::signbit(value) ? "-0.0" : decimal(value);
}

std::string realText(double value)
{
    return value == 0 && std::signbit(value) ? "-0.0" : longDecimal(value);
}

std::string StringCodec::read(const JsonCursor& cursor) const
{
    return cursor.string();
}

JsonValue StringCodec::write(const std::string& value) const
{
    return JsonValue::ofString(value);
}

JsonValue StringCodec::schema() const
{
    return definition.empty() ? typeSchema("string") : reference(definition);
}

OptionalString NullableStringCodec::read(const JsonCursor& cursor) const
{
    return cursor.stringOrNull();
}

JsonValue NullableStringCodec::write(const OptionalString& value) const
{
    return value ? JsonValue::ofString(*value) : JsonValue();
}

JsonValue NullableStringCodec::schema() const
{
    return JsonValue::object().add("type",
                                   JsonValue::array({JsonValue::ofString("string"), JsonValue::ofString("null")}));
}

bool BooleanCodec::read(const JsonCursor& cursor) const
{
    return cursor.boolean();
}

JsonValue BooleanCodec::write(bool value) const
{
    return JsonValue::ofBoolean(value);
}

JsonValue BooleanCodec::schema() const
{
    return typeSchema("boolean");
}

std::uint32_t NumberCodec::read(const JsonCursor& cursor) const
{
    return cursor.number();
}

JsonValue NumberCodec::write(std::uint32_t value) const
{
    return JsonValue::ofNumber(std::to_string(value));
}

JsonValue NumberCodec::schema() const
{
    return reference(definition::number);
}

float DecibelsCodec::read(const JsonCursor& cursor) const
{
    return cursor.decibels();
}

JsonValue DecibelsCodec::write(float value) const
{
    return std::isfinite(value) ? JsonValue::ofNumber(realText(value)) : JsonValue();
}

JsonValue DecibelsCodec::schema() const
{
    JsonValue result = typeSchema("number");
    return isDistance ? result.add("minimum", JsonValue::ofNumber("0")) : result;
}

std::uint32_t StateCodec::read(const JsonCursor& cursor) const
{
    return cursor.isNumber() ? cursor.number() : cursor.named(stateNames);
}

JsonValue StateCodec::write(std::uint32_t value) const
{
    const std::string name = nameOf(stateNames, value);
    return name.empty() ? NumberCodec().write(value) : JsonValue::ofString(name);
}

JsonValue StateCodec::schema() const
{
    return reference(definition::state);
}

GUID NodeTypeCodec::read(const JsonCursor& cursor) const
{
    return cursor.nodeType();
}

JsonValue NodeTypeCodec::write(const GUID& value) const
{
    return JsonValue::ofString(nodeTypeText(value));
}

JsonValue NodeTypeCodec::schema() const
{
    return reference(definition::nodeType);
}

GUID ControlInterfaceCodec::read(const JsonCursor& cursor) const
{
    const std::string text = cursor.string();
    const std::optional<GUID> named = valueOf(controlInterfaceNames, text);
    const std::optional<GUID> value = named ? named : guidFromText(text);
    if (!value)
        cursor.fail("the name of a control's interface, or a GUID like \"{01234567-89AB-CDEF-0123-456789ABCDEF}\"");
    return *value;
}

JsonValue ControlInterfaceCodec::write(const GUID& value) const
{
    const std::string name = nameOf(controlInterfaceNames, value);
    return JsonValue::ofString(name.empty() ? guidText(value) : name);
}

JsonValue ControlInterfaceCodec::schema() const
{
    return reference(definition::controlInterface);
}

std::uint32_t HardwareSupportCodec::read(const JsonCursor& cursor) const
{
    std::uint32_t bits = 0;
    for (const JsonCursor& element : cursor.elements())
        bits |= element.named(hardwareSupportNames);
    return bits;
}

JsonValue HardwareSupportCodec::write(std::uint32_t value) const
{
    JsonValue result = JsonValue::array();
    for (const auto& named : hardwareSupportNames)
    {
        if ((value & named.value) != 0)
            result.elements.push_back(JsonValue::ofString(std::string(named.name)));
    }
    return result;
}

JsonValue HardwareSupportCodec::schema() const
{
    return listCodec(hardwareSupportCodec).schema();
}
}
