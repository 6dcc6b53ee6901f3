/// What a sweep has counted.
#pragma once

#include "tests/faults/engine/finding.h"

#include <array>
#include <cstddef>
#include <string>

namespace faults
{
struct Tally
{
    std::size_t jobs = 0;
    std::size_t runs = 0;     ///< in which a call, or an allocation, did fail
    std::size_t failures = 0; ///< such calls
    std::size_t calls = 0;    ///< of all operations
    std::size_t tried = 0;    ///< of those, the ones that failed by themselves
    std::size_t excused = 0;  ///< runs outside the contract
    std::array<std::size_t, 8> findings = {};

    std::size_t& of(Kind kind) { return findings.at(static_cast<std::size_t>(kind)); }
    std::size_t of(Kind kind) const { return findings.at(static_cast<std::size_t>(kind)); }

    /// All but crashes, hangs and references.
    std::size_t wrongResults() const;
    bool isClean() const;
    Tally& operator+=(const Tally& other);

    /// "104,233 runs with a failing call, 0 crashes, 0 hangs, …"
    std::string sentence() const;
};

/// "104,233"
std::string grouped(std::size_t number);
}
