/// Counts what a sweep finds, and prints it.
#pragma once

#include "tests/faults/engine/runs.h"
#include "tests/faults/engine/supervisor.h"
#include "tests/faults/engine/tally.h"

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace faults
{
class Report final : public Listener
{
public:
    /// Findings go to @p output as they come: the first few of each operation and kind in full.
    Report(std::vector<Part> parts, std::ostream& output);

    void onCalls(const std::string& part, const Job& job, std::size_t calls, std::size_t tried) override;
    void onRun(const Place& place, std::size_t failures, const std::vector<Finding>& findings) override;

    /// One line for each machine on which not all calls failed, one with the counts of the part.
    /// @param isWhole whether all its jobs have run: then each excuse must have been needed, unless it is about calls
    ///        that were not among those that failed
    void conclude(const std::string& part, bool isWhole);

    Tally total() const;
    bool isClean() const { return total().isClean() && m_needless == 0; }

private:
    struct Extent
    {
        std::size_t calls = 0;
        std::size_t tried = 0;
    };

    /// What an excuse was good for.
    struct Use
    {
        std::size_t visits = 0; ///< runs that it is about
        std::size_t findings = 0;
    };

    const std::vector<Excuse>& excusesOf(const std::string& part) const;
    void noteVisits(const Place& place);
    bool isExcused(const Place& place, const Finding& finding);
    void tell(const Place& place, const Finding& finding);
    void tellNeedlessExcuses(const std::string& part);
    bool hasFailedAllCallsOf(const std::string& part, const std::string& machines) const;

    std::vector<Part> m_parts;
    std::map<std::string, std::vector<Use>> m_uses; ///< of each part's excuses
    std::ostream& m_output;
    std::map<std::string, Tally> m_tallies;
    std::map<std::string, std::map<std::string, Extent>> m_extents; ///< by part and machine
    std::map<std::string, std::size_t> m_told;
    std::size_t m_needless = 0;
};
}
