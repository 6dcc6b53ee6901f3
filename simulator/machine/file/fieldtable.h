/// @file
/// Tables of the fields of one type of object. Reader, writer, equality, the check of keys and the JSON schema are made
/// from a table, so that each field is described once.
#pragma once

#include "simulator/machine/file/cursor.h"
#include "simulator/machine/file/objectrule.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace sim
{
/// One key of an object, and how it is read, written and compared.
template<class Object>
struct Field
{
    KeyRule key;
    std::function<void(const JsonCursor& value, Object& object)> read;
    std::function<JsonValue(const Object& object)> write;
    std::function<bool(const Object& left, const Object& right)> isEqual;
};

/// The fields of an object, which are read and written in the order in which they are added.
///
/// A codec is a type with `Value read(const JsonCursor&) const`, `JsonValue write(const Value&) const` and
/// `JsonValue schema() const`.
template<class Object>
class FieldTable
{
public:
    /// @param name of the object's definition in the schema
    explicit FieldTable(std::string name, std::string description = {})
        : m_name(std::move(name)),
          m_description(std::move(description))
    {
    }

    /// A member of the object that each file gives.
    template<class Owner, class Value, class Codec>
    FieldTable& required(const std::string& key, Value Owner::*member, const Codec& codec,
                         const std::string& description = {})
    {
        return add(fieldOf({key, true, annotated(codec.schema(), description, {})}, member, codec));
    }

    /// A member of the object that a file leaves out if it has the value of a new object.
    template<class Owner, class Value, class Codec>
    FieldTable& optional(const std::string& key, Value Owner::*member, const Codec& codec,
                         const std::string& description = {})
    {
        const Object usual = Object();
        return add(
            fieldOf({key, false, annotated(codec.schema(), description, codec.write(usual.*member))}, member, codec));
    }

    /// As optional(), for a member whose value in a new object depends on the place of the object in the file.
    template<class Owner, class Value, class Codec>
    FieldTable& contextual(const std::string& key, Value Owner::*member, const Codec& codec,
                           const std::string& description)
    {
        return add(fieldOf({key, false, annotated(codec.schema(), description, {})}, member, codec));
    }

    /// Any other field.
    FieldTable& add(Field<Object> field)
    {
        m_fields.push_back(std::move(field));
        return *this;
    }

    const std::string& name() const { return m_name; }

    /// The keys, valid as long as the table does not change.
    ObjectRule rule() const
    {
        ObjectRule result = {m_name, m_description, {}};
        for (const Field<Object>& field : m_fields)
            result.keys.push_back(&field.key);
        return result;
    }

    /// The object that @p cursor describes; what it leaves out is as in @p start. Throws MachineFileError.
    Object read(const JsonCursor& cursor, Object start = Object()) const
    {
        cursor.requireKeys(rule());
        for (const Field<Object>& field : m_fields)
        {
            if (const auto value = cursor.find(field.key.name))
                field.read(*value, start);
        }
        return start;
    }

    /// The description of @p object without what is optional and as in @p start.
    JsonValue write(const Object& object, const Object& start = Object()) const
    {
        JsonValue result = JsonValue::object();
        for (const Field<Object>& field : m_fields)
        {
            if (field.key.isRequired || field.key.isAlwaysWritten || !field.isEqual(object, start))
                result.add(field.key.name, field.write(object));
        }
        return result;
    }

    bool haveEqualFields(const Object& left, const Object& right) const
    {
        for (const Field<Object>& field : m_fields)
        {
            if (!field.isEqual(left, right))
                return false;
        }
        return true;
    }

private:
    template<class Owner, class Value, class Codec>
    static Field<Object> fieldOf(KeyRule key, Value Owner::*member, const Codec& codec)
    {
        return {std::move(key),
                [member, codec](const JsonCursor& value, Object& object) { object.*member = codec.read(value); },
                [member, codec](const Object& object) { return codec.write(object.*member); },
                [member](const Object& left, const Object& right) { return left.*member == right.*member; }};
    }

    std::string m_name;
    std::string m_description;
    std::vector<Field<Object>> m_fields;
};
}
