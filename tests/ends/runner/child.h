/// @file
/// Runs this program once more.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace ends
{
/// The name of the environment variable that tells a process which way it plays.
inline constexpr const char* wayVariable = "SONAVIT_END";

/// How a child process has ended.
struct Outcome
{
    int status = -1; ///< 128 and the number of the signal that has ended it, if one did; Windows' exit code
    bool hasHung = false;
    std::vector<std::string> lines; ///< of its standard output
};

/// Runs this program with @p way in its environment and waits for its end. A child that takes longer than @p patience
/// is terminated. Any thread. Throws std::runtime_error if it cannot be started.
/// @param wrapper the words of a command that runs it, such as {"valgrind", "--quiet"}; on Windows they must be empty
Outcome runChild(const std::string& way, const std::vector<std::string>& wrapper, std::chrono::seconds patience);

/// The lines of @p text, whose last one may lack its end.
std::vector<std::string> linesOf(const std::string& text);
}
