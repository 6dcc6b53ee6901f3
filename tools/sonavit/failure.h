/// How a command ends that cannot do what it was asked for.
#pragma once

#include <stdexcept>
#include <string>

namespace sonavit
{
/// What the program returns to its caller.
enum ExitCode
{
    exitDone = 0,
    exitFailed = 1, ///< an operation failed
    exitUsage = 2   ///< the command line makes no sense or names something that does not exist
};

/// An operation that failed; what() is one sentence without a full stop.
class OperationFailure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Arguments that make no sense, or that name something that does not exist; what() is one sentence without a full
/// stop.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
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
