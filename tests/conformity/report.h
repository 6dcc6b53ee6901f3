/// @file
/// Prints what the checks found.
#pragma once

#include "tests/conformity/fact.h"

#include <cstddef>
#include <ostream>
#include <string>

namespace conformity
{
/// How many facts were found to be what.
struct Counts
{
    unsigned agreeing = 0;
    unsigned differing = 0;
    unsigned notTried = 0;

    unsigned tried() const { return agreeing + differing; }
    void add(Verdict verdict);
};

/// Where the findings go, and which.
class Printout
{
public:
    /// @param isBrief whether only the differences are printed
    Printout(std::ostream& out, bool isBrief);

    /// Checks all @p facts on @p system, which is called @p name, and prints each with what is expected, what was found
    /// and who says so, and the numbers at the end, which it returns.
    Counts report(const std::string& name, const Facts& facts, System& system) const;

private:
    void print(std::size_t number, const Fact& fact, const Finding& finding) const;

    std::ostream& m_out;
    const bool m_isBrief;
};
}
