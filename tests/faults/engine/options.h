/// The command line of sonavit-faults.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace faults
{
struct Options
{
    std::vector<std::string> parts; ///< empty: all
    std::string machine;            ///< empty: all; a '*' stands for any text, in `operation` too
    std::string operation;
    std::string run;                   ///< Runs::name(), "12:null"; empty: all
    unsigned processes = 2;            ///< at a time
    std::chrono::seconds patience{60}; ///< for one run
    bool list = false;                 ///< only name the jobs
    bool help = false;                 ///< only print how it is used

    /// Whether the whole of each part is asked for.
    bool isWhole() const { return machine.empty() && operation.empty() && run.empty(); }
};

/// What the program prints if it does not understand its arguments.
extern const char* const usage;

/// @exception std::invalid_argument with a sentence for people
Options parse(const std::vector<std::string>& arguments);
}
