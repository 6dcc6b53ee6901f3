#include "tests/faults/kept/judge.h"

#include <algorithm>

namespace faults::kept
{
std::string errorOf(const Row& row, const sim::Machine& machine)
{
    const Balance balance = balanceOf(row, machine);
    const Counts expected = sumOf(balance.explained, row.keeps);
    if (balance.left == expected)
        return {};
    return row.operation + " leaves " + textOf(balance.left) + " instead of " + textOf(expected);
}

std::string needlessKinds(const std::vector<Row>& rows, const std::vector<sim::Machine>& machines)
{
    std::string needless;
    for (const Row& row : rows)
    {
        for (const Kind kind : row.keeps)
        {
            const auto leaves = [&](const sim::Machine& machine)
            { return !balanceOf(row, machine).explained.at(kind).empty(); };
            if (std::none_of(machines.begin(), machines.end(), leaves))
                needless += row.operation + ": " + textOf(kind) + "\n";
        }
    }
    return needless;
}
}
