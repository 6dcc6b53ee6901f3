#include "simulator/machine/file/plainjson.h"

#include "simulator/machine/utf8.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <utility>

namespace sim
{
namespace
{
constexpr std::size_t mostDigits = 18; ///< fit into 64 bits, with either sign

constexpr auto isDigit = [](char character) { return character >= '0' && character <= '9'; };

/// For each byte whether a string contains it as it is, without a closer look.
constexpr std::array<bool, 256> plainBytes = []
{
    std::array<bool, 256> result = {};
    for (std::size_t byte = 0x20; byte < 0x7F; ++byte)
        result[byte] = byte != '"' && byte != '\\';
    return result;
}();

/// An object, as isDigit is: algorithms call a function by its address, which takes several times longer.
constexpr auto isPlain = [](char character) { return plainBytes[static_cast<unsigned char>(character)]; };

/// The character that a backslash and @p letter stand for; 0 if it takes more than these two.
char unescaped(char letter)
{
    constexpr std::string_view letters = "\"\\/bfnrt";
    constexpr std::string_view characters = "\"\\/\b\f\n\r\t";
    const std::size_t index = letters.find(letter);
    return index == std::string_view::npos ? '\0' : characters[index];
}

bool hasDuplicates(const std::vector<std::string>& keys)
{
    constexpr std::size_t few = 16;
    if (keys.size() <= few) // as in nearly all objects: a comparison of each with all before costs less than an order
    {
        const auto isKnown = [&](const std::string& key) { return &*std::find(keys.begin(), keys.end(), key) != &key; };
        return std::any_of(keys.begin(), keys.end(), isKnown);
    }
    std::vector<std::string_view> sorted(keys.begin(), keys.end());
    std::sort(sorted.begin(), sorted.end());
    return std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end();
}

/// Moves the elements of @p list from @p first on to the end of an empty list, which takes no more memory than it
/// needs.
template<class Element>
void takeFrom(std::vector<Element>& list, std::size_t first, std::vector<Element>& result)
{
    const auto begin = list.begin() + static_cast<std::ptrdiff_t>(first);
    result.assign(std::make_move_iterator(begin), std::make_move_iterator(list.end()));
    list.erase(begin, list.end());
}

/// Reads from the beginning of a string to the end. The reading operations return whether they understood what they
/// found.
class PlainReader
{
public:
    explicit PlainReader(const std::string& text) : m_text(text), m_next(text.data()), m_end(m_next + text.size()) {}

    bool document(JsonValue& value)
    {
        if (!this->value(value))
            return false;
        skipSpace();
        return m_next == m_end;
    }

private:
    using Kind = JsonValue::Kind;

    /// One test for each character: only a blank or less can be space.
    void skipSpace()
    {
        const char* next = m_next;
        for (; next != m_end && *next <= ' '; ++next)
        {
            if (*next == '\n')
                ++m_line;
            else if (*next != ' ' && *next != '\r' && *next != '\t')
                break;
        }
        m_next = next;
    }

    /// Skips space, then @p character if it comes next.
    bool skip(char character)
    {
        skipSpace();
        if (m_next == m_end || *m_next != character)
            return false;
        ++m_next;
        return true;
    }

    bool value(JsonValue& value)
    {
        skipSpace();
        value.line = m_line;
        switch (m_next == m_end ? '\0' : *m_next)
        {
        case '{':
            return object(value);
        case '[':
            return array(value);
        case '"':
            value.kind = Kind::string;
            return string(value.text);
        case 't':
            value.kind = Kind::boolean;
            value.boolean = true;
            return word("true");
        case 'f':
            value.kind = Kind::boolean;
            return word("false");
        case 'n':
            return word("null");
        default:
            value.kind = Kind::number;
            return number(value.text);
        }
    }

    bool word(std::string_view word)
    {
        if (std::string_view(m_next, static_cast<std::size_t>(m_end - m_next)).substr(0, word.size()) != word)
            return false;
        m_next += word.size();
        return true;
    }

    std::size_t skipDigits()
    {
        const char* const first = m_next;
        m_next = std::find_if_not(m_next, m_end, isDigit);
        return static_cast<std::size_t>(m_next - first);
    }

    /// As it is written, with a fraction or without. What follows a number cannot be a part of it, or is not
    /// understood.
    bool number(std::string& written)
    {
        const char* const first = m_next;
        const bool isNegative = skip('-');
        const bool isZero = m_next != m_end && *m_next == '0';
        const std::size_t digits = skipDigits();
        const bool hasFraction = m_next != m_end && *m_next == '.';
        m_next += hasFraction ? 1 : 0;
        const std::size_t fraction = hasFraction ? skipDigits() : 0;
        const bool isWhole = digits > 0 && digits + fraction <= mostDigits && !(isZero && digits > 1);
        if (!isWhole || hasFraction != (fraction > 0) || (isNegative && isZero && !hasFraction))
            return false;
        written.assign(first, m_next);
        return true;
    }

    bool string(std::string& text)
    {
        if (!skip('"'))
            return false;
        const char* const end = std::find_if_not(m_next, m_end, isPlain);
        text = std::string(m_next, end); // most texts are plain, and this allocates no more than they need
        m_next = end;
        while (m_next != m_end && *m_next != '"')
        {
            const char* const first = m_next;
            m_next = std::find_if_not(m_next, m_end, isPlain);
            text.append(first, m_next);
            if (m_next != m_end && *m_next != '"' && !character(text))
                return false;
        }
        return skip('"');
    }

    /// An escape sequence, or a character beyond ASCII.
    bool character(std::string& text)
    {
        if (*m_next == '\\')
        {
            const char character = m_next + 1 == m_end ? '\0' : unescaped(m_next[1]);
            text += character;
            m_next += 2;
            return character != '\0';
        }
        const Utf8Character character = characterAt(m_text, static_cast<std::size_t>(m_next - m_text.data()));
        const bool isSurrogate = character.code >= 0xD800 && character.code <= 0xDFFF;
        if (character.isBroken || isSurrogate || character.code < 0x20)
            return false;
        text.append(m_next, character.size);
        m_next += character.size;
        return true;
    }

    bool array(JsonValue& value)
    {
        value.kind = Kind::array;
        const std::size_t first = m_elements.size();
        const bool isRead = container(']', [] { return true; });
        takeFrom(m_elements, first, value.elements);
        return isRead;
    }

    bool object(JsonValue& value)
    {
        value.kind = Kind::object;
        const std::size_t first = m_elements.size();
        const std::size_t firstKey = m_keys.size();
        const auto readKey = [this]
        {
            std::string key;
            skipSpace();
            const bool isKey = string(key) && skip(':');
            m_keys.push_back(std::move(key));
            return isKey;
        };
        const bool isRead = container('}', readKey);
        takeFrom(m_elements, first, value.elements);
        takeFrom(m_keys, firstKey, value.keys);
        return isRead && !hasDuplicates(value.keys);
    }

    /// Appends the elements to those of the containers around; @p readKey reads what comes before each.
    template<class ReadKey>
    bool container(char end, const ReadKey& readKey)
    {
        ++m_next;
        if (++m_depth > deepestNesting)
            return false;
        bool isEnd = skip(end);
        while (!isEnd)
        {
            JsonValue element;
            if (!readKey() || !value(element))
                return false;
            m_elements.push_back(std::move(element));
            isEnd = skip(end);
            if (!isEnd && !skip(','))
                return false;
        }
        --m_depth;
        return true;
    }

    const std::string& m_text;
    const char* m_next;
    const char* const m_end;
    std::size_t m_line = 1;
    std::size_t m_depth = 0;
    std::vector<JsonValue> m_elements; ///< of the containers that are being read, the innermost one's last
    std::vector<std::string> m_keys;
};
}

std::optional<JsonValue> readPlainJson(const std::string& text)
{
    JsonValue result;
    if (!PlainReader(text).document(result))
        return std::nullopt;
    return result;
}
}
