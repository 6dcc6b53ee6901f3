#include "sonavit/formathold.h"

#include "client/changing/deviceformat.h"
#include "client/watching/systemstate.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
using changing::HeldFormat;
using watching::Watcher;

/// A held format and what became of it; shared with the worker.
class Hold
{
public:
    explicit Hold(HeldFormat heldFormat) : format(std::move(heldFormat)) {}

    bool hasEnded() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_outcome.has_value();
    }

    /// On the worker: puts the former format back. Opens the endpoint anew: the object that was changed may be that of
    /// a device that has gone meanwhile.
    Result<Done> putBack(const Watcher& watcher) const
    {
        IMMDeviceEnumerator* const enumerator = watcher.enumerator();
        if (enumerator == nullptr)
            return Problem(Problem::Kind::platform, "FormatHold::end", format.endpoint().text(),
                           "the audio service does not answer");
        const Result<reading::EndpointReading> endpoint = reading::openEndpoint(*enumerator, format.endpoint());
        return endpoint ? format.putBack(*endpoint->device) : endpoint.problem();
    }

    /// Wakes the caller of wait().
    void finish(Result<Done> outcome)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_outcome = std::move(outcome);
        m_changed.notify_all();
    }

    /// Waits until the format has been put back, or that has failed.
    std::optional<Result<Done>> wait(worker::Clock& clock, worker::Clock::Time deadline) const
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        worker::waitUntil(clock, m_changed, lock, deadline, [this] { return m_outcome.has_value(); });
        return m_outcome;
    }

    const HeldFormat format;
    // Used on the worker alone.
    std::uint64_t atEnd = 0; ///< of Watcher::atEnd()
    bool isDone = false;     ///< the format was put back, or the platform has refused that

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::optional<Result<Done>> m_outcome;
};

/// Reads the properties of an endpoint again and publishes them as the change @p token.
void publishFormat(Watcher& watcher, const EndpointId& id, ChangeToken token)
{
    const Result<reading::EndpointReading*> endpoint = watcher.endpoint("holdFormat", id);
    if (!endpoint)
        return;
    reading::readProperties(**endpoint);
    watcher.publishChange(id, token);
}

/// On the worker: puts the format back, once, and calls @p afterwards, which returns the token of the change, before it
/// wakes the caller of FormatHold::end(). After an exception the end of the System tries it again.
template<class Function>
void endHold(Watcher& watcher, Hold& hold, const Function& afterwards)
{
    if (std::exchange(hold.isDone, true))
        return;
    Result<Done> outcome = Done();
    try
    {
        outcome = hold.putBack(watcher);
        if (outcome && hold.format.isWritten())
            outcome = Result<Done>(Done(), afterwards());
    }
    catch (const std::exception& failure)
    {
        hold.isDone = false;
        watcher.startAgainLater();
        outcome = Problem(Problem::Kind::internal, "FormatHold::end", hold.format.endpoint().text(), failure.what());
    }
    hold.finish(std::move(outcome));
}

/// While the System lives.
void endHold(Watcher& watcher, Hold& hold)
{
    const auto publish = [&]
    {
        const ChangeToken token = watcher.newToken();
        publishFormat(watcher, hold.format.endpoint(), token);
        return token;
    };
    endHold(watcher, hold, publish);
    if (hold.isDone)
        watcher.cancelAtEnd(hold.atEnd);
}
}

/// What a FormatHold holds. Its end puts the format back without waiting, so that nothing stays held if the caller of
/// System::holdFormat() has stopped waiting for it.
struct FormatHold::State
{
    State(std::shared_ptr<worker::Worker> usedWorker, std::weak_ptr<Watcher> usedWatcher,
          std::chrono::milliseconds longestWait, HeldFormat format)
        : worker(std::move(usedWorker)),
          watcher(std::move(usedWatcher)),
          patience(longestWait),
          hold(std::make_shared<Hold>(std::move(format)))
    {
    }

    ~State()
    {
        try
        {
            post();
        }
        catch (const std::bad_alloc&)
        {
            return; // the end of the System puts the format back
        }
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    /// Throws std::bad_alloc.
    void post() const
    {
        if (worker::isForked() || worker::isEnding() || hold->hasEnded())
            return;
        const auto task = [kept = hold, weak = watcher]
        {
            if (const std::shared_ptr<Watcher> present = weak.lock())
                endHold(*present, *kept);
        };
        worker->post(worker::Urgency::change, task);
    }

    const std::shared_ptr<worker::Worker> worker;
    const std::weak_ptr<Watcher> watcher; ///< locked on the worker alone
    const std::chrono::milliseconds patience;
    const std::shared_ptr<Hold> hold;
    std::atomic<bool> isEnding{false};
};

FormatHold::FormatHold(std::shared_ptr<State> state) noexcept : m_state(std::move(state)) {}
FormatHold::FormatHold(FormatHold&& other) noexcept = default;

FormatHold& FormatHold::operator=(FormatHold&& other) noexcept
{
    if (this == &other)
        return *this;
    const FormatHold former(std::move(m_state)); // ends as the destructor says
    m_state = std::move(other.m_state);
    return *this;
}

FormatHold::~FormatHold()
{
    if (m_state == nullptr)
        return;
    try
    {
        static_cast<void>(end());
    }
    catch (...)
    {
        return; // no memory; the end of the state, or of the System, puts the format back
    }
}

const EndpointId& FormatHold::endpoint() const noexcept
{
    return m_state->hold->format.endpoint();
}

const Format& FormatHold::former() const noexcept
{
    return m_state->hold->format.former();
}

const Format& FormatHold::held() const noexcept
{
    return m_state->hold->format.held();
}

Result<Done> FormatHold::end()
{
    const char* const operation = "FormatHold::end";
    if (worker::isForked() || worker::isEnding())
        return endedProblem(operation);
    if (m_state == nullptr || m_state->isEnding.exchange(true) || m_state->hold->hasEnded())
        return Done();
    const std::string& object = endpoint().text();
    worker::Worker& worker = *m_state->worker;
    try
    {
        m_state->post();
    }
    catch (...)
    {
        m_state->isEnding = false;
        throw;
    }
    if (worker.isThisThread())
        return Problem(Problem::Kind::wouldWait, operation, object, "the operation would wait for its own thread");
    worker::Clock& clock = worker.clock();
    const worker::Clock::Time deadline = worker::deadlineAfter(clock.now(), m_state->patience);
    if (std::optional<Result<Done>> outcome = m_state->hold->wait(clock, deadline))
        return *std::move(outcome);
    return Problem(Problem::Kind::noAnswer, operation, object, "the platform has not answered yet");
}

Result<FormatHold> System::holdFormat(const EndpointId& endpoint, const Format& format)
{
    using HoldState = std::shared_ptr<FormatHold::State>;
    const char* const operation = "holdFormat";
    if (!m_state->begin())
        return endedProblem(operation);
    const auto task = [endpoint, format, operation, worker = m_state->worker,
                       weak = std::weak_ptr<Watcher>(m_state->watcher),
                       patience = m_state->options.patience](Watcher& watcher) -> Result<HoldState>
    {
        const Result<reading::EndpointReading*> reading = watcher.endpoint(operation, endpoint);
        if (!reading)
            return reading.problem();
        const Result<HeldFormat> held = HeldFormat::hold(*(*reading)->device, endpoint, format);
        if (!held)
            return held.problem();
        auto state = std::make_shared<FormatHold::State>(worker, weak, patience, *held);
        state->hold->atEnd =
            watcher.atEnd([&watcher, hold = state->hold] { endHold(watcher, *hold, [] { return ChangeToken(0); }); });
        const ChangeToken token = held->isWritten() ? watcher.newToken() : 0;
        if (held->isWritten())
            publishFormat(watcher, endpoint, token);
        return Result<HoldState>(std::move(state), token);
    };
    Result<HoldState> state = m_state->run<HoldState>(operation, endpoint.text(), worker::Urgency::change, task);
    if (!state)
        return state.problem();
    const ChangeToken token = state.token();
    return Result<FormatHold>(FormatHold(*std::move(state)), token);
}
}
}
