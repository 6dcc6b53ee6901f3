/// What a part of the sweep offers: jobs, each with its runs.
#pragma once

#include "tests/faults/engine/finding.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace faults
{
/// All runs of one operation on one machine, in an order that does not change from process to process.
class Runs
{
public:
    Runs() = default;
    virtual ~Runs() = default;
    Runs(const Runs&) = delete;
    Runs& operator=(const Runs&) = delete;

    virtual std::size_t size() const = 0;
    /// "CALL:MODE", "12:null", or "12,15:fail,null" for two: what `--call` and `--mode` select.
    virtual std::string name(std::size_t index) const = 0;
    /// What fails in this run, for people and for the table of excuses.
    virtual std::string detail(std::size_t index) const = 0;
    /// Performs the operation on a machine of its own.
    virtual Result run(std::size_t index) = 0;
    /// The number of the operation's calls, or allocations, and of those that fail by themselves in some run.
    virtual std::size_t calls() const = 0;
    virtual std::size_t callsTried() const = 0;
};

/// One operation on one machine.
struct Job
{
    std::string operation;
    std::string machine;
    std::function<std::unique_ptr<Runs>()> prepare; ///< in a process of its own
};

/// "library", "client" and so on.
struct Part
{
    std::string name;
    std::vector<Job> jobs;
    std::vector<Excuse> excuses;
};

/// All parts of the executable, in the order of their names.
std::vector<Part> parts();

/// Makes a part known, from a static object of its source.
class Registration
{
public:
    explicit Registration(Part (*make)());
};
}
