#include "qor/string.h"

#include "qor/array.h"
#include "qor/unitword.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

namespace qor
{
namespace
{
constexpr std::size_t largestText = (std::numeric_limits<unsigned int>::max() - 64) / 2;
constexpr std::size_t smallestCapacity = 24; // a first append leaves room for the next few
constexpr char32_t replacement = 0xFFFD;

/// Whether whole words may be read around the end of a text. A word at an aligned address lies in one page, so the
/// processor never refuses it; the sanitizers refuse it nevertheless.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_HWADDRESS__) || defined(__SANITIZE_THREAD__)
#define QOR_READS_WORDS false
#elif !defined(__has_feature)
#define QOR_READS_WORDS true
#elif __has_feature(address_sanitizer) || __has_feature(hwaddress_sanitizer) || __has_feature(thread_sanitizer) || \
    __has_feature(memory_sanitizer)
#define QOR_READS_WORDS false
#else
#define QOR_READS_WORDS true
#endif
constexpr bool mayReadWords = QOR_READS_WORDS;
#undef QOR_READS_WORDS

std::size_t length(const unsigned short* text)
{
    const unsigned short* unit = text;
    if (mayReadWords)
    {
        while (reinterpret_cast<std::uintptr_t>(unit) % sizeof(UnitWord) != 0)
        {
            if (*unit == 0)
                return static_cast<std::size_t>(unit - text);
            ++unit;
        }
        while (zeroCandidates(wordAt(unit)) == 0)
            unit += unitsOfWord;
    }
    while (*unit != 0)
        ++unit;
    return static_cast<std::size_t>(unit - text);
}

bool contains(const String& text, unsigned short unit)
{
    const unsigned short* const end = text.getUCS2Buffer() + text.size();
    return std::find(text.getUCS2Buffer(), end, unit) != end;
}

unsigned short folded(unsigned short unit)
{
    return unit >= 'A' && unit <= 'Z' ? static_cast<unsigned short>(unit + ('a' - 'A')) : unit;
}

/// The only bit in which two letters differ that compareNoCase() takes for equal.
constexpr unsigned short caseBit = 'a' ^ 'A';

bool sameButForCase(UnitWord left, UnitWord right)
{
    return left == right || foldedWord(left) == foldedWord(right);
}

bool isHighSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void appendUtf8(std::string& out, char32_t point)
{
    if (point < 0x80)
    {
        out += static_cast<char>(point);
        return;
    }
    if (point < 0x800)
        out += static_cast<char>(0xC0 | (point >> 6));
    else if (point < 0x10000)
        out += static_cast<char>(0xE0 | (point >> 12));
    else
        out += static_cast<char>(0xF0 | (point >> 18));
    if (point >= 0x10000)
        out += static_cast<char>(0x80 | ((point >> 12) & 0x3F));
    if (point >= 0x800)
        out += static_cast<char>(0x80 | ((point >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (point & 0x3F));
}

/// Reads one code point at @p position and advances past it; each malformed byte gives one U+FFFD.
char32_t nextPoint(std::string_view utf8, std::size_t& position)
{
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(utf8[at]); };
    const char32_t lead = byte(position++);
    if (lead < 0x80)
        return lead;
    const std::size_t more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    if (lead < 0xC2 || lead > 0xF4 || position + more > utf8.size())
        return replacement;
    char32_t point = lead & (0x3Fu >> more);
    for (std::size_t i = 0; i < more; ++i)
    {
        if ((byte(position + i) & 0xC0) != 0x80)
            return replacement;
        point = (point << 6) | (byte(position + i) & 0x3Fu);
    }
    const char32_t smallest[] = {0, 0x80, 0x800, 0x10000};
    if (point < smallest[more] || point > 0x10FFFF || isHighSurrogate(point) || isLowSurrogate(point))
        return replacement;
    position += more;
    return point;
}
}

const unsigned short String::emptyText[1] = {0};

String::String(const char* text) : m_buffer(widened(text)) {}

String::String(const unsigned short* text) : m_buffer(text == nullptr ? nullptr : copyOf(text, length(text))) {}

String& String::operator=(const char* text)
{
    return *this = String(text); // makes the new buffer before it frees the old one: text may point into that
}

String& String::operator=(const unsigned short* text)
{
    return *this = String(text);
}

String String::fromUtf8(std::string_view utf8)
{
    std::u16string units;
    units.reserve(utf8.size());
    for (std::size_t position = 0; position < utf8.size();)
    {
        const char32_t point = nextPoint(utf8, position);
        if (point >= 0x10000)
            units += static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10));
        units += static_cast<char16_t>(point >= 0x10000 ? 0xDC00 + (point & 0x3FF) : point);
    }
    String result;
    if (!units.empty())
        std::memcpy(result.extend(units.size()), units.data(), units.size() * sizeof(char16_t));
    return result;
}

String& String::append(const char* text)
{
    const std::size_t added = text == nullptr ? 0 : std::strlen(text);
    if (added == 0)
        return *this;
    unsigned short* const target = extend(added);
    for (std::size_t i = 0; i < added; ++i)
        target[i] = static_cast<unsigned char>(text[i]);
    return *this;
}

String& String::append(const String& text)
{
    if (m_buffer == nullptr)
        return *this = text;
    if (text.m_buffer == nullptr)
        return *this;
    if (this == &text)
        return append(String(text)); // keeps the units while the buffer is replaced
    std::memcpy(extend(text.size()), text.getUCS2Buffer(), text.size() * sizeof(unsigned short));
    return *this;
}

void String::reserve(unsigned int units)
{
    if (m_buffer == nullptr || m_buffer->capacity < units || m_buffer->count.load(std::memory_order_acquire) != 1)
        replaceBuffer(std::max(units, size()));
}

void String::clear() noexcept
{
    release(m_buffer);
    m_buffer = nullptr;
}

std::string String::toUtf8() const
{
    const unsigned short* const text = getUCS2Buffer();
    std::string out;
    out.reserve(size());
    for (unsigned int i = 0; i < size(); ++i)
    {
        char32_t point = text[i];
        if (isHighSurrogate(point) && i + 1 < size() && isLowSurrogate(text[i + 1]))
            point = 0x10000 + ((point - 0xD800) << 10) + (text[++i] - 0xDC00u);
        else if (isHighSurrogate(point) || isLowSurrogate(point))
            point = replacement;
        appendUtf8(out, point);
    }
    return out;
}

int String::compareNoCase(const String& left, const String& right) noexcept
{
    if (left.m_buffer == right.m_buffer)
        return 0;
    const unsigned short* const a = left.getUCS2Buffer();
    const unsigned short* const b = right.getUCS2Buffer();
    if (left.size() == right.size() && std::memcmp(a, b, left.size() * sizeof(unsigned short)) == 0)
        return 0; // by far the most frequent answer, and the fastest way to it
    const unsigned int common = left.size() < right.size() ? left.size() : right.size();
    unsigned int i = 0;
    while (common - i >= unitsOfWord && sameButForCase(wordAt(a + i), wordAt(b + i)))
        i += unitsOfWord;
    for (; i < common; ++i)
    {
        if (folded(a[i]) != folded(b[i]))
            return folded(a[i]) < folded(b[i]) ? -1 : 1;
    }
    if (left.size() == right.size())
        return 0;
    return left.size() < right.size() ? -1 : 1;
}

/// Whether two texts of one size differ at most in the case of letters.
bool String::hasSameUnits(const String& left, const String& right) noexcept
{
    const unsigned short* const a = left.getUCS2Buffer();
    const unsigned short* const b = right.getUCS2Buffer();
    std::size_t rest = left.size();
    for (; rest >= unitsOfWord; rest -= unitsOfWord)
    {
        if (!sameButForCase(wordAt(a + rest - unitsOfWord), wordAt(b + rest - unitsOfWord)))
            return false;
    }
    for (; rest > 0; --rest)
    {
        if (folded(a[rest - 1]) != folded(b[rest - 1]))
            return false;
    }
    return true;
}

unsigned int String::hashNoCase(const String& text) noexcept
{
    return hashOfUnits(text.getUCS2Buffer(), text.size(), caseBit * eachUnit);
}

String String::subString(unsigned int start, unsigned int length) const
{
    String result;
    if (start >= size() || length == 0)
        return result;
    const unsigned int present = size() - start;
    result.m_buffer = copyOf(getUCS2Buffer() + start, length < present ? length : present);
    return result;
}

Array<String> String::tokenize(const String& delimiters) const
{
    const unsigned short* const text = getUCS2Buffer();
    Array<String> pieces;
    unsigned int start = 0;
    for (unsigned int i = 0; i <= size(); ++i)
    {
        if (i < size() && !contains(delimiters, text[i]))
            continue;
        if (i > start)
            pieces.append(subString(start, i - start));
        start = i + 1;
    }
    return pieces;
}

String::Buffer* String::allocate(std::size_t capacity)
{
    if (capacity > largestText)
        throw std::length_error("qor::String: string too long");
    void* const memory = ::operator new(sizeof(Buffer) + (capacity + 1) * sizeof(unsigned short));
    return ::new (memory) Buffer{{1}, 0, static_cast<unsigned int>(capacity)};
}

void String::deallocate(Buffer* buffer) noexcept
{
    ::operator delete(buffer);
}

String::Buffer* String::copyOf(const unsigned short* text, std::size_t size)
{
    if (size == 0)
        return nullptr;
    Buffer* const buffer = allocate(size);
    std::memcpy(buffer->text(), text, size * sizeof(unsigned short));
    buffer->text()[size] = 0;
    buffer->size = static_cast<unsigned int>(size);
    return buffer;
}

String::Buffer* String::widened(const char* text)
{
    const std::size_t size = text == nullptr ? 0 : std::strlen(text);
    if (size == 0)
        return nullptr;
    Buffer* const buffer = allocate(size);
    for (std::size_t i = 0; i <= size; ++i)
        buffer->text()[i] = static_cast<unsigned char>(text[i]);
    buffer->size = static_cast<unsigned int>(size);
    return buffer;
}

/// Makes the string @p units longer, in a buffer that is not shared. @return where the caller writes the new units
unsigned short* String::extend(std::size_t units)
{
    const std::size_t oldSize = size();
    const std::size_t newSize = oldSize + units;
    const bool own = m_buffer != nullptr && m_buffer->count.load(std::memory_order_acquire) == 1;
    if (!own || m_buffer->capacity < newSize)
    {
        const std::size_t roomy = std::max(smallestCapacity, oldSize == 0 ? newSize : 2 * newSize);
        replaceBuffer(std::max(newSize, std::min(roomy, largestText)));
    }
    m_buffer->text()[newSize] = 0;
    m_buffer->size = static_cast<unsigned int>(newSize);
    return m_buffer->text() + oldSize;
}

/// Puts the units into a buffer of its own with room for @p capacity of them, which is not less than the size.
void String::replaceBuffer(std::size_t capacity)
{
    Buffer* const larger = allocate(capacity);
    std::memcpy(larger->text(), getUCS2Buffer(), (size() + std::size_t{1}) * sizeof(unsigned short));
    larger->size = size();
    release(m_buffer);
    m_buffer = larger;
}

String operator+(const char* left, const String& right)
{
    String result(left);
    result.append(right);
    return result;
}
}
