/// The operations of the object model whose calls fail.
#pragma once

#include "simulator/simulation.h"
#include "tests/faults/engine/run.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace faults::library
{
/// What a failing call changes in the answers of its operation.
struct Effect
{
    std::string call;   ///< "IAudioEndpointVolume::GetMute(*"
    std::string mode;   ///< "fail", "null", or "*" for both
    std::string answer; ///< how the answer begins: "muted "; '*' stands for any text
    std::string value;  ///< what follows; '*' if that is not documented
};

/// One of them.
struct Operation
{
    /// Does the same with the plain client, which calls @p arm before the calls that fail. @return what Run::answer()
    /// must have noted
    using Model =
        std::function<std::vector<std::string>(sim::Simulation& simulation, const std::function<void()>& arm)>;

    std::string name;
    std::function<void(Run&)> perform;
    Model model = nullptr;                           ///< null: none
    std::optional<std::vector<Effect>> effects = {}; ///< all of them; no value: none of the answers is documented
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
