#include "sonavit/jsontree.h"

#include "sonavit/problem.h"
#include "sonavit/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <unordered_set>
#include <utility>

namespace sonavit::json
{
namespace
{
using Nlohmann = nlohmann::json;

/// Where the parser reads: all copies of its iterator share it.
struct Position
{
    const char* next;
    std::size_t line = 1; ///< of the character that was read last
    bool wasLineEnd = false;
};

/// Iterates over a string once and counts its lines.
class CountingIterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    explicit CountingIterator(Position& position) : m_position(&position) {}

    reference operator*() const { return *m_position->next; }

    CountingIterator& operator++()
    {
        if (m_position->wasLineEnd)
            ++m_position->line;
        m_position->wasLineEnd = *m_position->next == '\n';
        ++m_position->next;
        return *this;
    }

    bool operator==(const CountingIterator& other) const { return m_position->next == other.m_position->next; }
    bool operator!=(const CountingIterator& other) const { return !(*this == other); }

private:
    Position* m_position;
};

/// The reason in a message of the parser, without its number and its own position.
std::string reasonIn(const std::string& message)
{
    const std::size_t bracket = message.find("] ");
    std::string reason = bracket == std::string::npos ? message : message.substr(bracket + 2);
    const std::size_t position = reason.find(": ");
    if (reason.compare(0, 11, "parse error") == 0 && position != std::string::npos)
        reason.erase(0, position + 2);
    return text::printable(reason);
}

/// Builds the tree from the events of the parser; each returns false to end it.
class TreeBuilder : public nlohmann::json_sax<Nlohmann>
{
public:
    TreeBuilder(const Position& position, const Limits& limits) : m_position(position), m_limits(limits) {}

    bool null() override { return add(Kind::null) != nullptr; }

    bool boolean(bool value) override
    {
        Value* const added = add(Kind::boolean);
        if (added != nullptr)
            added->boolean = value;
        return added != nullptr;
    }

    bool number_integer(number_integer_t value) override { return addNumber(static_cast<double>(value)); }
    bool number_unsigned(number_unsigned_t value) override { return addNumber(static_cast<double>(value)); }
    bool number_float(number_float_t value, const string_t&) override { return addNumber(value); }

    bool string(string_t& value) override
    {
        Value* const added = add(Kind::string);
        if (added != nullptr)
            added->string = value;
        return added != nullptr;
    }

    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override { return open(Kind::object); }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(Kind::list); }
    bool end_array() override { return close(); }

    bool key(string_t& value) override
    {
        if (!m_open.back().keys.insert(value).second)
            return fail(text::quoted(value) + " is there twice");
        m_open.back().value->keys.push_back(value);
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& error) override
    {
        return fail(reasonIn(error.what()));
    }

    /// "line 3: " and the reason; no value if the tree is complete.
    const std::optional<std::string>& failure() const noexcept { return m_failure; }
    Value takeRoot() noexcept { return std::move(m_root); }

private:
    /// A list or an object whose end has not been read.
    struct Open
    {
        Value* value;
        std::unordered_set<std::string> keys;
    };

    bool fail(const std::string& reason)
    {
        m_failure = "line " + std::to_string(m_position.line) + ": " + reason;
        return false;
    }

    Value* add(Kind kind)
    {
        if (++m_count > m_limits.values)
        {
            fail("more than " + std::to_string(m_limits.values) + " values");
            return nullptr;
        }
        Value* added = &m_root;
        if (!m_open.empty())
            added = &m_open.back().value->items.emplace_back();
        added->kind = kind;
        added->line = m_position.line;
        return added;
    }

    bool addNumber(double number)
    {
        if (!std::isfinite(number))
            return fail("a number that is too large");
        Value* const added = add(Kind::number);
        if (added != nullptr)
            added->number = number;
        return added != nullptr;
    }

    bool open(Kind kind)
    {
        if (m_open.size() == m_limits.depth)
            return fail("lists and objects are nested deeper than " + std::to_string(m_limits.depth) + " levels");
        Value* const added = add(kind);
        if (added != nullptr)
            m_open.push_back({added, {}});
        return added != nullptr;
    }

    bool close()
    {
        m_open.pop_back();
        return true;
    }

    const Position& m_position;
    Limits m_limits;
    Value m_root;
    std::vector<Open> m_open; ///< outermost first; a list grows only while it is the last, so that the others stay
    std::size_t m_count = 0;
    std::optional<std::string> m_failure;
};
}

const Value* Value::member(std::string_view key) const noexcept
{
    for (std::size_t i = 0; i < keys.size(); ++i)
        if (keys[i] == key)
            return items[i].kind == Kind::null ? nullptr : &items[i];
    return nullptr;
}

Result<Value> treeOf(std::string_view text, const Limits& limits, const std::string& operation)
{
    const auto unreadable = [&operation](const std::string& sentence)
    { return Problem(Problem::Kind::unreadable, operation, std::string(), sentence); };
    if (text.size() > limits.bytes)
        return unreadable("line 1: the text is larger than " + std::to_string(limits.bytes) + " bytes");
    Position position = {text.data()};
    Position end = {text.data() + text.size()};
    TreeBuilder builder(position, limits);
    Nlohmann::sax_parse(CountingIterator(position), CountingIterator(end), &builder);
    if (builder.failure())
        return unreadable(*builder.failure());
    return builder.takeRoot();
}

const char* wordsOf(Kind kind) noexcept
{
    switch (kind)
    {
    case Kind::null:
        return "null";
    case Kind::boolean:
        return "true or false";
    case Kind::number:
        return "a number";
    case Kind::string:
        return "a string";
    case Kind::list:
        return "a list";
    case Kind::object:
        break;
    }
    return "an object";
}

std::string quoted(std::string_view text)
{
    return Nlohmann(text).dump(-1, ' ', false, Nlohmann::error_handler_t::replace);
}
}
