/// @file
/// An operation of the client layer, performed while calls of the platform fail, and judged.
#pragma once

#include "tests/faults/client/operations.h"
#include "tests/faults/engine/run.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace faults::client
{
/// Performs one operation on one machine, again and again, each time from the beginning.
class ClientTrial
{
public:
    ClientTrial(sim::Machine machine, std::shared_ptr<const Targets> targets, Operation operation);

    /// Performs it with @p faults, and reports what is wrong. The first call, without any, shows what is right.
    Record perform(std::vector<Fault> faults);

private:
    void use(Run& run, Stage& stage);
    void judge(Run& run, const Answer& answer, const Facts& truth, const Facts& former) const;
    Facts machineNow(Stage& stage) const;
    void tryAgain(Run& run, Stage& stage) const;
    /// @param kept listeners, before
    void judgeEnd(Run& run, Stage& stage, std::size_t kept) const;

    sim::Machine m_machine;
    std::shared_ptr<const Targets> m_targets;
    Operation m_operation;
    std::optional<Answer> m_clean;
};
}
