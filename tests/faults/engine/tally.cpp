#include "tests/faults/engine/tally.h"

#include <numeric>

namespace faults
{
std::size_t Tally::wrongResults() const
{
    const std::size_t all = std::accumulate(findings.begin(), findings.end(), std::size_t{0});
    return all - of(Kind::crash) - of(Kind::hang) - of(Kind::references);
}

bool Tally::isClean() const
{
    return std::accumulate(findings.begin(), findings.end(), std::size_t{0}) == 0;
}

Tally& Tally::operator+=(const Tally& other)
{
    jobs += other.jobs;
    runs += other.runs;
    failures += other.failures;
    calls += other.calls;
    tried += other.tried;
    excused += other.excused;
    for (std::size_t i = 0; i < findings.size(); ++i)
        findings[i] += other.findings[i];
    return *this;
}

std::string Tally::sentence() const
{
    return grouped(runs) + " runs with a failing call, " + grouped(of(Kind::crash)) + " crashes, " +
           grouped(of(Kind::hang)) + " hangs, " + grouped(of(Kind::references)) + " unexplained references, " +
           grouped(wrongResults()) + " wrong results, " + grouped(excused) + " outside the contract";
}

std::string grouped(std::size_t number)
{
    std::string text = std::to_string(number);
    for (std::size_t place = text.size(); place > 3;)
    {
        place -= 3;
        text.insert(place, ",");
    }
    return text;
}
}
