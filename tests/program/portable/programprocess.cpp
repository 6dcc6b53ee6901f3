#include "tests/program/portable/programprocess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace support
{
namespace
{
/// The two ends of what the program writes to.
struct Channel
{
    int reading = -1;
    int writing = -1;
};

Channel openPipe()
{
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        throw std::runtime_error("no pipe");
    fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    return {ends[0], ends[1]};
}

Channel openTerminal(unsigned short columns)
{
    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0)
        throw std::runtime_error("no pseudo-terminal");
    const int slave = open(ptsname(master), O_RDWR | O_NOCTTY);
    winsize size{};
    size.ws_row = columns > 0 ? 25 : 0;
    size.ws_col = columns;
    if (slave < 0 || ioctl(slave, TIOCSWINSZ, &size) != 0)
        throw std::runtime_error("no terminal size");
    return {master, slave};
}

[[noreturn]] void becomeProgram(const ProgramStart& start, int output, int errors)
{
    const rlimit noCoreFile{};
    setrlimit(RLIMIT_CORE, &noCoreFile);
    for (const char* const name : {"COLUMNS", "NO_COLOR", "TERM"})
        unsetenv(name);
    for (const auto& [name, value] : start.environment)
        setenv(name.c_str(), value.c_str(), 1);
    for (const int signal : start.ignoredSignals)
        std::signal(signal, SIG_IGN);
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    close(output);
    close(errors);
    std::vector<std::string> words = start.words;
    words.insert(words.begin(), SONAVIT_PROGRAM_PATH);
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    execv(SONAVIT_PROGRAM_PATH, pointers.data());
    _exit(127);
}

std::string withPlainLineEnds(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}
}

ProgramProcess::ProgramProcess(const ProgramStart& start)
{
    const Channel output = start.isOnTerminal ? openTerminal(start.columns) : openPipe();
    const Channel errors = openPipe();
    m_output.descriptor = output.reading;
    m_errors.descriptor = errors.reading;
    m_process = fork();
    if (m_process == 0)
        becomeProgram(start, output.writing, errors.writing);
    ::close(output.writing);
    ::close(errors.writing);
}

ProgramProcess::~ProgramProcess()
{
    close(m_output);
    close(m_errors);
    if (m_process > 0)
    {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
}

bool ProgramProcess::outputShows(const std::string& text)
{
    return readUntil(m_output, text);
}

bool ProgramProcess::errorsShow(const std::string& text)
{
    return readUntil(m_errors, text);
}

void ProgramProcess::send(int signal)
{
    kill(m_process, signal);
}

void ProgramProcess::closeOutput()
{
    close(m_output);
}

int ProgramProcess::end()
{
    while (readMore())
    {
    }
    int status = 0;
    waitpid(m_process, &status, 0);
    m_process = -1;
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

std::string ProgramProcess::output() const
{
    return withPlainLineEnds(m_output.text);
}

std::string ProgramProcess::errors() const
{
    return withPlainLineEnds(m_errors.text);
}

void ProgramProcess::close(Stream& stream)
{
    if (stream.descriptor >= 0)
        ::close(stream.descriptor);
    stream.descriptor = -1;
}

/// Reads what one of the streams has, so that the program never waits for a reader. @return whether a stream is open
bool ProgramProcess::readMore()
{
    std::array<pollfd, 2> events = {{{m_output.descriptor, POLLIN, 0}, {m_errors.descriptor, POLLIN, 0}}};
    if (poll(events.data(), events.size(), -1) <= 0)
        return false;
    if (events[0].revents != 0)
        read(m_output);
    if (events[1].revents != 0)
        read(m_errors);
    return m_output.descriptor >= 0 || m_errors.descriptor >= 0;
}

/// Reading a terminal whose program has ended fails; that is its end.
void ProgramProcess::read(Stream& stream)
{
    std::array<char, 4096> buffer{};
    const ssize_t size = ::read(stream.descriptor, buffer.data(), buffer.size());
    if (size > 0)
        stream.text.append(buffer.data(), static_cast<std::size_t>(size));
    else
        close(stream);
}

bool ProgramProcess::readUntil(const Stream& stream, const std::string& text)
{
    while (stream.text.find(text) == std::string::npos)
    {
        if (stream.descriptor < 0 || !readMore())
            return false;
    }
    return true;
}
}
