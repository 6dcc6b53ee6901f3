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
/// No constructor of the family needs memory, and no copy: strings are shared, and a message that contains numbers and
/// its UTF-8 are made when message() or what() asks for them. Several threads may ask the same object.
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

    /// message() as UTF-8, equally valid. Without memory for it, the literal with which the message starts, as in
    /// AssertionFailure, NullPointer::ofArray() and IndexOutOfBounds; empty if the message was given as a string.
    const char* what() const noexcept override;

protected:
    /// Appends the part of a message that depends on the numbers below.
    using Completion = void (*)(String& message, const int* numbers);

    /// Needs no memory, as the message is made when it is asked for.
    /// @param start literal with which the message starts; null for an empty message
    /// @param completion appends the rest; null if @p start is the whole message
    Exception(const char* start, Completion completion, int first = 0, int second = 0, int third = 0) noexcept;

    const int* numbers() const noexcept { return m_numbers; }

private:
    struct MadeStrings;

    std::shared_ptr<const MadeStrings> madeStrings() const noexcept;

    String m_message;    // empty if m_start is set
    const char* m_start; // null if the message was given
    Completion m_completion;
    int m_numbers[3];
    mutable std::shared_ptr<const MadeStrings> m_made; // null until it is asked for; read and stored atomically
};

/// A precondition that does not hold. The message is the expression.
class QOR_API AssertionFailure : public Exception
{
public:
    /// @param file source file of the check, a literal; this and @p expression are not copied
    /// @param line source line of the check, not of a throw below it
    /// @param expression the precondition as the log and callers know it, a literal
    AssertionFailure(const char* file, unsigned __int64 line, const char* expression) noexcept;
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

    /// Throws ofArray(). Apart, so that the code of each array that allocates stays small.
    [[noreturn]] QOR_COLD static void throwOfArray(unsigned int size);

    NullPointer(const NullPointer& other) noexcept;
    ~NullPointer() override;

private:
    explicit NullPointer(unsigned int size) noexcept;
};

/// An access with an invalid index. The message is "index I not in L..H".
class QOR_API IndexOutOfBounds : public Exception
{
public:
    /// @param low smallest valid index
    /// @param high largest valid index, -1 if there is none
    /// @param index the requested index; an unsigned one from 0x80000000 on is passed as a negative number
    IndexOutOfBounds(int low, int high, int index) noexcept;

    /// Throws the exception of an array of @p size elements: from 0 to @p size - 1. Apart, so that the code of each
    /// checked access stays small.
    [[noreturn]] QOR_COLD static void throwOfArray(unsigned int size, unsigned int index);
    IndexOutOfBounds(const IndexOutOfBounds& other) noexcept;
    ~IndexOutOfBounds() override;

    int low() const noexcept { return numbers()[0]; }
    int high() const noexcept { return numbers()[1]; }
    int index() const noexcept { return numbers()[2]; }
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
