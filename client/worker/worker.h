/// @file
/// The one thread that calls the platform.
#pragma once

#include "client/worker/alarm.h"
#include "client/worker/clock.h"
#include "client/worker/thread.h"
#include "sonavit/problem.h"

#include <atomic>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace sonavit::worker
{
/// What works on the worker by itself: a System.
class Member
{
public:
    virtual ~Member() = default;
    /// Does what is due at @p now. Called on the worker after each ring of the alarm and at the time that it returned
    /// last. @return when it wants to be called next; Clock::never if only after a ring
    virtual Clock::Time step(Clock::Time now) noexcept = 0;
};

enum class Urgency : int
{
    change,  ///< goes before readings, and between the endpoints of a reading
    reading, ///< is not made if nobody waits for it any more
    end      ///< comes after all readings that were asked for before
};

/// The worker: a thread in the multithreaded apartment that makes all calls to the platform for all Systems of the
/// process. It starts with the first of them and ends with the last.
///
/// Any thread may call any operation that does not say otherwise.
class Worker
{
public:
    using Task = std::function<void()>;

    /// The worker of the process; starts it if there is none. Each call is followed by one of leave().
    /// @param onStart runs on the worker after it has entered its apartment, if it is started
    /// Throws std::system_error if there can be no thread.
    static std::shared_ptr<Worker> join(const std::function<void()>& onStart);
    /// The last System of the worker ends its thread after all tasks and waits for that, at most until @p deadline.
    void leave(Clock::Time deadline);

    /// @p task runs on the worker and must not throw.
    void post(Urgency urgency, Task task);
    const std::shared_ptr<Alarm>& alarm() const noexcept { return m_alarm; }
    Clock& clock() const noexcept { return *m_clock; }
    const std::shared_ptr<Clock>& sharedClock() const noexcept { return m_clock; }
    bool isThisThread() const noexcept { return m_id.load() == std::this_thread::get_id(); }

    // Only on the worker.
    void add(std::shared_ptr<Member> member);
    void remove(const Member& member);
    /// Runs the changes that wait, for readings that last.
    void letChangesPass();
    /// Why the apartment could not be entered, so that nothing can be asked.
    const std::optional<Problem>& startProblem() const noexcept { return m_startProblem; }

    /// For tests: waits until nothing waits and nothing is due.
    void settle();
    /// For tests: the worker of the process, or null.
    static std::shared_ptr<Worker> current();

    Worker(std::shared_ptr<Clock> clock, std::function<void()> onStart, std::shared_ptr<Worker> predecessor);
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

private:
    static void run(const std::shared_ptr<Worker>& self);
    void waitForPredecessor();
    void enter();
    void work();
    bool takeTurn();
    void stepMembers();
    static void perform(Task& task) noexcept;

    const std::shared_ptr<Clock> m_clock;
    const std::shared_ptr<Alarm> m_alarm = std::make_shared<Alarm>();
    std::function<void()> m_onStart;       ///< until the worker has called it
    std::shared_ptr<Worker> m_predecessor; ///< until it has ended
    std::atomic<std::thread::id> m_id{};
    std::unique_ptr<Thread> m_thread; ///< guarded by the process's list
    std::size_t m_systems = 0;        ///< guarded by the process's list

    // Only on the worker.
    std::optional<Problem> m_startProblem;
    std::vector<std::shared_ptr<Member>> m_members;

    // Guarded by the alarm's mutex.
    std::deque<Task> m_changes;
    std::deque<Task> m_readings;
    Clock::Time m_due = Clock::never;
    bool m_isEnding = false;
    bool m_isIdle = false;
    Clock::Time m_idleAt{};
    bool m_isAbandoned = false; ///< hangs in the platform; nobody waits for it any more
    bool m_hasEnded = false;
};
}
