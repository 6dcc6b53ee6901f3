#include "tools/sonavit/output/json.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace sonavit::program
{
namespace
{
constexpr int schemaVersion = 2;

using Value = nlohmann::ordered_json;

/// 0.1f as 0.1 and not as 0.10000000149011612.
Value shortestDecimal(float value)
{
    if (!std::isfinite(value))
        return nullptr;
    std::array<char, 64> buffer{};
    for (int digits = 6; digits <= 9; ++digits)
    {
        std::snprintf(buffer.data(), buffer.size(), "%.*g", digits, static_cast<double>(value));
        if (std::strtof(buffer.data(), nullptr) == value)
            break;
    }
    return std::strtod(buffer.data(), nullptr);
}

std::string written(const Value& value, int indent)
{
    return value.dump(indent, ' ', false, Value::error_handler_t::replace);
}
}

Json::Json() : m_value(std::make_unique<Value>()) {}
Json::Json(bool value) : m_value(std::make_unique<Value>(value)) {}
Json::Json(double value) : m_value(std::make_unique<Value>(value)) {}
Json::Json(float value) : m_value(std::make_unique<Value>(shortestDecimal(value))) {}
Json::Json(const char* value) : m_value(std::make_unique<Value>(value)) {}
Json::Json(const std::string& value) : m_value(std::make_unique<Value>(value)) {}
Json::Json(const Json& other) : m_value(std::make_unique<Value>(*other.m_value)) {}
Json::Json(Json&& other) noexcept = default;
Json& Json::operator=(Json&& other) noexcept = default;
Json::~Json() = default;

Json& Json::operator=(const Json& other)
{
    if (this != &other)
        *m_value = *other.m_value;
    return *this;
}

Json Json::object(std::initializer_list<Member> members)
{
    Json result;
    *result.m_value = Value::object();
    for (const Member& member : members)
        result.set(member.key, member.value);
    return result;
}

Json Json::array()
{
    Json result;
    *result.m_value = Value::array();
    return result;
}

Json Json::document(std::initializer_list<Member> members)
{
    Json result = object({{"schemaVersion", schemaVersion}});
    for (const Member& member : members)
        result.set(member.key, member.value);
    return result;
}

Json& Json::set(const std::string& key, const Json& value)
{
    (*m_value)[key] = *value.m_value;
    return *this;
}

Json& Json::append(const Json& value)
{
    m_value->push_back(*value.m_value);
    return *this;
}

Json Json::integer(std::int64_t value)
{
    Json result;
    *result.m_value = value;
    return result;
}

Json Json::integer(std::uint64_t value)
{
    Json result;
    *result.m_value = value;
    return result;
}

std::string Json::text() const
{
    return written(*m_value, 2);
}

std::string Json::line() const
{
    return written(*m_value, -1);
}
}
