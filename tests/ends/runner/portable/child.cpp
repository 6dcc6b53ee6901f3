#include "tests/ends/runner/child.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <stdexcept>

namespace ends
{
namespace
{
using Clock = std::chrono::steady_clock;

/// Replaces this process, which has been forked, by the child.
[[noreturn]] void become(std::vector<std::string> words, int output)
{
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    if (dup2(output, STDOUT_FILENO) == STDOUT_FILENO)
        execvp(arguments.front(), arguments.data());
    _exit(127);
}

/// Everything up to the end of the output. @return whether that came before @p deadline
bool readAll(int pipe, Clock::time_point deadline, std::string& text)
{
    for (;;)
    {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd waiting = {pipe, POLLIN, 0};
        if (left <= 0 || poll(&waiting, 1, static_cast<int>(left)) <= 0)
            return false;
        std::array<char, 4096> buffer;
        const ssize_t size = read(pipe, buffer.data(), buffer.size());
        if (size <= 0)
            return true;
        text.append(buffer.data(), static_cast<std::size_t>(size));
    }
}

pid_t start(const std::string& way, const std::vector<std::string>& wrapper, int& output)
{
    static std::mutex starting; // the environment is the process's
    const std::lock_guard<std::mutex> lock(starting);
    std::array<int, 2> pipe;
    if (setenv(wayVariable, way.c_str(), 1) != 0 || pipe2(pipe.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    std::vector<std::string> words = wrapper;
    words.push_back(std::filesystem::read_symlink("/proc/self/exe").string());
    const pid_t child = fork();
    if (child == 0)
        become(words, pipe[1]);
    close(pipe[1]);
    output = pipe[0];
    if (child < 0)
        throw std::runtime_error("no process");
    return child;
}
}

Outcome runChild(const std::string& way, const std::vector<std::string>& wrapper, std::chrono::seconds patience)
{
    int output = -1;
    const pid_t child = start(way, wrapper, output);
    Outcome outcome;
    std::string text;
    outcome.hasHung = !readAll(output, Clock::now() + patience, text);
    close(output);
    if (outcome.hasHung)
        kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    outcome.lines = linesOf(text);
    return outcome;
}
}
