#include "simulator/machinejson.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <nlohmann/json.hpp>

#include "simulator/machinefile.h"
#include "simulator/machinetext.h"

namespace sim
{
namespace
{
using Nlohmann = nlohmann::json;

constexpr std::size_t deepestNesting = 32;
constexpr std::size_t widestLine = 110;

/// Goes through a text and tells, through what it shares with its copies, how far the furthest of them has come.
class CountingIterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* position, const char** furthest) : m_position(position), m_furthest(furthest) {}

    reference operator*() const { return *m_position; }

    CountingIterator& operator++()
    {
        ++m_position;
        *m_furthest = std::max(*m_furthest, m_position);
        return *this;
    }

    bool operator==(const CountingIterator& other) const { return m_position == other.m_position; }

    bool operator!=(const CountingIterator& other) const { return m_position != other.m_position; }

private:
    const char* m_position;
    const char** m_furthest;
};

/// Builds the tree from the parser's events.
class TreeBuilder : public nlohmann::json_sax<Nlohmann>
{
public:
    TreeBuilder(const std::string& text, const std::string& file) : m_text(text), m_file(file), m_read(text.data()) {}

    JsonValue build()
    {
        const char* const end = m_text.data() + m_text.size();
        Nlohmann::sax_parse(CountingIterator(m_text.data(), &m_read), CountingIterator(end, &m_read), this);
        return std::move(m_root);
    }

    bool null() override { return put({}); }

    bool boolean(bool value) override { return put(JsonValue::ofBoolean(value)); }

    bool number_integer(number_integer_t value) override { return putNumber(std::to_string(value)); }

    bool number_unsigned(number_unsigned_t value) override { return putNumber(std::to_string(value)); }

    bool number_float(number_float_t, const string_t& written) override { return putNumber(written); }

    bool string(string_t& value) override
    {
        if (value.find('\0') != std::string::npos)
            fail("a text without a zero character", "one with it");
        return put(JsonValue::ofText(value));
    }

    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override { return open(JsonValue::object()); }

    bool key(string_t& value) override
    {
        std::vector<std::string>& keys = m_open.back()->keys;
        if (std::find(keys.begin(), keys.end(), value) != keys.end())
            fail("each key once", inQuotes(value) + " for the second time");
        keys.push_back(value);
        return true;
    }

    bool end_object() override { return close(); }

    bool start_array(std::size_t) override { return open(JsonValue::array()); }

    bool end_array() override { return close(); }

    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& error) override
    {
        const std::size_t read = std::min(position == 0 ? 0 : position - 1, m_text.size());
        const std::size_t lineStart = m_text.rfind('\n', read == 0 ? std::string::npos : read - 1);
        const bool isFirstLine = read == 0 || lineStart == std::string::npos;
        const std::size_t column = isFirstLine ? read + 1 : read - lineStart;
        throw MachineFileError(m_file, lineAt(read), column, pointer(), "JSON", reason(error.what()));
    }

private:
    /// What the parser says, without its number and its own reckoning of the place.
    static std::string reason(const std::string& message)
    {
        const std::size_t number = message.find("] ");
        const std::size_t place = message.find("column ");
        const std::size_t colon = message.find(": ", place);
        if (place != std::string::npos && colon != std::string::npos)
            return message.substr(colon + 2);
        return number == std::string::npos ? message : message.substr(number + 2);
    }

    std::size_t lineAt(std::size_t position) const
    {
        const auto end = m_text.begin() + static_cast<std::ptrdiff_t>(position);
        return 1 + static_cast<std::size_t>(std::count(m_text.begin(), end, '\n'));
    }

    /// The line of what has just been read. The parser is at most one character behind its end.
    std::size_t line()
    {
        const char* const last = m_read == m_text.data() ? m_read : m_read - 1;
        m_line += static_cast<std::size_t>(std::count(m_lineRead, std::max(last, m_lineRead), '\n'));
        m_lineRead = std::max(last, m_lineRead);
        return m_line;
    }

    [[noreturn]] void fail(const std::string& expected, const std::string& found)
    {
        throw MachineFileError(m_file, line(), 0, pointer(), expected, found);
    }

    /// Where the value stands that is being read.
    std::string pointer() const
    {
        std::string result;
        for (const JsonValue* open : m_open)
        {
            const bool hasKey = open->kind == JsonValue::Kind::object && !open->keys.empty();
            const bool isBetween = open->keys.size() == open->elements.size() && open == m_open.back();
            if (open->kind == JsonValue::Kind::array)
                result += "/" + std::to_string(open->elements.size() - (open == m_open.back() ? 0 : 1));
            else if (hasKey && !isBetween)
                result += pointerStep(open->keys.back());
        }
        return result;
    }

    bool put(JsonValue value)
    {
        value.line = line();
        if (m_open.empty())
            m_root = std::move(value);
        else
            m_open.back()->elements.push_back(std::move(value));
        return true;
    }

    bool putNumber(std::string written) { return put(JsonValue::ofNumber(std::move(written))); }

    bool open(JsonValue value)
    {
        if (m_open.size() == deepestNesting)
            fail("at most " + std::to_string(deepestNesting) + " levels", "more");
        JsonValue* const parent = m_open.empty() ? nullptr : m_open.back();
        put(std::move(value));
        m_open.push_back(parent == nullptr ? &m_root : &parent->elements.back());
        return true;
    }

    bool close()
    {
        m_open.pop_back();
        return true;
    }

    const std::string& m_text;
    const std::string& m_file;
    const char* m_read;
    const char* m_lineRead = m_text.data();
    std::size_t m_line = 1;
    JsonValue m_root;
    std::vector<JsonValue*> m_open; ///< the containers around the value that is being read, the outermost first
};

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
    case JsonValue::Kind::text:
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

JsonValue JsonValue::ofBoolean(bool value)
{
    JsonValue result;
    result.kind = Kind::boolean;
    result.boolean = value;
    return result;
}

JsonValue JsonValue::ofNumber(std::string written)
{
    JsonValue result;
    result.kind = Kind::number;
    result.text = std::move(written);
    return result;
}

JsonValue JsonValue::ofText(std::string value)
{
    JsonValue result;
    result.kind = Kind::text;
    result.text = std::move(value);
    return result;
}

JsonValue JsonValue::array(std::vector<JsonValue> elements)
{
    JsonValue result;
    result.kind = Kind::array;
    result.elements = std::move(elements);
    return result;
}

JsonValue JsonValue::object()
{
    JsonValue result;
    result.kind = Kind::object;
    return result;
}

JsonValue& JsonValue::add(std::string key, JsonValue value)
{
    keys.push_back(std::move(key));
    elements.push_back(std::move(value));
    return *this;
}

const JsonValue* JsonValue::member(std::string_view key) const
{
    const auto found = std::find(keys.begin(), keys.end(), key);
    return found == keys.end() ? nullptr : &elements[static_cast<std::size_t>(found - keys.begin())];
}

const JsonValue& JsonValue::nearest(const std::string& pointer) const
{
    for (std::size_t index = 0; index < elements.size(); ++index)
    {
        const std::string step = kind == Kind::object ? pointerStep(keys[index]) : "/" + std::to_string(index);
        const bool isPrefix = pointer.compare(0, step.size(), step) == 0;
        if (isPrefix && (pointer.size() == step.size() || pointer[step.size()] == '/'))
            return elements[index].nearest(pointer.substr(step.size()));
    }
    return *this;
}

JsonValue parseJson(const std::string& text, const std::string& file)
{
    return TreeBuilder(text, file).build();
}

std::string printJson(const JsonValue& value)
{
    std::string out;
    print(value, 0, 0, out);
    return out + "\n";
}

std::string pointerStep(const std::string& key)
{
    std::string step = "/";
    for (const char character : key)
    {
        if (character == '~')
            step += "~0";
        else if (character == '/')
            step += "~1";
        else
            step += character;
    }
    return step;
}
}
