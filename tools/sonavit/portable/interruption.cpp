#include "tools/sonavit/interruption.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>

namespace sonavit::program
{
namespace
{
constexpr std::array<int, 5> requests = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

std::atomic<int> noted = 0; ///< the first signal; 0 for none
std::array<struct sigaction, requests.size()> actionsBefore;
std::array<int, 2> wakePipe = {-1, -1}; ///< the handler writes, wait() polls

static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may use it");

void note(int signal)
{
    int none = 0;
    noted.compare_exchange_strong(none, signal);
}

/// The signal may arrive on any thread; the pipe wakes the one that waits.
extern "C" void noteSignal(int signal)
{
    const int errorBefore = errno;
    note(signal);
    const char mark = 0;
    const ssize_t written = write(wakePipe[1], &mark, 1); // a full pipe wakes as well
    static_cast<void>(written);
    errno = errorBefore;
}

void openWakePipe()
{
    if (pipe(wakePipe.data()) != 0)
        return; // a signal that arrives on another thread then ends the wait late
    for (const int end : wakePipe)
    {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
}

void closeWakePipe()
{
    for (int& end : wakePipe)
    {
        if (end >= 0)
            close(end);
        end = -1;
    }
}

int pollTime(std::chrono::steady_clock::duration left)
{
    const auto whole = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    return static_cast<int>(std::clamp<decltype(whole)>(whole, 0, INT_MAX));
}
}

Interruption::Interruption()
{
    noted = 0;
    openWakePipe();
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < requests.size(); ++i)
    {
        sigaction(requests[i], nullptr, &actionsBefore[i]);
        if (actionsBefore[i].sa_handler != SIG_IGN)
            sigaction(requests[i], &action, nullptr);
    }
}

Interruption::~Interruption()
{
    for (std::size_t i = 0; i < requests.size(); ++i)
        sigaction(requests[i], &actionsBefore[i], nullptr);
    closeWakePipe();
}

bool Interruption::wait(std::chrono::milliseconds duration)
{
    const auto end = std::chrono::steady_clock::now() + duration;
    // A pipe without a reader reports an error, even if none is asked for.
    std::array<pollfd, 2> events = {{{wakePipe[0], POLLIN, 0}, {STDOUT_FILENO, 0, 0}}};
    while (noted == 0)
    {
        const auto left = end - std::chrono::steady_clock::now();
        if (left <= std::chrono::steady_clock::duration::zero())
            return false;
        if (poll(events.data(), events.size(), pollTime(left)) <= 0)
            continue;
        if ((events[1].revents & (POLLERR | POLLHUP)) != 0)
            note(SIGPIPE);
        else if (events[1].revents != 0)
            events[1].fd = -1; // standard output is closed from the start
    }
    return true;
}

bool Interruption::isOutputLost()
{
    return noted == SIGPIPE;
}

int Interruption::end()
{
    constexpr int shellOffset = 128;
    const int signal = noted;
    std::signal(signal, SIG_DFL);
    std::raise(signal);
    return shellOffset + signal;
}
}
