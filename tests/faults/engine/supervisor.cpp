#include "tests/faults/engine/supervisor.h"

#include "tests/faults/engine/process.h"

#include <poll.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <utility>

namespace faults
{
namespace
{
std::vector<std::string> wordsOf(const std::string& line)
{
    std::vector<std::string> words;
    std::istringstream stream(line);
    for (std::string word; std::getline(stream, word, '\t');)
        words.push_back(inSeveralLines(word));
    words.resize(std::max<std::size_t>(words.size(), 4));
    return words;
}

/// A task from its first process to its last.
class Work
{
public:
    Work(const Task& task, Listener& listener, std::string only) : m_task(task), m_listener(listener)
    {
        m_assignment.only = std::move(only);
        begin();
    }

    bool isDone() const { return m_process == nullptr; }
    int pipe() const { return m_process->pipe(); }

    /// Takes what has come, and goes on behind a run that has ended the process.
    void advance(std::chrono::milliseconds patience)
    {
        const bool isOpen = m_process->read();
        for (std::optional<std::string> line = m_process->line(); line; line = m_process->line())
            hear(wordsOf(*line));
        if (!isOpen)
        {
            const std::string how = m_process->end();
            endProcess(m_hasEnded && how.empty() ? std::nullopt : std::optional<Kind>(Kind::crash), how);
        }
        else if (m_process->silence() > patience)
        {
            m_process->kill();
            m_process->end();
            endProcess(Kind::hang, "no end after " + std::to_string(patience.count()) + " ms");
        }
    }

private:
    static constexpr std::size_t enoughCrashes = 2000; ///< of one job
    static constexpr std::size_t enoughLosses = 5;

    void begin()
    {
        m_hasEnded = false;
        m_isRunning = false;
        m_place = {m_task.part, m_task.job.operation, m_task.job.machine, "preparation", "before the first run"};
        m_process = std::make_unique<Process>(m_task.job, m_assignment);
    }

    void hear(const std::vector<std::string>& words)
    {
        if (words[0] == "calls" && m_assignment.from == 0 && !m_assignment.searchesLosses)
            m_listener.onCalls(m_task.part, m_task.job, std::stoul(words[1]), std::stoul(words[2]));
        else if (words[0] == "run")
            beginRun(words);
        else if (words[0] == "finding")
            m_findings.push_back({kindNamed(words[1]), words[2]});
        else if (words[0] == "done")
            endRun(std::stoul(words[1]));
        else if (words[0] == "lost")
            m_hasLost = m_hasEverLost = true;
        else if (words[0] == "end")
            m_hasEnded = true;
    }

    void beginRun(const std::vector<std::string>& words)
    {
        m_next = std::stoul(words[1]) + 1;
        m_place.run = words[2];
        m_place.detail = words[3];
        m_findings.clear();
        m_isRunning = true;
    }

    void endRun(std::size_t failures)
    {
        m_isRunning = false;
        m_listener.onRun(m_place, failures, m_findings);
    }

    /// @param kind how the process has ended before its time; no value: it has not
    void endProcess(std::optional<Kind> kind, const std::string& how)
    {
        const std::string errors = m_process->errors();
        m_process = nullptr;
        if (m_assignment.searchesLosses)
            goOnSearching(kind.has_value(), errors);
        else if (kind)
            goOnBehind(*kind, (how.empty() ? "the process ended" : how) + errors);
        else if (m_hasLost)
            beginSearch({{0, m_next}});
        else if (!m_unsearched.empty())
            beginSearch(m_unsearched);
    }

    void goOnBehind(Kind kind, const std::string& how)
    {
        const bool wasRunning = m_isRunning;
        m_findings.push_back({kind, how});
        endRun(wasRunning ? 1 : 0);
        m_findings.clear();
        if (wasRunning && m_assignment.from < m_next - 1)
            m_unsearched.emplace_back(m_assignment.from, m_next - 1);
        m_assignment.from = m_next;
        if (wasRunning && ++m_crashes < enoughCrashes && m_assignment.only.empty())
            begin();
    }

    // A check for lost memory takes long, and a process makes one at its end: the runs that lose some are looked for by
    // halves. A process that has crashed has made none, so the runs before the crash are made again.

    void beginSearch(std::vector<std::pair<std::size_t, std::size_t>> suspects)
    {
        m_assignment.searchesLosses = true;
        m_suspects = std::move(suspects);
        searchNext();
    }

    void searchNext()
    {
        if (m_suspects.empty() || m_losses >= enoughLosses)
        {
            if (m_hasEverLost && m_losses == 0)
                tellLoss("memory is lost by several runs together");
            return;
        }
        m_assignment.from = m_suspects.back().first;
        m_assignment.to = m_suspects.back().second;
        m_suspects.pop_back();
        m_hasLost = false;
        begin();
    }

    void goOnSearching(bool hasCrashed, const std::string& errors)
    {
        const auto [from, to] = std::pair(m_assignment.from, m_assignment.to);
        if (hasCrashed && m_isRunning) // which has been told before
        {
            suspect(m_next, to);
            suspect(from, m_next - 1);
        }
        else if (m_hasLost && to - from == 1)
        {
            tellLoss("memory is lost:" + errors);
            ++m_losses;
        }
        else if (m_hasLost)
        {
            suspect(from + (to - from) / 2, to);
            suspect(from, from + (to - from) / 2);
        }
        searchNext();
    }

    void suspect(std::size_t from, std::size_t to)
    {
        if (from < to)
            m_suspects.emplace_back(from, to);
    }

    void tellLoss(const std::string& text) { m_listener.onRun(m_place, 0, {{Kind::references, text}}); }

    const Task& m_task;
    Listener& m_listener;
    Assignment m_assignment;
    std::unique_ptr<Process> m_process;
    Place m_place;
    std::vector<Finding> m_findings;
    std::size_t m_next = 0;
    std::size_t m_crashes = 0;
    std::size_t m_losses = 0;
    bool m_isRunning = false;
    bool m_hasEnded = false;
    bool m_hasEverLost = false;
    bool m_hasLost = false;                                        ///< some run of this process has lost memory
    std::vector<std::pair<std::size_t, std::size_t>> m_suspects;   ///< from and to
    std::vector<std::pair<std::size_t, std::size_t>> m_unsearched; ///< of processes that have crashed
};

void waitForAny(const std::vector<std::unique_ptr<Work>>& works)
{
    constexpr int milliseconds = 200;
    std::vector<pollfd> ends;
    ends.reserve(works.size());
    for (const auto& work : works)
        ends.push_back({work->pipe(), POLLIN, 0});
    poll(ends.data(), ends.size(), milliseconds);
}
}

Supervisor::Supervisor(Listener& listener, unsigned processes, std::chrono::milliseconds patience, std::string only)
    : m_listener(listener),
      m_processes(processes),
      m_patience(patience),
      m_only(std::move(only))
{
}

void Supervisor::run(const std::vector<Task>& tasks)
{
    std::vector<std::unique_ptr<Work>> works;
    std::size_t next = 0;
    while (next < tasks.size() || !works.empty())
    {
        while (next < tasks.size() && works.size() < m_processes)
            works.push_back(std::make_unique<Work>(tasks[next++], m_listener, m_only));
        waitForAny(works);
        for (const auto& work : works)
            work->advance(m_patience);
        works.erase(std::remove_if(works.begin(), works.end(), [](const auto& work) { return work->isDone(); }),
                    works.end());
    }
}
}
