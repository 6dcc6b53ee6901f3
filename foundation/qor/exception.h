/// The exceptions of the library. They mark programming errors and exhausted memory, never a failing platform call;
/// all are thrown by value and derive directly from qor::Exception.
#pragma once

#include "qor/export.h"
#include "qor/integers.h"
#include "qor/string.h"

#include <exception>
#include <memory>

namespace qor
{
/// Base of the family; a handler for it receives every exception of the library.
///
/// Constructing one from a string and copying one need no memory: the strings are shared, and UTF-8 is made when what()
/// asks for it. Several threads may ask the same object.
class QOR_API Exception : public std::exception
{
public:
    explicit Exception(const String& message) noexcept;
    Exception(const Exception& other) noexcept;
    Exception& operator=(const Exception& other) noexcept;
    ~Exception() override;

    /// What happened; valid until this object is destroyed or assigned. Throws nothing: the message is empty if it has
    /// still to be made and there is no memory for it. A later call tries again.
    const String& message() const noexcept;

    /// message() as UTF-8, equally valid. Without memory for it, the part of the message that needs none.
    const char* what() const noexcept override;

protected:
    /// For a failure to get memory: needs none itself, as the message is made when it is asked for.
    /// @param start literal with which the message starts
    /// @param number follows in decimal digits
    Exception(const char* start, unsigned int number) noexcept;

private:
    struct Text;

    std::shared_ptr<const Text> text() const noexcept;

    String m_message;    // empty if m_start is set
    const char* m_start; // null if the message was given
    unsigned int m_number;
    mutable std::shared_ptr<const Text> m_text; // null until it is asked for; read and stored atomically
};

/// A precondition that does not hold. The message is the expression.
class QOR_API AssertionFailure : public Exception
{
public:
    /// @param file source file of the check, a literal; this and @p expression are not copied
    /// @param line source line of the check, not of a throw below it
    /// @param expression the precondition as the log and callers know it, a literal
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

/// Memory that cannot be allocated, or a size that is never allocated.
class QOR_API NullPointer : public Exception
{
public:
    explicit NullPointer(const String& message) noexcept;

    /// For the block of an array: "Asked for array of size: " followed by @p size. Needs no memory.
    static NullPointer ofArray(unsigned int size) noexcept;

    NullPointer(const NullPointer& other) noexcept;
    ~NullPointer() override;

private:
    NullPointer(const char* start, unsigned int number) noexcept;
};

/// An access with an invalid index. The message is "index I not in L..H".
class QOR_API IndexOutOfBounds : public Exception
{
public:
    /// @param low smallest valid index
    /// @param high largest valid index, -1 if there is none
    /// @param index the requested index; an unsigned one from 0x80000000 on is passed as a negative number
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

/// An object that cannot be serialized, or XML that cannot be read.
class QOR_API SerializationFailed : public Exception
{
public:
    explicit SerializationFailed(const String& message) noexcept;
    SerializationFailed(const SerializationFailed& other) noexcept;
    ~SerializationFailed() override;
};

/// A key that a table does not contain. The message is the key.
class QOR_API HashKeyMissing : public Exception
{
public:
    explicit HashKeyMissing(const String& key) noexcept;
    HashKeyMissing(const HashKeyMissing& other) noexcept;
    ~HashKeyMissing() override;

    const String& key() const noexcept { return message(); }
};
}
