#include "client/watching/watcher.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace sonavit::watching
{
namespace
{
using namespace std::chrono_literals;

constexpr auto interval = 1s;
constexpr auto laterInterval = 5s;
constexpr auto later = 1min;

/// What the platform's objects answer when the process of the audio service has stopped or died.
bool isOfService(const Problem& problem) noexcept
{
    constexpr std::array<std::uint32_t, 8> codes = {
        0x88890010, // AUDCLNT_E_SERVICE_NOT_RUNNING
        0x800706BA, // RPC_S_SERVER_UNAVAILABLE
        0x800706BE, // RPC_S_CALL_FAILED
        0x800706BF, // RPC_S_CALL_FAILED_DNE
        0x80010007, // RPC_E_SERVER_DIED
        0x80010012, // RPC_E_SERVER_DIED_DNE
        0x80010108, // RPC_E_DISCONNECTED
        0x80070426, // ERROR_SERVICE_NOT_ACTIVE
    };
    return std::find(codes.begin(), codes.end(), static_cast<std::uint32_t>(problem.code())) != codes.end();
}
}

bool Watcher::isOfService(const Problem& problem) noexcept
{
    return watching::isOfService(problem);
}

void Watcher::judge(const Problem& problem) noexcept
{
    if (isOfService(problem))
        doubtService();
}

void Watcher::judge(const std::vector<Problem>& problems) noexcept
{
    for (const Problem& problem : problems)
        judge(problem);
}

/// Nothing announces the end of the service: the next turn of the worker reads the list, which tells.
void Watcher::doubtService() noexcept
{
    m_isServiceDoubted = true;
    ring();
}

/// Makes a new enumerator; without success, m_serviceProblem says why.
void Watcher::connect()
{
    const std::optional<Problem>& startProblem = m_worker->startProblem();
    const Result<reading::Enumerator> enumerator =
        startProblem ? Result<reading::Enumerator>(*startProblem) : reading::createEnumerator();
    if (!enumerator)
    {
        loseService(enumerator.problem());
        return;
    }
    m_enumerator = *enumerator;
}

/// Registers with the enumerator, unless that has been done. @return false if the service has gone
bool Watcher::registerForEvents()
{
    if (m_registration)
        return true;
    m_registrationProblem.reset();
    m_registration = registerForDevices(*m_enumerator, m_inbox);
    if (m_registration)
        return true;
    m_registrationProblem =
        Problem::ofCall("IMMDeviceEnumerator::RegisterEndpointNotificationCallback", "", m_registration.result());
    return !isServiceLost({*m_registrationProblem});
}

/// Tries to find the service again. Without success it tries later.
void Watcher::lookForService()
{
    connect();
    if (m_enumerator.get() != nullptr)
    {
        static_cast<void>(m_inbox->take(true)); // it is older than what is read now
        read(allNoted());
    }
    publishRead();
}

/// Whether one of the problems says so; then everything of the service is given up.
bool Watcher::isServiceLost(const std::vector<Problem>& problems)
{
    const auto found = std::find_if(problems.begin(), problems.end(),
                                    [](const Problem& problem) { return watching::isOfService(problem); });
    if (found == problems.end())
        return false;
    loseService(*found);
    return true;
}

void Watcher::loseService(const Problem& problem)
{
    const Clock::Time now = m_worker->clock().now();
    if (m_serviceDue == Clock::never)
        m_serviceLostAt = now;
    m_serviceDue = now + (now - m_serviceLostAt < later ? Clock::Time::duration(interval) : laterInterval);
    m_serviceProblem = problem;
    m_service = watching::isOfService(problem) ? Service::stopped : Service::running;
    m_retries.clear();
    m_hardwareRetries.clear();
    m_isServiceDoubted = false;
    m_registrationProblem.reset();
    m_listProblems.clear();
    dropObjects();
    m_enumerator = nullptr;
}
}
