/// The exceptions of the library. They mark programming errors and exhausted memory, never a failing platform call;
/// all are thrown by value and derive directly from qor::Exception.
#pragma once

#include "qor/export.h"
#include "qor/integers.h"
#include "qor/string.h"

#include <exception>
#include <memory>
#include <string>

namespace qor
{
/// Base of the family; a handler for it receives every exception of the library. Copies share their texts, so that
/// copying one while it is thrown cannot fail.
class QOR_API Exception : public std::exception
{
public:
    explicit Exception(const String& message);
    Exception(const Exception& other) noexcept;
    Exception& operator=(const Exception& other) noexcept;
    ~Exception() override;

    /// What happened, in the words of the thrower.
    const String& message() const noexcept { return m_message; }

    /// message() as UTF-8; valid while this object lives.
    const char* what() const noexcept override { return m_utf8->c_str(); }

private:
    String m_message;
    std::shared_ptr<const std::string> m_utf8; // never null
};

/// A precondition that does not hold. The message is the expression.
class QOR_API AssertionFailure : public Exception
{
public:
    /// @param file source file of the check, a literal
    /// @param line source line of the check
    /// @param expression the words of the precondition, a literal
    AssertionFailure(const char* file, unsigned __int64 line, const char* expression);
    AssertionFailure(const AssertionFailure& other) noexcept;
    ~AssertionFailure() override;

    const char* file() const noexcept { return m_file; }
    unsigned __int64 line() const noexcept { return m_line; }
    const char* expression() const noexcept { return m_expression; }

private:
    const char* m_file;
    unsigned __int64 m_line;
    const char* m_expression;
};

/// Memory that could not be had, or a size that can never be had.
class QOR_API NullPointer : public Exception
{
public:
    explicit NullPointer(const String& message);
    NullPointer(const NullPointer& other) noexcept;
    ~NullPointer() override;
};

/// An access outside the valid indexes. The message is "index I not in L..H".
class QOR_API IndexOutOfBounds : public Exception
{
public:
    /// @param low smallest valid index
    /// @param high largest valid index, -1 where there is none
    /// @param index the index asked for; indexes from 0x80000000 on read as negative
    IndexOutOfBounds(int low, int high, int index);
    IndexOutOfBounds(const IndexOutOfBounds& other) noexcept;
    ~IndexOutOfBounds() override;

    int low() const noexcept { return m_low; }
    int high() const noexcept { return m_high; }
    int index() const noexcept { return m_index; }

private:
    int m_low;
    int m_high;
    int m_index;
};

/// An object that cannot be written, or text that cannot be read back.
class QOR_API SerializationFailed : public Exception
{
public:
    explicit SerializationFailed(const String& message);
    SerializationFailed(const SerializationFailed& other) noexcept;
    ~SerializationFailed() override;
};

/// A key that a table does not hold. The message is the key.
class QOR_API HashKeyMissing : public Exception
{
public:
    explicit HashKeyMissing(const String& key);
    HashKeyMissing(const HashKeyMissing& other) noexcept;
    ~HashKeyMissing() override;

    const String& key() const noexcept { return message(); }
};
} // namespace qor
