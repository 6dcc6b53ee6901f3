/// Judges a value by a JSON schema, as far as the schema of machine files goes: a keyword that it does not know is an
/// error of the test, so that none is passed over.
#pragma once

#include "simulator/machine/file/json.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>

class MachineSchemaValidator
{
public:
    explicit MachineSchemaValidator(const sim::JsonValue& schema) : m_root(schema) {}

    bool accepts(const sim::JsonValue& value) const { return fits(value, m_root); }

private:
    using Kind = sim::JsonValue::Kind;

    bool fits(const sim::JsonValue& value, const sim::JsonValue& schema) const
    {
        for (std::size_t index = 0; index < schema.keys.size(); ++index)
        {
            if (!fits(value, schema, schema.keys[index], schema.elements[index]))
                return false;
        }
        return true;
    }

    bool fits(const sim::JsonValue& value, const sim::JsonValue& schema, const std::string& keyword,
              const sim::JsonValue& rule) const
    {
        static const std::set<std::string> remarks = {"$schema", "title", "description", "default", "$defs"};
        if (remarks.count(keyword) != 0)
            return true;
        if (keyword == "$ref")
            return fits(value, definition(rule.text));
        if (keyword == "oneOf")
            return count(rule, [&](const sim::JsonValue& each) { return fits(value, each); }) == 1;
        if (keyword == "enum")
            return count(rule, [&](const sim::JsonValue& each) { return isSame(value, each); }) == 1;
        if (keyword == "type")
            return hasType(value, rule);
        if (value.kind == Kind::object)
            return fitsObject(value, schema, keyword, rule);
        if (value.kind == Kind::array)
            return fitsArray(value, keyword, rule);
        if (value.kind == Kind::string)
            return fitsText(value, keyword, rule);
        return fitsNumber(value, keyword, rule);
    }

    bool fitsObject(const sim::JsonValue& value, const sim::JsonValue& schema, const std::string& keyword,
                    const sim::JsonValue& rule) const
    {
        const sim::JsonValue* const properties = schema.member("properties");
        const auto isKnown = [&](const std::string& key)
        { return properties != nullptr && properties->member(key) != nullptr; };
        const auto member = [&](const sim::JsonValue& key) { return value.member(key.text) != nullptr; };
        if (keyword == "required")
            return count(rule, member) == rule.elements.size();

        bool result = true;
        for (std::size_t index = 0; index < value.keys.size(); ++index)
        {
            const std::string& key = value.keys[index];
            if (keyword == "properties")
                result = result && (!isKnown(key) || fits(value.elements[index], *rule.member(key)));
            else if (keyword == "additionalProperties" && rule.kind == Kind::boolean)
                result = result && (rule.boolean || isKnown(key));
            else if (keyword == "additionalProperties")
                result = result && (isKnown(key) || fits(value.elements[index], rule));
            else if (keyword == "propertyNames")
                result = result && fits(sim::JsonValue::ofString(key), rule);
            else
                requireOther(keyword);
        }
        return result;
    }

    bool fitsArray(const sim::JsonValue& value, const std::string& keyword, const sim::JsonValue& rule) const
    {
        if (keyword == "items")
            return count(value, [&](const sim::JsonValue& each) { return fits(each, rule); }) == value.elements.size();
        if (keyword == "minItems")
            return static_cast<double>(value.elements.size()) >= number(rule);
        if (keyword == "maxItems")
            return static_cast<double>(value.elements.size()) <= number(rule);
        return requireOther(keyword);
    }

    bool fitsText(const sim::JsonValue& value, const std::string& keyword, const sim::JsonValue& rule) const
    {
        if (keyword == "pattern")
            return std::regex_search(value.text, expression(rule.text));
        if (keyword == "minLength")
            return static_cast<double>(value.text.size()) >= number(rule);
        return requireOther(keyword);
    }

    /// Making an expression takes far longer than using it.
    const std::regex& expression(const std::string& pattern) const
    {
        const auto found = m_expressions.find(pattern);
        return found != m_expressions.end() ? found->second : m_expressions.emplace(pattern, pattern).first->second;
    }

    bool fitsNumber(const sim::JsonValue& value, const std::string& keyword, const sim::JsonValue& rule) const
    {
        if (value.kind != Kind::number)
            return requireOther(keyword);
        if (keyword == "minimum")
            return number(value) >= number(rule);
        if (keyword == "maximum")
            return number(value) <= number(rule);
        if (keyword == "exclusiveMinimum")
            return number(value) > number(rule);
        return requireOther(keyword);
    }

    /// A keyword for another kind of value says nothing about this one; one that is not known is a gap in the test.
    static bool requireOther(const std::string& keyword)
    {
        static const std::set<std::string> known = {"required",      "properties", "additionalProperties",
                                                    "propertyNames", "items",      "minItems",
                                                    "maxItems",      "pattern",    "minLength",
                                                    "minimum",       "maximum",    "exclusiveMinimum"};
        if (known.count(keyword) == 0)
            throw std::logic_error("the validator does not know the keyword " + keyword);
        return true;
    }

    const sim::JsonValue& definition(const std::string& reference) const
    {
        const std::string start = "#/$defs/";
        const sim::JsonValue* const found = reference.compare(0, start.size(), start) == 0
                                                ? m_root.member("$defs")->member(reference.substr(start.size()))
                                                : nullptr;
        if (found == nullptr)
            throw std::logic_error("the schema does not define " + reference);
        return *found;
    }

    static bool hasType(const sim::JsonValue& value, const sim::JsonValue& rule)
    {
        if (rule.kind == Kind::array)
            return count(rule, [&](const sim::JsonValue& each) { return hasType(value, each); }) > 0;
        const bool isWhole = value.text.find_first_of(".eE") == std::string::npos;
        return (rule.text == "object" && value.kind == Kind::object) ||
               (rule.text == "array" && value.kind == Kind::array) ||
               (rule.text == "string" && value.kind == Kind::string) ||
               (rule.text == "boolean" && value.kind == Kind::boolean) ||
               (rule.text == "null" && value.kind == Kind::null) ||
               (rule.text == "number" && value.kind == Kind::number) ||
               (rule.text == "integer" && value.kind == Kind::number && isWhole);
    }

    static bool isSame(const sim::JsonValue& left, const sim::JsonValue& right)
    {
        return left.kind == Kind::string && right.kind == Kind::string && left.text == right.text;
    }

    static double number(const sim::JsonValue& value) { return std::strtod(value.text.c_str(), nullptr); }

    template<class Test>
    static std::size_t count(const sim::JsonValue& list, const Test& test)
    {
        return static_cast<std::size_t>(std::count_if(list.elements.begin(), list.elements.end(), test));
    }

    const sim::JsonValue& m_root;
    mutable std::map<std::string, std::regex> m_expressions;
};
