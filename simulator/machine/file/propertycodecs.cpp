#include "simulator/machine/file/propertycodecs.h"

#include "simulator/machine/deviceformat.h"
#include "simulator/machine/file/codecs.h"
#include "simulator/machine/nearestname.h"
#include "simulator/machine/printable.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"

#include <cmath>
#include <string>

namespace sim
{
namespace
{
using Bytes = std::vector<std::uint8_t>;

JsonValue patternSchema(const std::string& pattern)
{
    return JsonValue::object().add("type", JsonValue::ofString("string")).add("pattern", JsonValue::ofString(pattern));
}

/// Bytes as pairs of hexadecimal digits.
struct BytesCodec
{
    Bytes read(const JsonCursor& cursor) const { return cursor.bytes(); }

    JsonValue write(const Bytes& value) const
    {
        constexpr const char* digits = "0123456789ABCDEF";
        std::string result;
        for (const std::uint8_t byte : value)
        {
            result += digits[byte >> 4];
            result += digits[byte & 0xF];
        }
        return JsonValue::ofString(result);
    }

    JsonValue schema() const { return patternSchema("^([0-9A-Fa-f]{2})*$"); }
};

/// A whole number of 64 bits.
struct LargeNumberCodec
{
    std::uint64_t read(const JsonCursor& cursor) const { return cursor.largeNumber(); }

    JsonValue write(std::uint64_t value) const { return JsonValue::ofNumber(std::to_string(value)); }

    JsonValue schema() const
    {
        return JsonValue::object()
            .add("type", JsonValue::ofString("integer"))
            .add("minimum", JsonValue::ofNumber("0"))
            .add("maximum", JsonValue::ofNumber("18446744073709551615"));
    }
};

/// A number in single precision. A value that is not finite is written as null, which no reader accepts.
struct RealCodec
{
    float read(const JsonCursor& cursor) const { return cursor.real(); }

    JsonValue write(float value) const
    {
        return std::isfinite(value) ? JsonValue::ofNumber(decimal(value)) : JsonValue();
    }

    JsonValue schema() const { return JsonValue::object().add("type", JsonValue::ofString("number")); }
};

struct GuidCodec
{
    GUID read(const JsonCursor& cursor) const { return cursor.guid(); }

    JsonValue write(const GUID& value) const { return JsonValue::ofString(guidText(value)); }

    JsonValue schema() const { return patternSchema("^\\{[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}\\}$"); }
};

/// The number of a VT_BOOL, as true or false.
struct VariantBooleanCodec
{
    std::uint64_t read(const JsonCursor& cursor) const { return cursor.boolean() ? variantTrue : 0; }

    JsonValue write(std::uint64_t value) const { return JsonValue::ofBoolean(value != 0); }

    JsonValue schema() const { return BooleanCodec().schema(); }
};

/// The bytes of a device format, written as DeviceFormat::text().
struct FormatCodec
{
    Bytes read(const JsonCursor& cursor) const
    {
        const std::optional<DeviceFormat> format =
            cursor.isString() ? DeviceFormat::fromText(cursor.string()) : std::optional<DeviceFormat>();
        if (!format)
            cursor.fail("a format \"bits/rate/channels\" such as \"24/48000/2\"");
        return format->bytes();
    }

    JsonValue write(const Bytes& value) const
    {
        const std::optional<DeviceFormat> format = DeviceFormat::fromBytes(value);
        return format ? JsonValue::ofString(format->text()) : JsonValue();
    }

    JsonValue schema() const { return patternSchema(DeviceFormat::pattern()); }
};

const FieldTable<PropertyValue>& stringForm()
{
    static const auto& table = *new FieldTable<PropertyValue>(
        FieldTable<PropertyValue>("textValue", "A string; null: the tag of a string with a null pointer.")
            .required("text", &PropertyValue::text, NullableStringCodec()));
    return table;
}

const FieldTable<PropertyValue>& numberForm()
{
    static const auto& table = *new FieldTable<PropertyValue>(
        FieldTable<PropertyValue>("numberValue",
                                  "A whole number under another tag than VT_UI4; more than 32 bits for VT_UI8 only.")
            .required("number", &PropertyValue::number, LargeNumberCodec())
            .required("tag", &PropertyValue::tag, numberTagCodec));
    return table;
}

const FieldTable<PropertyValue>& booleanForm()
{
    static const auto& table =
        *new FieldTable<PropertyValue>(FieldTable<PropertyValue>("booleanValue", "VT_BOOL.")
                                           .required("boolean", &PropertyValue::number, VariantBooleanCodec()));
    return table;
}

const FieldTable<PropertyValue>& realForm()
{
    static const auto& table =
        *new FieldTable<PropertyValue>(FieldTable<PropertyValue>("realValue", "VT_R4, a number in single precision.")
                                           .required("real", &PropertyValue::real, RealCodec()));
    return table;
}

const FieldTable<PropertyValue>& guidForm()
{
    static const auto& table = *new FieldTable<PropertyValue>(
        FieldTable<PropertyValue>("guidValue", "VT_CLSID.").required("guid", &PropertyValue::guid, GuidCodec()));
    return table;
}

const FieldTable<PropertyValue>& blobForm()
{
    static const auto& table =
        *new FieldTable<PropertyValue>(FieldTable<PropertyValue>("blobValue", "Bytes, as pairs of hexadecimal digits.")
                                           .required("blob", &PropertyValue::bytes, BytesCodec()));
    return table;
}

const FieldTable<PropertyValue>& formatForm()
{
    static const auto& table = *new FieldTable<PropertyValue>(
        FieldTable<PropertyValue>("formatValue", "The 40 bytes of a device format, written bits/rate/channels.")
            .required("format", &PropertyValue::bytes, FormatCodec()));
    return table;
}

PropertyValue readAs(const FieldTable<PropertyValue>& form, VARTYPE tag, const JsonCursor& cursor)
{
    PropertyValue start;
    start.tag = tag;
    return form.read(cursor, std::move(start));
}

/// What to say about a name that no property has, to a reader who expects one.
std::string unknownProperty(const std::string& text)
{
    std::vector<std::string> names;
    for (const auto& named : keyNames)
        names.emplace_back(named.name);
    const bool isKey = !text.empty() && text.front() == '{';
    return inQuotes(text) + (isKey ? "" : suggestion(text, names, "property names"));
}

PROPERTYKEY readKey(const JsonCursor& cursor, const std::string& text)
{
    const std::optional<PROPERTYKEY> key = keyFromText(text);
    if (!key)
        cursor.fail("a property's name, or a key like {01234567-89AB-CDEF-0123-456789ABCDEF}/2", unknownProperty(text));
    return *key;
}
}

std::vector<const FieldTable<PropertyValue>*> propertyValueForms()
{
    return {&stringForm(), &numberForm(), &booleanForm(), &realForm(), &guidForm(), &blobForm(), &formatForm()};
}

PROPERTYKEY PropertyKeyCodec::read(const JsonCursor& cursor) const
{
    return readKey(cursor, cursor.string());
}

JsonValue PropertyKeyCodec::write(const PROPERTYKEY& key) const
{
    return JsonValue::ofString(keyText(key));
}

JsonValue PropertyKeyCodec::schema() const
{
    return reference(definition::propertyName);
}

PropertyValue PropertyValueCodec::read(const JsonCursor& cursor) const
{
    if (cursor.isString())
        return PropertyValue::ofText(cursor.string());
    if (cursor.isNumber())
        return PropertyValue::ofNumber(cursor.number());
    if (cursor.isNull())
        return {};
    if (!cursor.isObject())
        cursor.fail("a string, a number, null or an object");
    if (cursor.find("text"))
        return readAs(stringForm(), VT_LPWSTR, cursor);
    if (cursor.find("boolean"))
        return readAs(booleanForm(), VT_BOOL, cursor);
    if (cursor.find("real"))
        return readAs(realForm(), VT_R4, cursor);
    if (cursor.find("guid"))
        return readAs(guidForm(), VT_CLSID, cursor);
    if (cursor.find("blob"))
        return readAs(blobForm(), VT_BLOB, cursor);
    if (cursor.find("format"))
        return readAs(formatForm(), VT_BLOB, cursor);
    return readAs(numberForm(), VT_EMPTY, cursor);
}

JsonValue PropertyValueCodec::write(const PropertyValue& value) const
{
    switch (value.tag)
    {
    case VT_EMPTY:
        return {};
    case VT_LPWSTR:
        return value.text ? JsonValue::ofString(*value.text) : stringForm().write(value);
    case VT_UI4:
        return LargeNumberCodec().write(value.number);
    case VT_BOOL:
        return (value.number == 0 || value.number == variantTrue ? booleanForm() : numberForm()).write(value);
    case VT_R4:
        return realForm().write(value);
    case VT_CLSID:
        return guidForm().write(value);
    case VT_BLOB:
        return (DeviceFormat::fromBytes(value.bytes) ? formatForm() : blobForm()).write(value);
    default:
        return numberForm().write(value);
    }
}

JsonValue PropertyValueCodec::schema() const
{
    return reference(definition::propertyValue);
}

std::vector<std::uint8_t> BlobCodec::read(const JsonCursor& cursor) const
{
    return readAs(blobForm(), VT_BLOB, cursor).bytes;
}

JsonValue BlobCodec::write(const std::vector<std::uint8_t>& bytes) const
{
    return blobForm().write(PropertyValue::ofBytes(bytes));
}

JsonValue BlobCodec::schema() const
{
    return reference(blobForm().name());
}

Properties PropertiesCodec::read(const JsonCursor& cursor) const
{
    const std::vector<JsonCursor::Member> members = cursor.members();
    Properties result;
    result.reserve(members.size());
    for (const auto& [name, value] : members)
        result.push_back({readKey(value, name), PropertyValueCodec().read(value)});
    return result;
}

JsonValue PropertiesCodec::write(const Properties& properties) const
{
    JsonValue result = JsonValue::object();
    for (const Property& property : properties)
        result.add(keyText(property.key), PropertyValueCodec().write(property.value));
    return result;
}

JsonValue PropertiesCodec::schema() const
{
    return reference(definition::properties);
}
}
