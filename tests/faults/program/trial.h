/// @file
/// A command line of the program, run while calls of the platform fail, and judged.
#pragma once

#include "tests/faults/engine/run.h"
#include "tests/faults/program/verbs.h"

#include <optional>
#include <string>
#include <vector>

namespace faults::program
{
/// What a call of the program printed, and its exit code.
struct Printed
{
    int code = -1;
    std::string out;
    std::string err;
};

/// Runs one command line on one machine, again and again, each time from the beginning.
class VerbTrial
{
public:
    VerbTrial(sim::Machine machine, Names names, CommandLine line, std::vector<std::string> words);

    /// Runs it with @p faults, and reports what is wrong. The first call, without any, shows what is right.
    Record perform(std::vector<Fault> faults);

private:
    Printed call(sim::Simulation& simulation, const std::vector<std::string>& words) const;
    void tryAgain(Run& run) const;

    sim::Machine m_machine;
    Names m_names;
    CommandLine m_line;
    std::vector<std::string> m_words;
    std::optional<Printed> m_clean;
};
}
