#include "qor/exception.h"

#include "qor/qorvalue.h"

#include <new>
#include <string>

namespace qor
{
namespace
{
template<class Number>
String decimal(Number value)
{
    return QORValue(value).toString(QORValue::nilValue);
}

void appendSize(String& message, const int* numbers)
{
    message.append(decimal(static_cast<unsigned int>(numbers[0])));
}

void appendBounds(String& message, const int* numbers)
{
    message.append(decimal(numbers[2])).append(" not in ");
    message.append(decimal(numbers[0])).append("..").append(decimal(numbers[1]));
}
}

/// The message in both forms.
struct Exception::MadeStrings
{
    String message;
    std::string utf8;
};

Exception::Exception(const String& message) noexcept
    : m_message(message),
      m_start(nullptr),
      m_completion(nullptr),
      m_numbers()
{
}

Exception::Exception(const char* start, Completion completion, int first, int second, int third) noexcept
    : m_start(start),
      m_completion(completion),
      m_numbers{first, second, third}
{
}

Exception::Exception(const Exception& other) noexcept
    : std::exception(other),
      m_message(other.m_message),
      m_start(other.m_start),
      m_completion(other.m_completion),
      m_numbers{other.m_numbers[0], other.m_numbers[1], other.m_numbers[2]},
      m_made(std::atomic_load(&other.m_made))
{
}

Exception& Exception::operator=(const Exception& other) noexcept
{
    std::exception::operator=(other);
    m_message = other.m_message;
    m_start = other.m_start;
    m_completion = other.m_completion;
    for (int i = 0; i < 3; ++i)
        m_numbers[i] = other.m_numbers[i];
    m_made = std::atomic_load(&other.m_made);
    return *this;
}

Exception::~Exception() = default;

const String& Exception::message() const noexcept
{
    if (m_start == nullptr)
        return m_message;
    const std::shared_ptr<const MadeStrings> made = madeStrings();
    return made == nullptr ? m_message : made->message; // m_made keeps the strings alive
}

const char* Exception::what() const noexcept
{
    const std::shared_ptr<const MadeStrings> made = madeStrings();
    if (made != nullptr)
        return made->utf8.c_str();
    return m_start == nullptr ? "" : m_start;
}

/// Makes the strings on first use; null without memory for them.
std::shared_ptr<const Exception::MadeStrings> Exception::madeStrings() const noexcept
{
    std::shared_ptr<const MadeStrings> known = std::atomic_load(&m_made);
    if (known != nullptr)
        return known;
    try
    {
        String message = m_start == nullptr ? m_message : String(m_start);
        if (m_completion != nullptr)
            m_completion(message, m_numbers);
        const auto made = std::make_shared<const MadeStrings>(MadeStrings{message, message.toUtf8()});
        return std::atomic_compare_exchange_strong(&m_made, &known, made) ? made : known; // the first thread's stays
    }
    catch (const std::bad_alloc&)
    {
        return nullptr;
    }
}

AssertionFailure::AssertionFailure(const char* file, unsigned __int64 line, const char* expression) noexcept
    : Exception(expression, nullptr),
      m_file(file),
      m_line(line),
      m_expression(expression)
{
}
AssertionFailure::AssertionFailure(const AssertionFailure& other) noexcept = default;
AssertionFailure::~AssertionFailure() = default;

NullPointer::NullPointer(const String& message) noexcept : Exception(message) {}
NullPointer::NullPointer(unsigned int size) noexcept
    : Exception("Asked for array of size: ", appendSize, static_cast<int>(size))
{
}
NullPointer::NullPointer(const NullPointer& other) noexcept = default;
NullPointer::~NullPointer() = default;

NullPointer NullPointer::ofArray(unsigned int size) noexcept
{
    return NullPointer(size);
}

void NullPointer::throwOfArray(unsigned int size)
{
    throw ofArray(size);
}

IndexOutOfBounds::IndexOutOfBounds(int low, int high, int index) noexcept
    : Exception("index ", appendBounds, low, high, index)
{
}
IndexOutOfBounds::IndexOutOfBounds(const IndexOutOfBounds& other) noexcept = default;
IndexOutOfBounds::~IndexOutOfBounds() = default;

void IndexOutOfBounds::throwOfArray(unsigned int size, unsigned int index)
{
    throw IndexOutOfBounds(0, static_cast<int>(size) - 1, static_cast<int>(index));
}

SerializationFailed::SerializationFailed(const String& message) noexcept : Exception(message) {}
SerializationFailed::SerializationFailed(const SerializationFailed& other) noexcept = default;
SerializationFailed::~SerializationFailed() = default;

HashKeyMissing::HashKeyMissing(const String& key) noexcept : Exception(key) {}
HashKeyMissing::HashKeyMissing(const HashKeyMissing& other) noexcept = default;
HashKeyMissing::~HashKeyMissing() = default;
}
