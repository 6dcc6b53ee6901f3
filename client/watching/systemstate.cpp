#include "client/watching/systemstate.h"

#include <new>
#include <utility>

namespace sonavit
{
inline namespace v1
{
System::State::State(Options given)
    : options(std::move(given)),
      clock(worker::currentClock()),
      hub(std::make_shared<watching::Hub>(options, clock))
{
}

System::State::~State() = default;

bool System::State::begin()
{
    if (worker::isForked())
        return false;
    const std::lock_guard<std::mutex> lock(mutex);
    if (worker != nullptr)
        return true;
    std::shared_ptr<worker::Worker> joined = worker::Worker::join(options.onWorkerStart);
    try
    {
        auto made = std::make_shared<watching::Watcher>(joined, hub);
        joined->post(worker::Urgency::reading, [made] { made->start(); });
        watcher = std::move(made);
    }
    catch (...)
    {
        joined->leave(worker::deadlineAfter(clock->now(), options.patience));
        throw;
    }
    worker = std::move(joined);
    return true;
}

Result<Snapshot> System::State::latest(const std::string& operation, worker::Clock::Time deadline)
{
    if (!begin())
        return endedProblem(operation);
    if (std::optional<Snapshot> newest = hub->latest())
        return *std::move(newest);
    if (worker->isThisThread())
        return Problem(Problem::Kind::wouldWait, operation, "", "the operation would wait for its own thread");
    // Only the first operation waits while the platform does not answer.
    if (std::optional<Snapshot> newest = hub->waitForFirst(hasWaited ? clock->now() : deadline))
        return *std::move(newest);
    hasWaited = true;
    return Problem(Problem::Kind::noAnswer, operation, "", "the platform has not answered yet");
}

void System::State::end() noexcept
{
    const worker::Clock::Time deadline = worker::deadlineAfter(clock->now(), options.patience);
    hub->close(deadline);
    std::shared_ptr<worker::Worker> used;
    std::shared_ptr<watching::Watcher> ended;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        used = std::move(worker);
        ended = std::move(watcher);
        worker = nullptr;
        watcher = nullptr;
    }
    if (used == nullptr)
        return;
    try
    {
        const auto end = [used, ended]() -> Result<Done>
        {
            ended->end();
            return Done();
        };
        if (used->isThisThread())
            used->post(worker::Urgency::end, [end] { static_cast<void>(end()); });
        else
            static_cast<void>(worker::ask<Done>(*used, worker::Urgency::end, deadline, "~System", "", end));
    }
    catch (const std::bad_alloc&)
    {
        ended->endSoon();
    }
    used->leave(deadline);
}

Problem endedProblem(const std::string& operation)
{
    return Problem(Problem::Kind::ended, operation, "", "the process was forked, or the system has ended");
}
}
}
