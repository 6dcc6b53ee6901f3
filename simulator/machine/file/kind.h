/// Kinds of objects in a machine file. A kind is a table of fields: reader, writer, equality, the check of keys and the
/// JSON schema are made from it, so that each field is described once.
#pragma once

#include "simulator/machine/file/cursor.h"
#include "simulator/machine/file/objectrule.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace sim
{
/// How one key of an object is read, written and compared.
template<class Object>
struct Field
{
    std::function<void(const JsonCursor& value, Object& object)> read;
    std::function<JsonValue(const Object& object)> write;
    std::function<bool(const Object& left, const Object& right)> isEqual;
};

inline bool areEqual(const PROPERTYKEY& left, const PROPERTYKEY& right)
{
    return sameKey(left, right);
}

template<class Value>
bool areEqual(const Value& left, const Value& right)
{
    return left == right;
}

/// @p schema with a description, unless it is empty, and a default value, unless it is null or an empty string.
JsonValue annotated(const JsonValue& schema, const std::string& description, const JsonValue& usual);

/// The table of one kind of object. Fields are read and written in the order in which they are added.
///
/// A codec is a type with `Value read(const JsonCursor&) const`, `JsonValue write(const Value&) const` and
/// `JsonValue schema() const`.
template<class Object>
class Kind
{
public:
    explicit Kind(std::string name, std::string description = {}) : m_rule{std::move(name), std::move(description), {}}
    {
    }

    /// A member of the object that each file gives.
    template<class Owner, class Value, class Codec>
    Kind& required(const std::string& key, Value Owner::*member, const Codec& codec,
                   const std::string& description = {})
    {
        return add({key, true, annotated(codec.schema(), description, {})}, fieldOf(member, codec));
    }

    /// A member of the object that a file leaves out if it has the value of a new object.
    template<class Owner, class Value, class Codec>
    Kind& optional(const std::string& key, Value Owner::*member, const Codec& codec,
                   const std::string& description = {})
    {
        const Object usual = Object();
        return add({key, false, annotated(codec.schema(), description, codec.write(usual.*member))},
                   fieldOf(member, codec));
    }

    /// As optional(), for a member whose value in a new object depends on the position of the object.
    template<class Owner, class Value, class Codec>
    Kind& positional(const std::string& key, Value Owner::*member, const Codec& codec, const std::string& description)
    {
        return add({key, false, annotated(codec.schema(), description, {})}, fieldOf(member, codec));
    }

    /// Any other field.
    Kind& add(KeyRule rule, Field<Object> field)
    {
        m_rule.keys.push_back(std::move(rule));
        m_fields.push_back(std::move(field));
        return *this;
    }

    const ObjectRule& rule() const { return m_rule; }

    /// The object that @p cursor describes; what it leaves out is as in @p start. Throws MachineFileError.
    Object read(const JsonCursor& cursor, Object start = Object()) const
    {
        cursor.requireKeys(m_rule);
        for (std::size_t index = 0; index < m_fields.size(); ++index)
        {
            if (const auto value = cursor.find(m_rule.keys[index].name))
                m_fields[index].read(*value, start);
        }
        return start;
    }

    /// The description of @p object without what is optional and as in @p start.
    JsonValue write(const Object& object, const Object& start = Object()) const
    {
        JsonValue result = JsonValue::object();
        for (std::size_t index = 0; index < m_fields.size(); ++index)
        {
            const KeyRule& key = m_rule.keys[index];
            if (key.isRequired || key.isAlwaysWritten || !m_fields[index].isEqual(object, start))
                result.add(key.name, m_fields[index].write(object));
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
    static Field<Object> fieldOf(Value Owner::*member, const Codec& codec)
    {
        return {[member, codec](const JsonCursor& value, Object& object) { object.*member = codec.read(value); },
                [member, codec](const Object& object) { return codec.write(object.*member); },
                [member](const Object& left, const Object& right) { return areEqual(left.*member, right.*member); }};
    }

    ObjectRule m_rule;
    std::vector<Field<Object>> m_fields;
};
}
