#pragma once

#include "qor/export.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace qor
{
template<class T>
class QOR_SHARED_TYPE Array;

/// String of 16-bit UCS-2 code units, one pointer wide.
///
/// Copies share one reference-counted buffer, which is never changed while it is shared: a copy costs one increment,
/// and an operation that changes a string first makes a buffer of its own. Different objects may be used from different
/// threads even if they share a buffer; one object must be used from one thread at a time.
///
/// Operations that allocate throw std::bad_alloc without memory, and std::length_error if the result would have more
/// than 2,147,483,615 code units; the string is unchanged then.
class QOR_API String
{
public:
    /// The empty string; allocates nothing.
    String() noexcept : m_buffer(nullptr) {}
    String(const String& other) noexcept : m_buffer(other.m_buffer) { retain(m_buffer); }
    String(String&& other) noexcept : m_buffer(other.m_buffer) { other.m_buffer = nullptr; }

    /// Copies a zero-terminated 8-bit string; units above 0x7F are Latin-1. Null gives the empty string.
    String(const char* text);

    /// Copies a zero-terminated UCS-2 string; the caller may free the source right away. Null gives the empty string.
    String(const unsigned short* text);

    ~String() { release(m_buffer); }

    inline String& operator=(const String& other) noexcept;
    inline String& operator=(String&& other) noexcept;
    String& operator=(const char* text);
    String& operator=(const unsigned short* text);

    /// Converts from UTF-8. Characters beyond the basic plane become surrogate pairs, each malformed byte U+FFFD.
    static String fromUtf8(std::string_view utf8);

    /// Appends @p text; null appends nothing. @return this object
    String& append(const char* text);
    String& append(const String& text);
    String& operator+=(const String& text) { return append(text); }

    /// Makes room for @p units code units in a buffer that no copy shares, so that appending up to that size allocates
    /// nothing. A string that has such room is unchanged.
    void reserve(unsigned int units);

    /// Makes this string empty; copies keep their content.
    void clear() noexcept;

    /// Number of code units.
    unsigned int size() const noexcept { return m_buffer == nullptr ? 0 : m_buffer->size; }

    /// The zero-terminated code units, never null; valid until this object is changed or destroyed.
    const unsigned short* getUCS2Buffer() const noexcept { return m_buffer == nullptr ? emptyText : m_buffer->text(); }

    /// Converts to UTF-8; surrogates without a partner become U+FFFD.
    std::string toUtf8() const;

    /// Exact comparison, case included.
    bool operator==(const String& other) const noexcept
    {
        return m_buffer == other.m_buffer ||
               (size() == other.size() &&
                std::memcmp(getUCS2Buffer(), other.getUCS2Buffer(), size() * sizeof(unsigned short)) == 0);
    }
    bool operator!=(const String& other) const noexcept { return !(*this == other); }

    /// Compares and ignores the case of the letters A to Z; all other units are compared exactly.
    /// @return 0 when equal, otherwise -1 or 1
    static int compareNoCase(const String& left, const String& right) noexcept;

    /// Whether compareNoCase() is 0. Takes less time for texts that differ in their sizes or near their ends, as ids
    /// do.
    static bool equalNoCase(const String& left, const String& right) noexcept
    {
        return left.m_buffer == right.m_buffer ||
               (left.size() == right.size() && mayHaveSameEnd(left, right) && hasSameUnits(left, right));
    }

    /// A hash number for tables whose keys are equal by compareNoCase(): equal keys have equal numbers. The number is
    /// the same on all machines of one byte order, but may change from version to version.
    static unsigned int hashNoCase(const String& text) noexcept;

    /// Copy of @p length units from @p start, less what is outside this string.
    String subString(unsigned int start, unsigned int length) const;

    /// Splits at each unit of @p delimiters and drops empty pieces; the empty string has none. Callers include
    /// "qor/array.h".
    Array<String> tokenize(const String& delimiters) const;

private:
    struct Buffer
    {
        std::atomic<unsigned int> count;
        unsigned int size;
        unsigned int capacity;

        /// Room for capacity + 1 units, directly after these fields.
        unsigned short* text() noexcept { return reinterpret_cast<unsigned short*>(this + 1); }
    };

    static inline bool mayHaveSameEnd(const String& left, const String& right) noexcept;
    static bool hasSameUnits(const String& left, const String& right) noexcept;
    static inline void retain(Buffer* buffer) noexcept;
    static inline void release(Buffer* buffer) noexcept;
    static inline bool singleThreaded() noexcept;
    static Buffer* allocate(std::size_t capacity);
    static void deallocate(Buffer* buffer) noexcept;
    static Buffer* copyOf(const unsigned short* text, std::size_t size);
    static Buffer* widened(const char* text);

    unsigned short* extend(std::size_t units);
    void replaceBuffer(std::size_t capacity);

    static const unsigned short emptyText[1];

    Buffer* m_buffer; // null for an empty string without room
};

/// New string: @p left followed by @p right.
QOR_API String operator+(const char* left, const String& right);

/// True as long as the process has only ever had one thread; counting needs no locked instruction then.
inline bool String::singleThreaded() noexcept
{
#if __has_include(<sys/single_threaded.h>)
    return __libc_single_threaded != 0;
#else
    return false;
#endif
}

inline void String::retain(Buffer* buffer) noexcept
{
    if (buffer == nullptr)
        return;
    if (singleThreaded())
        buffer->count.store(buffer->count.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    else
        buffer->count.fetch_add(1, std::memory_order_relaxed);
}

inline void String::release(Buffer* buffer) noexcept
{
    if (buffer == nullptr)
        return;
    const unsigned int count = buffer->count.load(std::memory_order_acquire);
    if (count == 1)
        deallocate(buffer); // the only owner: no other thread can take a reference meanwhile
    else if (singleThreaded())
        buffer->count.store(count - 1, std::memory_order_relaxed);
    else if (buffer->count.fetch_sub(1, std::memory_order_acq_rel) == 1)
        deallocate(buffer);
}

/// False if the last twelve units of two texts of one size differ by more than case; they are read four at a time.
inline bool String::mayHaveSameEnd(const String& left, const String& right) noexcept
{
    constexpr std::uint64_t caseBits = 0x0020002000200020ULL;
    if (left.size() < 12)
        return true;
    const unsigned short* const leftEnd = left.getUCS2Buffer() + left.size();
    const unsigned short* const rightEnd = right.getUCS2Buffer() + right.size();
    for (int units = 4; units <= 12; units += 4)
    {
        std::uint64_t leftWord = 0;
        std::uint64_t rightWord = 0;
        std::memcpy(&leftWord, leftEnd - units, sizeof(leftWord));
        std::memcpy(&rightWord, rightEnd - units, sizeof(rightWord));
        if (((leftWord ^ rightWord) & ~caseBits) != 0)
            return false;
    }
    return true;
}

inline String& String::operator=(const String& other) noexcept
{
    retain(other.m_buffer); // first, so that assigning a string to itself cannot free it
    release(m_buffer);
    m_buffer = other.m_buffer;
    return *this;
}

inline String& String::operator=(String&& other) noexcept
{
    Buffer* const old = m_buffer;
    m_buffer = other.m_buffer;
    other.m_buffer = old;
    return *this;
}
}
