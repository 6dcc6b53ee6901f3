// Printing JSON.
#include "simulator/machine/file/json.h"

#include <nlohmann/json.hpp>

namespace sim
{
namespace
{
using Nlohmann = nlohmann::json;

constexpr std::size_t widestLine = 110;

std::string escaped(const std::string& text)
{
    return Nlohmann(text).dump(-1, ' ', false, Nlohmann::error_handler_t::replace);
}

void print(const JsonValue& value, std::size_t indent, std::size_t room, std::string& out);

void printOnOneLine(const JsonValue& value, std::string& out)
{
    const bool isObject = value.kind == JsonValue::Kind::object;
    out += isObject ? "{" : "[";
    for (std::size_t index = 0; index < value.elements.size(); ++index)
    {
        out += index == 0 ? "" : ", ";
        if (isObject)
            out += escaped(value.keys[index]) + ": ";
        print(value.elements[index], 0, std::string::npos, out);
    }
    out += isObject ? "}" : "]";
}

void printOnLines(const JsonValue& value, std::size_t indent, std::string& out)
{
    const bool isObject = value.kind == JsonValue::Kind::object;
    const std::string margin(indent + 2, ' ');
    out += isObject ? "{" : "[";
    for (std::size_t index = 0; index < value.elements.size(); ++index)
    {
        const std::string start = margin + (isObject ? escaped(value.keys[index]) + ": " : "");
        const std::size_t used = start.size() + 1;
        out += (index == 0 ? "\n" : ",\n") + start;
        print(value.elements[index], indent + 2, used < widestLine ? widestLine - used : 0, out);
    }
    out += "\n" + std::string(indent, ' ') + (isObject ? "}" : "]");
}

void print(const JsonValue& value, std::size_t indent, std::size_t room, std::string& out)
{
    switch (value.kind)
    {
    case JsonValue::Kind::null:
        out += "null";
        return;
    case JsonValue::Kind::boolean:
        out += value.boolean ? "true" : "false";
        return;
    case JsonValue::Kind::number:
        out += value.text;
        return;
    case JsonValue::Kind::string:
        out += escaped(value.text);
        return;
    case JsonValue::Kind::array:
    case JsonValue::Kind::object:
        break;
    }
    std::string line;
    printOnOneLine(value, line);
    if (line.size() <= room || value.elements.empty())
        out += line;
    else
        printOnLines(value, indent, out);
}
}

std::string printJson(const JsonValue& value)
{
    std::string out;
    print(value, 0, 0, out);
    return out + "\n";
}
}
