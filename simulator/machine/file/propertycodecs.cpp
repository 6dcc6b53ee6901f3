#include "simulator/machine/file/propertycodecs.h"

#include "simulator/machine/file/codecs.h"
#include "simulator/machine/file/propertyforms.h"
#include "simulator/machine/nearestname.h"
#include "simulator/machine/printable.h"
#include "simulator/machine/propertykeys.h"

#include <string>

namespace sim
{
namespace
{
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
    return readPropertyForm(cursor);
}

JsonValue PropertyValueCodec::write(const PropertyValue& value) const
{
    if (value.tag == VT_EMPTY)
        return {};
    if (value.tag == VT_LPWSTR && value.text)
        return JsonValue::ofString(*value.text);
    return value.tag == VT_UI4 ? JsonValue::ofNumber(std::to_string(value.number)) : writePropertyForm(value);
}

JsonValue PropertyValueCodec::schema() const
{
    return reference(definition::propertyValue);
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
