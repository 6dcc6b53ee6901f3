/// How a command reports that it cannot do what the user asks for.
#pragma once

#include "sonavit/problem.h"

#include <exception>
#include <stdexcept>
#include <string>

namespace sonavit::program
{
/// The program's exit codes.
enum ExitCode
{
    exitDone = 0,         ///< success
    exitFailed = 1,       ///< an operation failed
    exitUsage = 2,        ///< usage error
    exitNotThere = 3,     ///< what the user names does not exist
    exitInterrupted = 130 ///< the user or the system ended the command; main() ends the process in the same way
};

/// An operation that failed; what() is one sentence without a full stop.
class OperationFailure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// There is no such endpoint, card, control, selector, input or default; what() is one sentence without a full stop.
class NotThere : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Invalid arguments, or a name that fits several things; what() is one sentence without a full stop.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The end was requested and the command has put back what it had changed; there is nothing to report.
class Interrupted : public std::exception
{
};

/// The command has printed its answer, which says what is missing; the program ends with @p code.
class Answered : public std::exception
{
public:
    explicit Answered(ExitCode code) : m_code(code) {}

    ExitCode code() const { return m_code; }

private:
    ExitCode m_code;
};

/// The end of a command that did not succeed.
struct Failure
{
    ExitCode code = exitFailed;
    std::string sentence; ///< one line of printable text
};

/// Throws what @p problem means for the user: NotThere, UsageError or OperationFailure.
/// @param intention begins the sentence: "the volume of Speakers cannot be set"; empty for none
[[noreturn]] void raise(const Problem& problem, const std::string& intention = {});

/// The failure that the exception under way stands for. Call it in a handler.
Failure currentFailure();
}
