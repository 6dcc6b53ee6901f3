#pragma once

#include "qor/export.h"

#include <atomic>
#include <string>
#include <string_view>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace qor
{
template<class T>
class QOR_SHARED_TYPE Array;

/// Text of 16-bit UCS-2 code units, one pointer wide.
///
/// Copies share one counted buffer that is never changed while shared: a copy costs one increment, and an operation
/// that changes the text first takes a buffer of its own. Different objects may be used from different threads, also
/// when they share a buffer; one object belongs to one thread at a time. Exhausted memory raises std::bad_alloc.
class QOR_API String
{
public:
    /// The empty text; allocates nothing.
    String() noexcept : m_buffer(nullptr) {}
    String(const String& other) noexcept : m_buffer(other.m_buffer) { retain(m_buffer); }
    String(String&& other) noexcept : m_buffer(other.m_buffer) { other.m_buffer = nullptr; }

    /// Copies zero-terminated 8-bit text; units above 0x7F are Latin-1. Null reads as the empty text.
    String(const char* text);

    /// Copies zero-terminated UCS-2 text, so that the source can be freed at once. Null reads as the empty text.
    String(const unsigned short* text);

    ~String() { release(m_buffer); }

    String& operator=(const String& other) noexcept;
    String& operator=(String&& other) noexcept;
    String& operator=(const char* text);
    String& operator=(const unsigned short* text);

    /// Text from UTF-8. Units beyond the basic plane become surrogate pairs, malformed bytes U+FFFD.
    static String fromUtf8(std::string_view utf8);

    /// Adds @p text at the end. @return this object
    String& append(const char* text);
    String& append(const String& text);
    String& operator+=(const String& text) { return append(text); }

    /// Makes the text empty.
    void clear() noexcept;

    /// Number of code units.
    unsigned int size() const noexcept { return m_buffer == nullptr ? 0 : m_buffer->size; }

    /// The zero-terminated text, never null; valid until this object changes or dies.
    const unsigned short* getUCS2Buffer() const noexcept { return m_buffer == nullptr ? emptyText : m_buffer->text(); }

    /// The text as UTF-8; surrogates without a partner become U+FFFD.
    std::string toUtf8() const;

    /// Exact comparison, case included.
    bool operator==(const String& other) const noexcept;
    bool operator!=(const String& other) const noexcept { return !(*this == other); }

    /// Compares without regard to the case of the letters A to Z; other units count as they stand.
    /// @return 0 when equal, otherwise -1 or 1
    static int compareNoCase(const String& left, const String& right) noexcept;

    /// Copy of @p length units from @p start; what lies outside the text is left out.
    String subString(unsigned int start, unsigned int length) const;

    /// The pieces between the units of @p delimiters, without empty ones; the empty text has none. Include
    /// "qor/array.h".
    Array<String> tokenize(const String& delimiters) const;

private:
    struct Buffer
    {
        std::atomic<unsigned int> count;
        unsigned int size;
        unsigned int capacity;

        /// Room for capacity + 1 units, right behind these fields.
        unsigned short* text() noexcept { return reinterpret_cast<unsigned short*>(this + 1); }
    };

    static inline void retain(Buffer* buffer) noexcept;
    static inline void release(Buffer* buffer) noexcept;
    static inline bool singleThreaded() noexcept;
    static Buffer* allocate(std::size_t capacity);
    static void deallocate(Buffer* buffer) noexcept;
    static Buffer* copyOf(const unsigned short* text, std::size_t size);
    static Buffer* widened(const char* text);

    unsigned short* extend(std::size_t units);

    static const unsigned short emptyText[1];

    Buffer* m_buffer; // null for the empty text
};

/// New text: @p left followed by @p right.
QOR_API String operator+(const char* left, const String& right);

/// True while the process has had one thread only, so that counting needs no locked instruction.
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
        deallocate(buffer); // the only owner: nobody can take a share meanwhile
    else if (singleThreaded())
        buffer->count.store(count - 1, std::memory_order_relaxed);
    else if (buffer->count.fetch_sub(1, std::memory_order_acq_rel) == 1)
        deallocate(buffer);
}

inline String& String::operator=(const String& other) noexcept
{
    retain(other.m_buffer); // first, so that assigning a text to itself cannot free it
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
} // namespace qor
