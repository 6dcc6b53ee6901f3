/// How a command reports that it cannot do what the user asks for.
#pragma once

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
    exitInterrupted = 130 ///< the user or the system ended the command; main() ends the process in the same way
};

/// An operation that failed; what() is one sentence without a full stop.
class OperationFailure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Invalid arguments, or a name of something that does not exist; what() is one sentence without a full stop.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The end was requested and the command has put back what it had changed; there is nothing to report.
class Interrupted : public std::exception
{
};

/// The end of a command that did not succeed.
struct Failure
{
    ExitCode code = exitFailed;
    std::string sentence; ///< one line of printable text
};

/// The failure that the exception under way stands for. Call it in a handler.
Failure currentFailure();
}
