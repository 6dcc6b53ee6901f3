/// The operations of the object model whose calls fail.
#pragma once

#include "simulator/simulation.h"
#include "tests/faults/engine/run.h"

#include <functional>
#include <string>
#include <vector>

namespace faults::library
{
/// One of them.
struct Operation
{
    /// Does the same with the plain client, which calls @p arm before the calls that fail. @return what Run::answer()
    /// must have noted
    using Model = std::vector<std::string> (*)(sim::Simulation& simulation, const std::function<void()>& arm);

    std::string name;
    std::function<void(Run&)> perform;
    Model model = nullptr; ///< null: none
};

std::vector<Operation> cardOperations();
std::vector<Operation> eventOperations();
std::vector<Operation> listOperations();
std::vector<Operation> deviceOperations();
std::vector<Operation> topologyOperations();
std::vector<Operation> partOperations();
std::vector<Operation> volumeOperations();

/// All of them.
std::vector<Operation> operations();
}
