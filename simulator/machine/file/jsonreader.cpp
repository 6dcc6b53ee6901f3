// Reading JSON.
#include "simulator/machine/file/json.h"

#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/file/plainjson.h"
#include "simulator/machine/printable.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

namespace sim
{
namespace
{
using Nlohmann = nlohmann::json;

/// The keys of an object above which a set finds a duplicate faster than a search.
constexpr std::size_t manyKeys = 16;

/// Iterates over a string once. All copies share the position, so that the owner of the position knows how far the
/// parser has read.
class SharedIterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    explicit SharedIterator(const char*& position) : m_position(&position) {}

    reference operator*() const { return **m_position; }

    SharedIterator& operator++()
    {
        ++*m_position;
        return *this;
    }

    bool operator==(const SharedIterator& other) const { return *m_position == *other.m_position; }

    bool operator!=(const SharedIterator& other) const { return *m_position != *other.m_position; }

private:
    const char** m_position;
};

/// Builds the tree from the parser's events.
class TreeBuilder : public nlohmann::json_sax<Nlohmann>
{
public:
    TreeBuilder(const std::string& text, const std::string& file) : m_text(text), m_file(file), m_read(text.data()) {}

    JsonValue build()
    {
        const char* end = m_text.data() + m_text.size();
        Nlohmann::sax_parse(SharedIterator(m_read), SharedIterator(end), this);
        return std::move(m_root);
    }

    bool null() override
    {
        add(JsonValue::Kind::null);
        return true;
    }

    bool boolean(bool value) override
    {
        add(JsonValue::Kind::boolean).boolean = value;
        return true;
    }

    bool number_integer(number_integer_t value) override { return addNumber(std::to_string(value)); }

    bool number_unsigned(number_unsigned_t value) override { return addNumber(std::to_string(value)); }

    bool number_float(number_float_t, const string_t& written) override { return addNumber(written); }

    bool string(string_t& value) override
    {
        if (value.find('\0') != std::string::npos)
            fail("a string without a zero character", "a string with one");
        add(JsonValue::Kind::string).text = value;
        return true;
    }

    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override { return open(JsonValue::Kind::object); }

    bool key(string_t& value) override
    {
        if (!m_open.back().addKey(value))
            fail("each key once", "duplicate " + inQuotes(value));
        return true;
    }

    bool end_object() override { return close(); }

    bool start_array(std::size_t) override { return open(JsonValue::Kind::array); }

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
    /// A list or an object whose end has not been read.
    struct Open
    {
        JsonValue* value;
        std::unordered_set<std::string> keys; ///< of an object with many keys

        /// Adds the key to the object, or returns false if the object has it already.
        bool addKey(const std::string& key)
        {
            std::vector<std::string>& list = value->keys;
            if (list.size() == manyKeys)
                keys.insert(list.begin(), list.end());
            const bool isNew = list.size() < manyKeys ? std::find(list.begin(), list.end(), key) == list.end()
                                                      : keys.insert(key).second;
            if (isNew)
                list.push_back(key);
            return isNew;
        }
    };

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
        for (const Open& each : m_open)
        {
            const JsonValue* const open = each.value;
            const bool isInnermost = &each == &m_open.back();
            const bool hasKey = open->kind == JsonValue::Kind::object && !open->keys.empty();
            const bool isBetween = open->keys.size() == open->elements.size() && isInnermost;
            if (open->kind == JsonValue::Kind::array)
                result += "/" + std::to_string(open->elements.size() - (isInnermost ? 0 : 1));
            else if (hasKey && !isBetween)
                result += pointerStep(open->keys.back());
        }
        return result;
    }

    /// Appends a value to the innermost open container.
    JsonValue& add(JsonValue::Kind kind)
    {
        JsonValue& value = m_open.empty() ? m_root : m_open.back().value->elements.emplace_back();
        value.kind = kind;
        value.line = line();
        return value;
    }

    bool addNumber(std::string written)
    {
        add(JsonValue::Kind::number).text = std::move(written);
        return true;
    }

    bool open(JsonValue::Kind kind)
    {
        if (m_open.size() == deepestNesting)
            fail("at most " + std::to_string(deepestNesting) + " levels", "more");
        m_open.push_back({&add(kind), {}});
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
    std::vector<Open> m_open; ///< the containers around the value that is being read, the outermost first
};
}

JsonValue parseJson(const std::string& text, const std::string& file)
{
    std::optional<JsonValue> plain = readPlainJson(text);
    return plain ? std::move(*plain) : parseAnyJson(text, file);
}

JsonValue parseAnyJson(const std::string& text, const std::string& file)
{
    return TreeBuilder(text, file).build();
}
}
