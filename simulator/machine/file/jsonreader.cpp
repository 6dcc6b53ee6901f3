// Reading JSON.
#include "simulator/machine/file/json.h"

#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/printable.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

namespace sim
{
namespace
{
using Nlohmann = nlohmann::json;

constexpr std::size_t deepestNesting = 32;

/// Iterates over a string and records, in a place that it shares with its copies, how far the furthest of them is.
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
            fail("a string without a zero character", "a string with one");
        return put(JsonValue::ofString(value));
    }

    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override { return open(JsonValue::object()); }

    bool key(string_t& value) override
    {
        std::vector<std::string>& keys = m_open.back()->keys;
        if (std::find(keys.begin(), keys.end(), value) != keys.end())
            fail("each key once", "duplicate " + inQuotes(value));
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
    /// The parser's message, without its number and its own position.
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

    /// The line of the value that has just been read. The parser is at most one character past its end.
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

    /// JSON pointer to the value that is being read.
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
}

JsonValue parseJson(const std::string& text, const std::string& file)
{
    return TreeBuilder(text, file).build();
}
}
