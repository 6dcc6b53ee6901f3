/// How a command ends that cannot do what it was asked for.
#pragma once

#include <stdexcept>
#include <string>

namespace sonavit
{
/// What the program leaves to whoever called it.
enum ExitCode
{
    exitDone = 0,
    exitFailed = 1, ///< something that could not be done
    exitUsage = 2   ///< something that was asked for wrongly
};

/// An operation that failed; what() is one sentence without a full stop.
class OperationFailure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Arguments that make no sense, or that name what there is not; what() is one sentence without a full stop.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};
}
