/// @file
/// Codecs of single values in a machine file: reader, writer and schema of each type.
#pragma once

#include "simulator/machine/file/cursor.h"
#include "simulator/machine/file/fieldtables.h"
#include "simulator/machine/namedvalues.h"
#include "simulator/machine/nodetypes.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sim
{
/// The names of the schema's definitions that are neither objects nor lists of names.
namespace definition
{
inline constexpr const char* id = "id";
inline constexpr const char* partId = "partId";
inline constexpr const char* partIds = "partIds";
inline constexpr const char* number = "number";
inline constexpr const char* state = "state";
inline constexpr const char* nodeType = "nodeType";
inline constexpr const char* controlInterface = "controlInterface";
inline constexpr const char* propertyName = "propertyName";
inline constexpr const char* propertyValue = "propertyValue";
inline constexpr const char* properties = "properties";
}

/// {"$ref": ...} to a definition of the schema.
JsonValue reference(const std::string& definition);

/// A string. With a definition, the schema refers to that.
struct StringCodec
{
    std::string definition;

    std::string read(const JsonCursor& cursor) const;
    JsonValue write(const std::string& value) const;
    JsonValue schema() const;
};

/// A string or null.
struct NullableStringCodec
{
    OptionalString read(const JsonCursor& cursor) const;
    JsonValue write(const OptionalString& value) const;
    JsonValue schema() const;
};

struct BooleanCodec
{
    bool read(const JsonCursor& cursor) const;
    JsonValue write(bool value) const;
    JsonValue schema() const;
};

/// A whole number of 32 bits.
struct NumberCodec
{
    std::uint32_t read(const JsonCursor& cursor) const;
    JsonValue write(std::uint32_t value) const;
    JsonValue schema() const;
};

/// A finite number as a file has it. A minus before 0 needs the point: a whole number has no such zero.
std::string realText(float value);
std::string realText(double value);

/// A number of decibels. A value that is not finite is written as null, which no reader accepts.
struct DecibelsCodec
{
    bool isDistance = false;

    /// A number not below 0, as the schema says; checkMachine() checks it.
    static DecibelsCodec distance() { return {true}; }

    float read(const JsonCursor& cursor) const;
    JsonValue write(float value) const;
    JsonValue schema() const;
};

/// A state by name, or a sum of states or anything else as a number.
struct StateCodec
{
    std::uint32_t read(const JsonCursor& cursor) const;
    JsonValue write(std::uint32_t value) const;
    JsonValue schema() const;
};

/// A kind of jack or node by name, or as a GUID.
struct NodeTypeCodec
{
    GUID read(const JsonCursor& cursor) const;
    JsonValue write(const GUID& value) const;
    JsonValue schema() const;
};

/// The interface of a control by name, or as a GUID.
struct ControlInterfaceCodec
{
    GUID read(const JsonCursor& cursor) const;
    JsonValue write(const GUID& value) const;
    JsonValue schema() const;
};

/// The sum of the bits that a list names.
struct HardwareSupportCodec
{
    std::uint32_t read(const JsonCursor& cursor) const;
    JsonValue write(std::uint32_t value) const;
    JsonValue schema() const;
};

/// One of the names in a table, which the schema defines.
template<class Value, std::size_t Size>
struct NameCodec
{
    const Names<Value, Size>* names;
    const char* definition;

    Value read(const JsonCursor& cursor) const { return cursor.named(*names); }

    JsonValue write(const Value& value) const { return JsonValue::ofString(nameOf(*names, value)); }

    JsonValue schema() const { return reference(definition); }
};

template<class Value, std::size_t Size>
constexpr NameCodec<Value, Size> nameCodec(const Names<Value, Size>& names, const char* definition)
{
    return {&names, definition};
}

/// A name of a table, or the number of a value that has no name: drivers report such values.
template<class Value, std::size_t Size>
struct NameOrNumberCodec
{
    NameCodec<Value, Size> names;

    Value read(const JsonCursor& cursor) const
    {
        return cursor.isNumber() ? static_cast<Value>(cursor.number()) : names.read(cursor);
    }

    JsonValue write(const Value& value) const
    {
        return hasName(*names.names, value) ? names.write(value)
                                            : NumberCodec().write(static_cast<std::uint32_t>(value));
    }

    JsonValue schema() const
    {
        return JsonValue::object().add("oneOf", JsonValue::array({names.schema(), NumberCodec().schema()}));
    }
};

template<class Value, std::size_t Size>
constexpr NameOrNumberCodec<Value, Size> nameOrNumber(const NameCodec<Value, Size>& names)
{
    return {names};
}

inline constexpr auto accountCodec = nameCodec(accountNames, "account");
inline constexpr auto flowCodec = nameCodec(flowNames, "flow");
inline constexpr auto roleCodec = nameCodec(roleNames, "role");
inline constexpr auto stateNameCodec = nameCodec(stateNames, "stateName");
inline constexpr auto directionCodec = nameCodec(directionNames, "direction");
inline constexpr auto connectorTypeCodec = nameCodec(connectorTypeNames, "connectorType");
inline constexpr auto notPresentNamesCodec = nameCodec(notPresentNamesNames, "notPresentNames");
inline constexpr auto compositionCodec = nameCodec(compositionNames, "composition");
inline constexpr auto jackConnectionCodec = nameCodec(jackConnectionNames, "jackConnection");
inline constexpr auto geometricLocationCodec = nameCodec(geometricLocationNames, "geometricLocation");
inline constexpr auto generalLocationCodec = nameCodec(generalLocationNames, "generalLocation");
inline constexpr auto portConnectionCodec = nameCodec(portConnectionNames, "portConnection");
inline constexpr auto taperCodec = nameCodec(taperNames, "taper");
inline constexpr auto hardwareSupportCodec = nameCodec(hardwareSupportNames, "hardwareSupport");
inline constexpr auto captureAccessCodec = nameCodec(captureAccessNames, "captureAccess");
inline constexpr auto interfaceCodec = nameCodec(interfaceNames, "interface");
inline constexpr auto numberTagCodec = nameCodec(numberTagNames, "numberTag");
inline constexpr auto latencyPresetCodec = nameCodec(latencyPresetNames, "latencyPreset");
inline constexpr auto removedEndpointsCodec = nameCodec(removedEndpointsNames, "removedEndpoints");
inline constexpr auto callbackThreadCodec = nameCodec(callbackThreadNames, "callbackThread");
inline constexpr auto controlInterfaceNameCodec = nameCodec(controlInterfaceNames, "controlInterfaceName");
inline constexpr auto nodeTypeNameCodec = nameCodec(nodeTypeNames, "nodeTypeName");

/// A value that may be missing.
template<class Codec>
struct OptionalCodec
{
    Codec codec;

    auto read(const JsonCursor& cursor) const { return std::make_optional(codec.read(cursor)); }

    template<class Value>
    JsonValue write(const std::optional<Value>& value) const
    {
        return value ? codec.write(*value) : JsonValue();
    }

    JsonValue schema() const { return codec.schema(); }
};

template<class Codec>
OptionalCodec<Codec> optionalCodec(const Codec& codec)
{
    return {codec};
}

/// A list of values.
template<class Codec>
struct ListCodec
{
    Codec codec;
    std::size_t minimum = 0;
    std::size_t maximum = 0; ///< 0: no limit

    auto read(const JsonCursor& cursor) const
    {
        const std::vector<JsonCursor> elements = cursor.elements();
        std::vector<decltype(codec.read(cursor))> result;
        result.reserve(elements.size());
        for (const JsonCursor& element : elements)
            result.push_back(codec.read(element));
        return result;
    }

    template<class Value>
    JsonValue write(const std::vector<Value>& list) const
    {
        JsonValue result = JsonValue::array();
        for (const Value& element : list)
            result.elements.push_back(codec.write(element));
        return result;
    }

    JsonValue schema() const
    {
        JsonValue result = JsonValue::object();
        result.add("type", JsonValue::ofString("array")).add("items", codec.schema());
        if (minimum != 0)
            result.add("minItems", JsonValue::ofNumber(std::to_string(minimum)));
        if (maximum != 0)
            result.add("maxItems", JsonValue::ofNumber(std::to_string(maximum)));
        return result;
    }
};

template<class Codec>
ListCodec<Codec> listCodec(const Codec& codec, std::size_t minimum = 0, std::size_t maximum = 0)
{
    return {codec, minimum, maximum};
}

/// The ids of parts of one topology.
struct PartIdsCodec : ListCodec<StringCodec>
{
    JsonValue schema() const { return reference(definition::partIds); }
};

/// An object that one table of fields describes.
template<class Object>
struct ObjectCodec
{
    Object read(const JsonCursor& cursor) const { return fieldsOf<Object>().read(cursor); }

    JsonValue write(const Object& object) const { return fieldsOf<Object>().write(object); }

    JsonValue schema() const { return reference(fieldsOf<Object>().name()); }
};
}
