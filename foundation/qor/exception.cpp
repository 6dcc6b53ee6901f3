#include "qor/exception.h"

#include "qor/qorvalue.h"

#include <new>
#include <string>

namespace qor
{
namespace
{
String decimal(int value)
{
    return QORValue(value).toString(QORValue::nilValue);
}

String boundsMessage(int low, int high, int index)
{
    String text("index ");
    return text.append(decimal(index)).append(" not in ").append(decimal(low)).append("..").append(decimal(high));
}
}

struct Exception::Text
{
    String message;
    std::string utf8;
};

Exception::Exception(const String& message) noexcept : m_message(message), m_start(nullptr), m_number(0) {}
Exception::Exception(const char* start, unsigned int number) noexcept : m_start(start), m_number(number) {}

Exception::Exception(const Exception& other) noexcept
    : std::exception(other),
      m_message(other.m_message),
      m_start(other.m_start),
      m_number(other.m_number),
      m_text(std::atomic_load(&other.m_text))
{
}

Exception& Exception::operator=(const Exception& other) noexcept
{
    std::exception::operator=(other);
    m_message = other.m_message;
    m_start = other.m_start;
    m_number = other.m_number;
    m_text = std::atomic_load(&other.m_text);
    return *this;
}

Exception::~Exception() = default;

const String& Exception::message() const noexcept
{
    if (m_start == nullptr)
        return m_message;
    const std::shared_ptr<const Text> made = text();
    return made == nullptr ? m_message : made->message; // this object keeps what text() made
}

const char* Exception::what() const noexcept
{
    const std::shared_ptr<const Text> made = text();
    if (made != nullptr)
        return made->utf8.c_str();
    return m_start == nullptr ? "" : m_start;
}

/// The message in both forms, made on first use; null without memory for it.
std::shared_ptr<const Exception::Text> Exception::text() const noexcept
{
    std::shared_ptr<const Text> known = std::atomic_load(&m_text);
    if (known != nullptr)
        return known;
    try
    {
        const String message =
            m_start == nullptr ? m_message : m_start + QORValue(m_number).toString(QORValue::nilValue);
        const std::shared_ptr<const Text> made = std::make_shared<const Text>(Text{message, message.toUtf8()});
        return std::atomic_compare_exchange_strong(&m_text, &known, made) ? made : known; // the first thread's stays
    }
    catch (const std::bad_alloc&)
    {
        return nullptr;
    }
}

AssertionFailure::AssertionFailure(const char* file, unsigned __int64 line, const char* expression)
    : Exception(expression),
      m_file(file),
      m_line(line),
      m_expression(expression)
{
}
AssertionFailure::AssertionFailure(const AssertionFailure& other) noexcept = default;
AssertionFailure::~AssertionFailure() = default;

NullPointer::NullPointer(const String& message) noexcept : Exception(message) {}
NullPointer::NullPointer(const char* start, unsigned int number) noexcept : Exception(start, number) {}
NullPointer::NullPointer(const NullPointer& other) noexcept = default;
NullPointer::~NullPointer() = default;

NullPointer NullPointer::ofArray(unsigned int size) noexcept
{
    return NullPointer("Asked for array of size: ", size);
}

IndexOutOfBounds::IndexOutOfBounds(int low, int high, int index)
    : Exception(boundsMessage(low, high, index)),
      m_low(low),
      m_high(high),
      m_index(index)
{
}
IndexOutOfBounds::IndexOutOfBounds(const IndexOutOfBounds& other) noexcept = default;
IndexOutOfBounds::~IndexOutOfBounds() = default;

SerializationFailed::SerializationFailed(const String& message) noexcept : Exception(message) {}
SerializationFailed::SerializationFailed(const SerializationFailed& other) noexcept = default;
SerializationFailed::~SerializationFailed() = default;

HashKeyMissing::HashKeyMissing(const String& key) noexcept : Exception(key) {}
HashKeyMissing::HashKeyMissing(const HashKeyMissing& other) noexcept = default;
HashKeyMissing::~HashKeyMissing() = default;
}
