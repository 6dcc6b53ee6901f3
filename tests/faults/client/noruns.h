/// @file
/// A job without runs.
#pragma once

#include "tests/faults/engine/runs.h"

namespace faults::client
{
/// A machine has not what the operation needs.
class NoRuns final : public Runs
{
public:
    std::size_t size() const override { return 0; }
    std::string name(std::size_t) const override { return {}; }
    std::string detail(std::size_t) const override { return {}; }
    Result run(std::size_t) override { return {}; }
    std::size_t calls() const override { return 0; }
    std::size_t callsTried() const override { return 0; }
};
}
