#include "tests/faults/engine/report.h"

#include <algorithm>
#include <ostream>
#include <utility>

namespace faults
{
Report::Report(std::vector<Part> parts, std::ostream& output) : m_parts(std::move(parts)), m_output(output)
{
    for (const Part& part : m_parts)
        m_uses[part.name].resize(part.excuses.size());
}

void Report::onCalls(const std::string& part, const Job& job, std::size_t calls, std::size_t tried)
{
    Tally& tally = m_tallies[part];
    ++tally.jobs;
    tally.calls += calls;
    tally.tried += tried;
    Extent& extent = m_extents[part][job.machine];
    extent.calls += calls;
    extent.tried += tried;
}

void Report::onRun(const Place& place, std::size_t failures, const std::vector<Finding>& findings)
{
    Tally& tally = m_tallies[place.part];
    tally.runs += failures > 0 ? 1 : 0;
    tally.failures += failures;
    noteVisits(place);
    bool isExcusedRun = false;
    for (const Finding& finding : findings)
    {
        if (isExcused(place, finding))
        {
            isExcusedRun = true;
            continue;
        }
        ++tally.of(finding.kind);
        tell(place, finding);
    }
    tally.excused += isExcusedRun ? 1 : 0;
}

const std::vector<Excuse>& Report::excusesOf(const std::string& part) const
{
    static const std::vector<Excuse> none;
    const auto known = std::find_if(m_parts.begin(), m_parts.end(), [&](const Part& p) { return p.name == part; });
    return known == m_parts.end() ? none : known->excuses;
}

void Report::noteVisits(const Place& place)
{
    const std::vector<Excuse>& all = excusesOf(place.part);
    for (std::size_t i = 0; i < all.size(); ++i)
        m_uses[place.part][i].visits += isAbout(all[i], place) ? 1 : 0;
}

bool Report::isExcused(const Place& place, const Finding& finding)
{
    const std::vector<Excuse>& all = excusesOf(place.part);
    for (std::size_t i = 0; i < all.size(); ++i)
    {
        if (!excuses(all[i], place, finding))
            continue;
        ++m_uses[place.part][i].findings;
        return true;
    }
    return false;
}

void Report::tell(const Place& place, const Finding& finding)
{
    constexpr std::size_t enough = 3;
    const std::size_t told = m_told[place.part + "\t" + place.operation + "\t" + nameOf(finding.kind)]++;
    if (told > enough)
        return;
    if (told == enough)
    {
        m_output << place.part << " " << place.operation << ": more of the kind \"" << nameOf(finding.kind) << "\"\n";
        return;
    }
    const std::size_t colon = place.run.find(':');
    m_output << place.part << " " << place.operation << " on " << place.machine << ": " << nameOf(finding.kind) << "\n"
             << "    " << place.detail << "\n"
             << "    " << finding.text << "\n";
    if (colon != std::string::npos)
        m_output << "    again: sonavit-faults " << place.part << " --machine '" << place.machine << "' --operation '"
                 << place.operation << "' --call " << place.run.substr(0, colon) << " --mode "
                 << place.run.substr(colon + 1) << "\n";
    m_output.flush();
}

void Report::conclude(const std::string& part, bool isWhole)
{
    for (const auto& [machine, extent] : m_extents[part])
    {
        if (extent.tried != extent.calls)
            m_output
                << part << " on " << machine << ": " << grouped(extent.tried) << " of " << grouped(extent.calls)
                << " calls fail, those at equal distances and on small machines the first and the last of each kind\n";
    }
    if (isWhole)
        tellNeedlessExcuses(part);
    m_output << part << ": " << grouped(m_tallies[part].jobs) << " operations on machines, "
             << m_tallies[part].sentence() << "\n";
}

void Report::tellNeedlessExcuses(const std::string& part)
{
    const std::vector<Excuse>& all = excusesOf(part);
    for (std::size_t i = 0; i < all.size(); ++i)
    {
        const Excuse& excuse = all[i];
        const Use& use = m_uses[part][i];
        if (use.findings > 0 || (use.visits == 0 && !hasFailedAllCallsOf(part, excuse.machine)))
            continue;
        ++m_needless;
        m_output << part << ": an excuse that no run needs: " << excuse.operation << " on " << excuse.machine << ", "
                 << excuse.run << ", " << excuse.detail << ", " << nameOf(excuse.kind) << "\n";
    }
}

bool Report::hasFailedAllCallsOf(const std::string& part, const std::string& machines) const
{
    const auto extents = m_extents.find(part);
    if (extents == m_extents.end())
        return true;
    return std::all_of(extents->second.begin(), extents->second.end(),
                       [&](const auto& extent)
                       { return !isLike(extent.first, machines) || extent.second.tried == extent.second.calls; });
}

Tally Report::total() const
{
    Tally total;
    for (const auto& [part, tally] : m_tallies)
        total += tally;
    return total;
}
}
