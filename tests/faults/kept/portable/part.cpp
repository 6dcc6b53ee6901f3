// What operations keep, on all machines. Rounds of everything else are in kept_test.
#include "simulator/machine/file/machinefile.h"
#include "tests/faults/engine/runs.h"
#include "tests/faults/kept/judge.h"
#include "tests/faults/kept/machines.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace faults::kept
{
namespace
{
/// One check, without a failing call.
class Check final : public Runs
{
public:
    explicit Check(std::function<std::string()> error) : m_error(std::move(error)) {}

    std::size_t size() const override { return 1; }
    std::string name(std::size_t) const override { return "1:none"; }
    std::string detail(std::size_t) const override { return "no failure"; }
    std::size_t calls() const override { return 0; }
    std::size_t callsTried() const override { return 0; }

    Result run(std::size_t) override
    {
        Result result;
        const std::string error = m_error();
        if (!error.empty())
            result.findings.push_back({faults::Kind::references, error});
        return result;
    }

private:
    std::function<std::string()> m_error;
};

Job jobOf(const std::string& operation, const std::string& machine, std::function<std::string()> error)
{
    return {operation, machine, [error = std::move(error)] { return std::make_unique<Check>(error); }};
}

Part makePart()
{
    Part part = {"kept", {}, {}};
    for (const Row& row : allRows())
    {
        part.jobs.push_back(jobOf(row.operation, "desk", [=] { return errorOf(row, deskMachine()); }));
        for (const std::string& machine : shippedMachines())
            part.jobs.push_back(jobOf(row.operation, machine, [=] { return errorOf(row, sim::findMachine(machine)); }));
    }
    part.jobs.push_back(jobOf("each kind of each row is left", "desk, desktop",
                              [] {
                                  return needlessKinds(allRows(), {deskMachine(), sim::findMachine("desktop")});
                              }));
    return part;
}

const Registration registration(makePart);
}
}
