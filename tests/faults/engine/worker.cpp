#include "tests/faults/engine/worker.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#if defined(__SANITIZE_ADDRESS__)
#define SONAVIT_FAULTS_LEAKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SONAVIT_FAULTS_LEAKS 1
#endif
#endif
#ifdef SONAVIT_FAULTS_LEAKS
#include <sanitizer/lsan_interface.h>
#endif

namespace faults
{
namespace
{
class Line
{
public:
    explicit Line(const std::string& word) : m_text(word) {}

    Line& with(const std::string& word)
    {
        m_text.append("\t").append(inOneLine(word));
        return *this;
    }

    void writeTo(int pipe)
    {
        m_text.append("\n");
        std::size_t written = 0;
        while (written < m_text.size())
        {
            const ssize_t count = write(pipe, m_text.data() + written, m_text.size() - written);
            if (count < 0 && errno != EINTR)
                throw std::system_error(errno, std::generic_category(), "the pipe of a worker");
            written += count < 0 ? 0 : static_cast<std::size_t>(count);
        }
    }

private:
    std::string m_text;
};

void perform(Runs& runs, std::size_t index, const Assignment& assignment, int pipe)
{
    Line("run").with(std::to_string(index)).with(runs.name(index)).with(runs.detail(index)).writeTo(pipe);
    const Result result = runs.run(index);
    if (assignment.searchesLosses)
        return;
    for (const Finding& finding : result.findings)
        Line("finding").with(nameOf(finding.kind)).with(finding.text).writeTo(pipe);
    Line("done").with(std::to_string(result.failures)).writeTo(pipe);
}
}

void work(const Job& job, const Assignment& assignment, int pipe)
{
    const std::unique_ptr<Runs> runs = job.prepare();
    Line("calls").with(std::to_string(runs->calls())).with(std::to_string(runs->callsTried())).writeTo(pipe);
    for (std::size_t index = assignment.from; index < std::min(runs->size(), assignment.to); ++index)
    {
        if (assignment.only.empty() || runs->name(index) == assignment.only)
            perform(*runs, index, assignment, pipe);
    }
    if (hasLostMemory())
        Line("lost").writeTo(pipe);
    Line("end").writeTo(pipe);
}

std::string inOneLine(const std::string& text)
{
    std::string line;
    for (const char c : text)
    {
        if (c == '\n')
            line += "\\n";
        else if (c == '\t')
            line += "\\t";
        else if (c == '\\')
            line += "\\\\";
        else
            line += c;
    }
    return line;
}

std::string inSeveralLines(const std::string& text)
{
    std::string lines;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] != '\\' || i + 1 == text.size())
        {
            lines += text[i];
            continue;
        }
        ++i;
        lines += text[i] == 'n' ? '\n' : text[i] == 't' ? '\t' : text[i];
    }
    return lines;
}

bool hasLostMemory()
{
#ifdef SONAVIT_FAULTS_LEAKS
    return __lsan_do_recoverable_leak_check() != 0;
#else
    return false;
#endif
}
}
