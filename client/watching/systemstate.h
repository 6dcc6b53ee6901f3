/// @file
/// What a System consists of, and how its operations ask the worker.
#pragma once

#include "client/watching/hub.h"
#include "client/watching/watcher.h"
#include "client/worker/answer.h"
#include "client/worker/process.h"
#include "client/worker/worker.h"
#include "sonavit/system.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace sonavit
{
inline namespace v1
{
/// That the process was forked or the System has ended.
Problem endedProblem(const std::string& operation);

/// Any thread may call all operations, except those that say otherwise.
struct System::State
{
    explicit State(Options given);
    ~State();
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    /// Starts the worker and the first reading if that has not been done. @return false in a child process
    bool begin();
    /// The newest state; if there is none yet, waits for it once until @p deadline. Problem::Kind::noAnswer, wouldWait,
    /// ended.
    Result<Snapshot> latest(const std::string& operation, worker::Clock::Time deadline);

    /// Runs @p task(watching::Watcher&), which returns Result<T>, on the worker and waits for it, at most
    /// Options::patience. The first reading comes before it. The task may run when its caller waits no more, so it must
    /// own what it uses; a reading that has not begun by then never runs, a change does.
    template<class T, class Task>
    Result<T> run(const std::string& operation, const std::string& object, worker::Urgency urgency, Task task)
    {
        const worker::Clock::Time deadline = worker::deadlineAfter(clock->now(), options.patience);
        if (!begin())
            return endedProblem(operation);
        return worker::ask<T>(*worker, urgency, deadline, operation, object,
                              [kept = watcher, task = std::move(task)]() mutable -> Result<T>
                              { return answerOf<T>(*kept, task); });
    }

    /// On the worker: the answer of @p task. What went wrong in it keeps nothing from being read later.
    template<class T, class Task>
    static Result<T> answerOf(watching::Watcher& watcher, Task& task)
    {
        try
        {
            watcher.start();
            Result<T> answer = task(watcher);
            if (!answer)
                watcher.judge(answer.problem());
            return answer;
        }
        catch (...)
        {
            watcher.startAgainLater();
            throw;
        }
    }

    /// Ends subscriptions, watches and the part of the worker, and waits for that until the patience is over.
    void end() noexcept;

    const Options options;
    const std::shared_ptr<worker::Clock> clock;
    const std::shared_ptr<watching::Hub> hub;

    std::atomic<bool> hasWaited{false}; ///< an operation has waited for the first state without success

    std::mutex mutex; ///< guards the start
    // Set at the start, and constant after it.
    std::shared_ptr<worker::Worker> worker;
    std::shared_ptr<watching::Watcher> watcher; ///< used and destroyed on the worker alone

    std::shared_ptr<State> keptForGood; ///< this one, where nothing must be released any more
};

struct Subscription::State
{
    std::shared_ptr<watching::Hub> hub; ///< null for a subscription of a System that has ended
    std::shared_ptr<watching::Subscriber> subscriber;
    std::optional<Problem> problem; ///< why it never began
};

struct Watch::State
{
    std::shared_ptr<worker::Worker> worker;
    std::weak_ptr<watching::Watcher> watcher;
    std::uint64_t number = 0;
};
}
}
