#include "tests/faults/engine/process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <sstream>
#include <system_error>

namespace faults
{
namespace
{
[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/// A file without a name.
int nameless()
{
    std::string path = "/tmp/sonavit-faults-XXXXXX";
    const int file = mkostemp(path.data(), O_CLOEXEC);
    if (file < 0)
        fail("a file for errors");
    unlink(path.c_str());
    return file;
}

[[noreturn]] void beWorker(const Job& job, const Assignment& assignment, int pipe, int errors)
{
    dup2(errors, STDERR_FILENO);
    dup2(errors, STDOUT_FILENO);
    int result = 0;
    try
    {
        work(job, assignment, pipe);
    }
    catch (const std::exception& exception)
    {
        std::fprintf(stderr, "ERROR: the worker ends with: %s\n", exception.what());
        result = 1;
    }
    std::fflush(nullptr);
    _exit(result); // the statics of the parent are the parent's
}

bool saysMuch(const std::string& line)
{
    static const std::array<const char*, 6> words = {"ERROR",  "runtime error", "terminate",
                                                     "what()", "SUMMARY",       "    #"};
    for (const char* const word : words)
    {
        if (line.find(word) != std::string::npos)
            return true;
    }
    return false;
}
}

Process::Process(const Job& job, const Assignment& assignment)
    : m_errors(nameless()),
      m_heard(std::chrono::steady_clock::now())
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        fail("a pipe");
    std::fflush(nullptr);
    m_process = fork();
    if (m_process < 0)
        fail("a process");
    if (m_process == 0)
    {
        close(ends[0]);
        beWorker(job, assignment, ends[1], m_errors);
    }
    close(ends[1]);
    m_pipe = ends[0];
    fcntl(m_pipe, F_SETFL, O_NONBLOCK);
}

Process::~Process()
{
    if (m_process > 0)
    {
        kill();
        end();
    }
    close(m_pipe);
    close(m_errors);
}

bool Process::read()
{
    std::array<char, 65536> bytes;
    for (;;)
    {
        const ssize_t count = ::read(m_pipe, bytes.data(), bytes.size());
        if (count == 0)
            return false;
        if (count < 0)
            return errno == EAGAIN || errno == EINTR;
        m_buffer.append(bytes.data(), static_cast<std::size_t>(count));
        m_heard = std::chrono::steady_clock::now();
    }
}

std::optional<std::string> Process::line()
{
    const std::size_t end = m_buffer.find('\n');
    if (end == std::string::npos)
        return std::nullopt;
    std::string line = m_buffer.substr(0, end);
    m_buffer.erase(0, end + 1);
    return line;
}

std::chrono::milliseconds Process::silence() const
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - m_heard);
}

void Process::kill()
{
    ::kill(m_process, SIGKILL);
}

std::string Process::end()
{
    int status = 0;
    while (waitpid(m_process, &status, 0) < 0 && errno == EINTR)
    {
    }
    m_process = -1;
    if (WIFSIGNALED(status))
        return "signal " + std::to_string(WTERMSIG(status));
    return WEXITSTATUS(status) == 0 ? std::string() : "exit " + std::to_string(WEXITSTATUS(status));
}

std::string Process::errors() const
{
    constexpr std::size_t enough = 14;
    std::string all;
    std::array<char, 65536> bytes;
    for (off_t place = 0;;)
    {
        const ssize_t count = pread(m_errors, bytes.data(), bytes.size(), place);
        if (count <= 0 || all.size() > 1'000'000)
            break;
        all.append(bytes.data(), static_cast<std::size_t>(count));
        place += count;
    }
    std::istringstream lines(all);
    std::string some;
    std::size_t count = 0;
    for (std::string line; count < enough && std::getline(lines, line);)
    {
        if (!saysMuch(line))
            continue;
        some.append("\n").append(line);
        ++count;
    }
    return some;
}
}
