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
bool isOfService(const Problem& problem)
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

bool Watcher::isOfService(const EndpointProblem& problem)
{
    return watching::isOfService(problem.problem);
}

/// Makes a new enumerator and registers with it; without success, m_serviceProblem says why.
void Watcher::connect()
{
    m_registrationProblem.reset();
    const std::optional<Problem>& startProblem = m_worker->startProblem();
    const Result<reading::Enumerator> enumerator =
        startProblem ? Result<reading::Enumerator>(*startProblem) : reading::createEnumerator();
    if (!enumerator)
    {
        loseService(enumerator.problem());
        return;
    }
    m_enumerator = *enumerator;
    m_registration = registerForDevices(*m_enumerator, m_inbox);
    if (!m_registration)
    {
        m_registrationProblem =
            Problem::ofCall("IMMDeviceEnumerator::RegisterEndpointNotificationCallback", "", m_registration.result());
        if (isServiceLost({*m_registrationProblem}))
            return;
    }
    m_service = Service::running;
    m_serviceProblem.reset();
    m_serviceDue = Clock::never;
}

/// Tries to find the service again. Without success it tries later.
void Watcher::lookForService()
{
    connect();
    if (m_enumerator.get() != nullptr)
    {
        static_cast<void>(m_inbox->take(true)); // it is older than what is read now
        readEverything();
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
    dropEverything();
}
}
