/// @file
/// What is done while memory runs out.
#pragma once

#include "simulator/simulation.h"

#include <memory>
#include <string>
#include <vector>

namespace faults::memory
{
/// Some objects of a program, and what it does with them.
class Subject
{
public:
    Subject() = default;
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;
    virtual ~Subject() noexcept(false) = default; // as the library's objects

    /// The operations, in which memory may run out. Done again, they must do all of it, whatever came of them before.
    virtual void work() = 0;
    /// What the objects know after it.
    virtual std::string answer() = 0;
};

/// Makes the objects that the work needs, with all the memory that they want.
struct Case
{
    const char* name;
    std::unique_ptr<Subject> (*make)(sim::Simulation& simulation);
};

/// A case whose Subject is a class with a constructor for the machine.
template<class S>
Case caseOf(const char* name)
{
    return {name,
            [](sim::Simulation& simulation) -> std::unique_ptr<Subject> { return std::make_unique<S>(simulation); }};
}

/// Those of the object model, by the area that they belong to.
std::vector<Case> discoveryCases();
std::vector<Case> deviceCases();
std::vector<Case> hardwareCases();
std::vector<Case> eventCases();
}
