/// @file
/// Tables of the fields of one type of object. Reader, writer, equality, the check of keys and the JSON schema are made
/// from a table, so that each field is described once.
#pragma once

#include "simulator/machine/file/cursor.h"
#include "simulator/machine/file/objectrule.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace sim
{
/// One key of an object, and how it is read, written and compared. Tables hold fields by this base, which keeps the
/// code that a field costs small: there are many.
template<class Object>
class Field
{
public:
    explicit Field(KeyRule rule) : key(std::move(rule)) {}
    Field(const Field&) = delete;
    Field& operator=(const Field&) = delete;
    virtual ~Field() = default;

    virtual void read(const JsonCursor& value, Object& object) const = 0;
    virtual JsonValue write(const Object& object) const = 0;
    virtual bool isEqual(const Object& left, const Object& right) const = 0;

    const KeyRule key;
};

/// A member of the object.
template<class Object, class Owner, class Value, class Codec>
class MemberField final : public Field<Object>
{
public:
    MemberField(KeyRule rule, Value Owner::*member, const Codec& codec)
        : Field<Object>(std::move(rule)),
          m_member(member),
          m_codec(codec)
    {
    }

    void read(const JsonCursor& value, Object& object) const override { object.*m_member = m_codec.read(value); }

    JsonValue write(const Object& object) const override { return m_codec.write(object.*m_member); }

    bool isEqual(const Object& left, const Object& right) const override { return left.*m_member == right.*m_member; }

private:
    Value Owner::*m_member;
    Codec m_codec;
};

/// A field of three functions.
template<class Object, class Read, class Write, class IsEqual>
class FunctionField final : public Field<Object>
{
public:
    FunctionField(KeyRule rule, Read read, Write write, IsEqual isEqual)
        : Field<Object>(std::move(rule)),
          m_read(std::move(read)),
          m_write(std::move(write)),
          m_isEqual(std::move(isEqual))
    {
    }

    void read(const JsonCursor& value, Object& object) const override { m_read(value, object); }

    JsonValue write(const Object& object) const override { return m_write(object); }

    bool isEqual(const Object& left, const Object& right) const override { return m_isEqual(left, right); }

private:
    Read m_read;
    Write m_write;
    IsEqual m_isEqual;
};

/// The fields of an object, which are read and written in the order in which they are added.
///
/// A codec is a type with `Value read(const JsonCursor&) const`, `JsonValue write(const Value&) const` and
/// `JsonValue schema() const`, which is called only when the schema is made. Descriptions are literals.
template<class Object>
class FieldTable
{
public:
    /// @param name of the object's definition in the schema
    explicit FieldTable(std::string name, std::string description = {})
        : m_rule{std::move(name), std::move(description), {}}
    {
    }

    /// A member of the object that each file gives.
    template<class Owner, class Value, class Codec>
    FieldTable& required(const std::string& key, Value Owner::*member, const Codec& codec, const char* description = "")
    {
        return addMember({key, true, describedBy(codec, description)}, member, codec);
    }

    /// A member of the object that a file leaves out if it has the value of a new object.
    template<class Owner, class Value, class Codec>
    FieldTable& optional(const std::string& key, Value Owner::*member, const Codec& codec, const char* description = "")
    {
        const auto schema = [=]
        {
            const Object usual = Object();
            return annotated(codec.schema(), description, codec.write(usual.*member));
        };
        return addMember({key, false, schema}, member, codec);
    }

    /// As optional(), for a member whose value in a new object depends on the place of the object in the file.
    template<class Owner, class Value, class Codec>
    FieldTable& contextual(const std::string& key, Value Owner::*member, const Codec& codec, const char* description)
    {
        return addMember({key, false, describedBy(codec, description)}, member, codec);
    }

    /// Any other field: `void read(const JsonCursor&, Object&)`, `JsonValue write(const Object&)` and
    /// `bool isEqual(const Object&, const Object&)`.
    template<class Read, class Write, class IsEqual>
    FieldTable& add(KeyRule key, const Read& read, const Write& write, const IsEqual& isEqual)
    {
        return addField(new FunctionField<Object, Read, Write, IsEqual>(std::move(key), read, write, isEqual));
    }

    const std::string& name() const { return m_rule.name; }

    const ObjectRule& rule() const { return m_rule; }

    /// The object that @p cursor describes; what it leaves out is as in @p start. Throws MachineFileError.
    Object read(const JsonCursor& cursor, Object start = Object()) const
    {
        const JsonCursor::RuledMembers members = cursor.members(m_rule);
        for (std::size_t position = 0; position < m_fields.size(); ++position)
        {
            if (const JsonValue* const value = members[position])
                m_fields[position]->read(cursor.at(*value), start);
        }
        return start;
    }

    /// The description of @p object without what is optional and as in @p start.
    JsonValue write(const Object& object, const Object& start = Object()) const
    {
        JsonValue result = JsonValue::object();
        for (const auto& field : m_fields)
        {
            if (field->key.isRequired || field->key.isAlwaysWritten || !field->isEqual(object, start))
                result.add(field->key.name, field->write(object));
        }
        return result;
    }

    bool haveEqualFields(const Object& left, const Object& right) const
    {
        for (const auto& field : m_fields)
        {
            if (!field->isEqual(left, right))
                return false;
        }
        return true;
    }

private:
    template<class Codec>
    static std::function<JsonValue()> describedBy(const Codec& codec, const char* description)
    {
        return [=] { return annotated(codec.schema(), description, {}); };
    }

    template<class Owner, class Value, class Codec>
    FieldTable& addMember(KeyRule key, Value Owner::*member, const Codec& codec)
    {
        return addField(new MemberField<Object, Owner, Value, Codec>(std::move(key), member, codec));
    }

    FieldTable& addField(const Field<Object>* field)
    {
        if (m_fields.size() == ObjectRule::mostKeys)
            throw std::logic_error(m_rule.name + " has too many keys");
        m_fields.push_back(std::shared_ptr<const Field<Object>>(field));
        m_rule.keys.push_back(&field->key);
        return *this;
    }

    ObjectRule m_rule; ///< its keys belong to the fields, which copies of the table share
    std::vector<std::shared_ptr<const Field<Object>>> m_fields;
};
}
