#include "qor/exception.h"

#include "qor/qorvalue.h"

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
} // namespace

Exception::Exception(const String& message)
    : m_message(message),
      m_utf8(std::make_shared<const std::string>(message.toUtf8()))
{
}
Exception::Exception(const Exception& other) noexcept = default;
Exception& Exception::operator=(const Exception& other) noexcept = default;
Exception::~Exception() = default;

AssertionFailure::AssertionFailure(const char* file, unsigned __int64 line, const char* expression)
    : Exception(expression),
      m_file(file),
      m_line(line),
      m_expression(expression)
{
}
AssertionFailure::AssertionFailure(const AssertionFailure& other) noexcept = default;
AssertionFailure::~AssertionFailure() = default;

NullPointer::NullPointer(const String& message) : Exception(message) {}
NullPointer::NullPointer(const NullPointer& other) noexcept = default;
NullPointer::~NullPointer() = default;

IndexOutOfBounds::IndexOutOfBounds(int low, int high, int index)
    : Exception(boundsMessage(low, high, index)),
      m_low(low),
      m_high(high),
      m_index(index)
{
}
IndexOutOfBounds::IndexOutOfBounds(const IndexOutOfBounds& other) noexcept = default;
IndexOutOfBounds::~IndexOutOfBounds() = default;

SerializationFailed::SerializationFailed(const String& message) : Exception(message) {}
SerializationFailed::SerializationFailed(const SerializationFailed& other) noexcept = default;
SerializationFailed::~SerializationFailed() = default;

HashKeyMissing::HashKeyMissing(const String& key) : Exception(key) {}
HashKeyMissing::HashKeyMissing(const HashKeyMissing& other) noexcept = default;
HashKeyMissing::~HashKeyMissing() = default;
} // namespace qor
