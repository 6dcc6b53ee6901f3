#include "tests/faults/engine/supervisor.h"

#include "tests/faults/engine/process.h"

#include <algorithm>
#include <memory>
#include <poll.h>
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
        for (std::optional<std::string> line = m_process->line(); line && !m_hasFoundLoss; line = m_process->line())
            hear(wordsOf(*line));
        if (m_hasFoundLoss)
            goOnBehindLoss();
        else if (!isOpen)
            goOn(Kind::crash, m_process->end());
        else if (m_process->silence() > patience)
        {
            m_process->kill();
            m_process->end();
            m_hasEnded = false;
            goOn(Kind::hang, "no end after " + std::to_string(patience.count()) + " ms");
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
            hearOfLoss();
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

    void hearOfLoss() { (m_assignment.searchesLosses ? m_hasFoundLoss : m_hasLost) = true; }

    /// Later checks would find it again: another process goes on.
    void goOnBehindLoss()
    {
        m_hasFoundLoss = false;
        m_process->kill();
        m_process->end();
        tellLoss();
        ++m_losses;
        m_assignment.from = m_next;
        m_process = nullptr;
        if (m_losses < enoughLosses)
            begin();
    }

    void tellLoss() { m_listener.onRun(m_place, 0, {{Kind::references, "memory is lost:" + m_process->errors()}}); }

    void goOn(Kind kind, const std::string& how)
    {
        if (m_hasEnded && how.empty())
        {
            if (m_assignment.searchesLosses && m_losses == 0)
                tellLoss(); // all runs together lose something, none of them by itself
            m_process = nullptr;
            if (m_hasLost && !m_assignment.searchesLosses)
                searchLosses();
            return;
        }
        m_findings.push_back({kind, (how.empty() ? "the process ended" : how) + m_process->errors()});
        m_process = nullptr;
        const bool wasRunning = m_isRunning;
        endRun(wasRunning ? 1 : 0);
        m_findings.clear();
        m_assignment.from = m_next;
        if (wasRunning && ++m_crashes < enoughCrashes && m_assignment.only.empty())
            begin();
    }

    void searchLosses()
    {
        m_assignment.from = 0;
        m_assignment.searchesLosses = true;
        begin();
    }

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
    bool m_hasLost = false;      ///< some run has lost memory
    bool m_hasFoundLoss = false; ///< it is the latest run
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
