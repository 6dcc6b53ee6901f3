#include "simulator/machine/file/propertyforms.h"

#include "simulator/machine/deviceformat.h"
#include "simulator/machine/file/codecs.h"
#include "simulator/machine/file/propertynumbers.h"
#include "simulator/machine/utf8.h"
#include "simulator/machine/valuetext.h"

#include <string>

namespace sim
{
namespace
{
using Bytes = std::vector<std::uint8_t>;

/// Whether values with that tag are written in another way than by the tag alone.
bool hasOwnForm(VARTYPE tag)
{
    return hasName(numberTagNames, tag) || tag == VT_EMPTY || tag == VT_LPWSTR || tag == VT_LPSTR || tag == VT_R4 ||
           tag == VT_R8 || tag == VT_CLSID || tag == VT_BLOB;
}

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

/// A string of bytes: each character of the file is one byte, from U+0001 to U+00FF. Null: a null pointer.
struct NarrowTextCodec
{
    OptionalString read(const JsonCursor& cursor) const
    {
        const OptionalString text = cursor.stringOrNull();
        if (!text)
            return text;
        std::string bytes;
        for (std::size_t position = 0; position < text->size();)
        {
            const Utf8Character character = characterAt(*text, position);
            if (character.code > 0xFF)
                cursor.fail("characters from U+0001 to U+00FF, one for each byte");
            bytes += static_cast<char>(static_cast<unsigned char>(character.code));
            position += character.size;
        }
        return bytes;
    }

    JsonValue write(const OptionalString& bytes) const
    {
        if (!bytes)
            return {};
        std::string text;
        for (const char character : *bytes)
        {
            const auto byte = static_cast<unsigned char>(character);
            if (byte >= 0x80)
                text += static_cast<char>(static_cast<unsigned char>(0xC0 | byte >> 6));
            text += static_cast<char>(byte < 0x80 ? byte : static_cast<unsigned char>(0x80 | (byte & 0x3F)));
        }
        return JsonValue::ofString(text);
    }

    JsonValue schema() const { return NullableStringCodec().schema(); }
};

/// A tag that no other form has.
struct OtherTagCodec
{
    VARTYPE read(const JsonCursor& cursor) const
    {
        const std::optional<std::uint64_t> tag =
            cursor.isString() ? fromHexText(cursor.string(), digits) : std::nullopt;
        if (!tag || hasOwnForm(static_cast<VARTYPE>(*tag)))
            cursor.fail("a tag like \"0x1003\" that no other form of value has");
        return static_cast<VARTYPE>(*tag);
    }

    JsonValue write(VARTYPE tag) const { return JsonValue::ofString(hexText(tag, digits)); }

    JsonValue schema() const { return hexSchema(digits); }

    static constexpr std::size_t digits = 4;
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

FieldTable<PropertyValue> newNumberForm()
{
    FieldTable<PropertyValue> form("numberValue", "A whole number under another tag than VT_UI4; more than 32 bits for "
                                                  "VT_UI8, VT_I8 and VT_FILETIME only, negative for signed tags only.");
    addNumber(form);
    form.required("tag", &PropertyValue::tag, numberTagCodec);
    return form;
}

const FieldTable<PropertyValue>& numberForm()
{
    static const auto& table = *new FieldTable<PropertyValue>(newNumberForm());
    return table;
}

const FieldTable<PropertyValue>& booleanForm()
{
    static const auto& table =
        *new FieldTable<PropertyValue>(FieldTable<PropertyValue>("booleanValue", "VT_BOOL.")
                                           .required("boolean", &PropertyValue::number, VariantBooleanCodec()));
    return table;
}

FieldTable<PropertyValue> newRealForm()
{
    FieldTable<PropertyValue> form("realValue", "VT_R4, a number in single precision.");
    addReal(form);
    return form;
}

FieldTable<PropertyValue> newLongRealForm()
{
    FieldTable<PropertyValue> form("longRealValue", "VT_R8, a number in double precision.");
    addLongReal(form);
    return form;
}

const FieldTable<PropertyValue>& realForm()
{
    static const auto& table = *new FieldTable<PropertyValue>(newRealForm());
    return table;
}

const FieldTable<PropertyValue>& longRealForm()
{
    static const auto& table = *new FieldTable<PropertyValue>(newLongRealForm());
    return table;
}

const FieldTable<PropertyValue>& narrowTextForm()
{
    static const auto& table = *new FieldTable<PropertyValue>(
        FieldTable<PropertyValue>("narrowTextValue", "VT_LPSTR, a character from U+0001 to U+00FF for each byte; null: "
                                                     "a null pointer.")
            .required("narrowText", &PropertyValue::text, NarrowTextCodec()));
    return table;
}

const FieldTable<PropertyValue>& tagForm()
{
    static const auto& table =
        *new FieldTable<PropertyValue>(FieldTable<PropertyValue>("tagValue", "Any other tag, with a value of zeros.")
                                           .required("tag", &PropertyValue::tag, OtherTagCodec()));
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

/// The tag comes first: how the number is read depends on it.
PropertyValue readNumberForm(const JsonCursor& cursor)
{
    cursor.requireKeys(numberForm().rule());
    return readAs(numberForm(), numberTagCodec.read(*cursor.find("tag")), cursor);
}

bool isTagAlone(const JsonCursor& cursor)
{
    const std::optional<JsonCursor> tag = cursor.find("tag");
    return tag && tag->isString() && tag->string().compare(0, 2, "0x") == 0 && !cursor.find("number");
}
}

std::vector<const FieldTable<PropertyValue>*> propertyValueForms()
{
    return {&stringForm(), &numberForm(), &booleanForm(),  &realForm(),       &guidForm(),
            &blobForm(),   &formatForm(), &longRealForm(), &narrowTextForm(), &tagForm()};
}

PropertyValue readPropertyForm(const JsonCursor& cursor)
{
    struct Form
    {
        const char* key;
        VARTYPE tag;
        const FieldTable<PropertyValue>& (*table)();
    };
    static constexpr Form forms[] = {{"text", VT_LPWSTR, stringForm},   {"boolean", VT_BOOL, booleanForm},
                                     {"real", VT_R4, realForm},         {"guid", VT_CLSID, guidForm},
                                     {"blob", VT_BLOB, blobForm},       {"format", VT_BLOB, formatForm},
                                     {"longReal", VT_R8, longRealForm}, {"narrowText", VT_LPSTR, narrowTextForm}};
    for (const Form& form : forms)
    {
        if (cursor.find(form.key))
            return readAs(form.table(), form.tag, cursor);
    }
    return isTagAlone(cursor) ? readAs(tagForm(), VT_EMPTY, cursor) : readNumberForm(cursor);
}

JsonValue writePropertyForm(const PropertyValue& value)
{
    switch (value.tag)
    {
    case VT_LPWSTR:
        return stringForm().write(value);
    case VT_LPSTR:
        return narrowTextForm().write(value);
    case VT_BOOL:
        return (value.number == 0 || value.number == variantTrue ? booleanForm() : numberForm()).write(value);
    case VT_R4:
        return realForm().write(value);
    case VT_R8:
        return longRealForm().write(value);
    case VT_CLSID:
        return guidForm().write(value);
    case VT_BLOB:
        return (DeviceFormat::fromBytes(value.bytes) ? formatForm() : blobForm()).write(value);
    default:
        return (hasOwnForm(value.tag) ? numberForm() : tagForm()).write(value);
    }
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
}
