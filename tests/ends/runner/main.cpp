// Plays ways to end a process, each in a process of its own, and judges them:
//
//   PROGRAM [--way NAME]... [--under COMMAND [WORD...]]
//
//   --way NAME   only this one; without it all
//   --under      runs each process by this command, for example by valgrind; natively only
//
// With SONAVIT_END=NAME in its environment the program plays that way itself. The exit status is 0 if each way has
// ended as it must: with its exit status, with all of its lines and with no other.

#include "tests/ends/runner/child.h"
#include "tests/ends/runner/way.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <mutex>
#include <thread>

using namespace ends;

namespace ends
{
std::string wayOfThisProcess()
{
    const char* const name = std::getenv(wayVariable);
    return name == nullptr ? "" : name;
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();)
    {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}
}

namespace
{
constexpr std::chrono::seconds patience(30);
constexpr std::chrono::seconds patienceUnderCommand(180);
constexpr unsigned atATime = 2;
#if defined(_WIN32)
constexpr bool doesSystemCutLines = true;
#else
constexpr bool doesSystemCutLines = false;
#endif

struct Request
{
    std::vector<std::string> names;
    std::vector<std::string> wrapper;
};

Request requestOf(int count, char** words)
{
    Request request;
    for (int i = 1; i < count; ++i)
    {
        if (std::strcmp(words[i], "--under") == 0 && i + 1 < count)
        {
            request.wrapper.assign(words + i + 1, words + count);
            return request;
        }
        if (std::strcmp(words[i], "--way") != 0 || i + 1 == count)
        {
            std::cerr << "usage: " << words[0] << " [--way NAME]... [--under COMMAND [WORD...]]\n";
            std::exit(2);
        }
        request.names.emplace_back(words[++i]);
    }
    return request;
}

bool isBeginning(const std::vector<std::string>& beginning, const std::vector<std::string>& whole)
{
    return beginning.size() <= whole.size() && std::equal(beginning.begin(), beginning.end(), whole.begin());
}

bool isAsItMustBe(const Way& way, const Outcome& outcome)
{
    const bool areLinesRight =
        way.mayBeCut && doesSystemCutLines ? isBeginning(outcome.lines, way.lines) : outcome.lines == way.lines;
    return !outcome.hasHung && outcome.status == way.status && areLinesRight;
}

void print(const char* title, const std::vector<std::string>& lines)
{
    std::cout << "    " << title << ":\n";
    for (const std::string& line : lines)
        std::cout << "      " << line << "\n";
}

void report(const Way& way, const Outcome& outcome, bool isRight)
{
    std::cout << "  " << way.name << ": " << (isRight ? "as it must" : "FAILED") << std::endl;
    if (isRight)
        return;
    if (outcome.hasHung)
        std::cout << "    it has hung\n";
    std::cout << "    exit status " << outcome.status << " instead of " << way.status << "\n";
    print("expected", way.lines);
    print("printed", outcome.lines);
    std::cout << std::flush;
}

/// Takes ways from the list until there are none left.
class Judge
{
public:
    Judge(const Ways& ways, const Request& request) : m_ways(ways), m_request(request) {}

    void work()
    {
        for (std::size_t index = m_next++; index < m_ways.size(); index = m_next++)
            judge(m_ways[index]);
    }

    unsigned failures() const { return m_failures; }

private:
    void judge(const Way& way)
    {
        Outcome outcome;
        try
        {
            outcome =
                runChild(way.name, m_request.wrapper, m_request.wrapper.empty() ? patience : patienceUnderCommand);
        }
        catch (const std::exception& failure)
        {
            outcome.lines.emplace_back(failure.what());
        }
        const bool isRight = isAsItMustBe(way, outcome);
        const std::lock_guard<std::mutex> lock(m_printing);
        report(way, outcome, isRight);
        m_failures += isRight ? 0 : 1;
    }

    const Ways& m_ways;
    const Request& m_request;
    std::atomic<std::size_t> m_next{0};
    std::mutex m_printing;
    unsigned m_failures = 0;
};

Ways chosenWays(const std::vector<std::string>& names)
{
    Ways ways = allWays();
    if (names.empty())
        return ways;
    const auto isOther = [&](const Way& way) { return std::find(names.begin(), names.end(), way.name) == names.end(); };
    ways.erase(std::remove_if(ways.begin(), ways.end(), isOther), ways.end());
    return ways;
}

int judgeAll(const Request& request)
{
    const Ways ways = chosenWays(request.names);
    Judge judge(ways, request);
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < atATime; ++i)
        threads.emplace_back([&] { judge.work(); });
    for (std::thread& thread : threads)
        thread.join();
    std::cout << ways.size() << " ways, " << judge.failures() << " failed" << std::endl;
    return judge.failures() == 0 && !ways.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

const Way* wayNamed(const Ways& ways, const std::string& name)
{
    const auto found = std::find_if(ways.begin(), ways.end(), [&](const Way& way) { return way.name == name; });
    return found == ways.end() ? nullptr : &*found;
}
}

int main(int count, char** words)
{
    const std::string name = wayOfThisProcess();
    if (name.empty())
        return judgeAll(requestOf(count, words));
    void (*play)() = nullptr;
    {
        const Ways ways = allWays();
        const Way* const way = wayNamed(ways, name);
        if (way == nullptr)
            return 2;
        play = way->play;
    }
    play();
    printLine("ends");
    return EXIT_SUCCESS;
}
