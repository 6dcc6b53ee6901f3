#include "client/worker/worker.h"

#include "client/worker/process.h"
#include "platform/coreaudio.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace sonavit::worker
{
namespace
{
/// The worker of the process. It is never destroyed, because Systems may outlive the static objects of a program.
struct Registry
{
    std::mutex mutex;
    std::shared_ptr<Worker> current;  ///< the one that new Systems join; null without Systems
    std::shared_ptr<Worker> previous; ///< the one that ended last
};

Registry& registry()
{
    static Registry& only = *new Registry;
    return only;
}
}

std::shared_ptr<Worker> Worker::join(const std::function<void()>& onStart)
{
    const std::lock_guard<std::mutex> lock(registry().mutex);
    if (registry().current == nullptr)
    {
        watchForks();
        auto started = std::make_shared<Worker>(currentClock(), onStart, registry().previous);
        started->m_thread = startThread([started] { run(started); });
        registry().current = std::move(started);
        registry().previous = nullptr;
    }
    ++registry().current->m_systems;
    return registry().current;
}

std::shared_ptr<Worker> Worker::current()
{
    const std::lock_guard<std::mutex> lock(registry().mutex);
    return registry().current;
}

Worker::Worker(std::shared_ptr<Clock> clock, std::function<void()> onStart, std::shared_ptr<Worker> predecessor)
    : m_clock(std::move(clock)),
      m_onStart(std::move(onStart)),
      m_predecessor(std::move(predecessor))
{
}

Worker::~Worker() = default;

void Worker::leave(Clock::Time deadline)
{
    std::unique_ptr<Thread> thread;
    std::shared_ptr<Worker> self;
    {
        const std::lock_guard<std::mutex> lock(registry().mutex);
        if (--m_systems > 0)
            return;
        thread = std::move(m_thread);
        self = std::move(registry().current);
        registry().current = nullptr;
        registry().previous = self;
    }
    std::unique_lock<std::mutex> lock(m_alarm->mutex);
    m_isEnding = true;
    m_alarm->changed.notify_all();
    const bool isHere = isThisThread();
    const bool hasEnded =
        !isHere && waitUntil(*m_clock, m_alarm->changed, lock, deadline, [this] { return m_hasEnded; });
    m_isAbandoned = !hasEnded;
    m_alarm->changed.notify_all();
    lock.unlock();
    if (hasEnded)
        thread->join();
    else
        thread->detach();
}

void Worker::post(Urgency urgency, Task task)
{
    std::unique_lock<std::mutex> lock(m_alarm->mutex);
    (urgency == Urgency::change ? m_changes : m_readings).push_back(std::move(task));
    m_isIdle = false;
    lock.unlock();
    m_alarm->changed.notify_all();
}

void Worker::add(std::shared_ptr<Member> member)
{
    m_members.push_back(std::move(member));
    std::unique_lock<std::mutex> lock(m_alarm->mutex);
    m_alarm->ring(std::move(lock));
}

void Worker::remove(const Member& member)
{
    const auto isMeant = [&](const auto& each) { return each.get() == &member; };
    m_members.erase(std::remove_if(m_members.begin(), m_members.end(), isMeant), m_members.end());
}

void Worker::letChangesPass()
{
    for (;;)
    {
        Task task;
        {
            const std::lock_guard<std::mutex> lock(m_alarm->mutex);
            if (m_changes.empty())
                return;
            task = std::move(m_changes.front());
            m_changes.pop_front();
        }
        perform(task);
    }
}

void Worker::settle()
{
    std::unique_lock<std::mutex> lock(m_alarm->mutex);
    const Clock::Time now = m_clock->now();
    m_isIdle = false;
    m_alarm->changed.notify_all();
    const auto isQuiet = [&] { return m_hasEnded || (m_isIdle && m_idleAt >= now); };
    while (!isQuiet())
        m_alarm->changed.wait(lock);
}

void Worker::run(const std::shared_ptr<Worker>& self)
{
    self->m_id = std::this_thread::get_id();
    self->waitForPredecessor();
    self->enter();
    self->work();
    if (!self->m_startProblem)
        CoUninitialize();
    const std::lock_guard<std::mutex> lock(self->m_alarm->mutex);
    self->m_hasEnded = true;
    self->m_alarm->changed.notify_all();
}

/// So that there is one worker at a time, but for one that hangs.
void Worker::waitForPredecessor()
{
    const std::shared_ptr<Worker> former = std::move(m_predecessor);
    m_predecessor = nullptr;
    if (former == nullptr)
        return;
    std::unique_lock<std::mutex> lock(former->m_alarm->mutex);
    while (!former->m_hasEnded && !former->m_isAbandoned)
        former->m_alarm->changed.wait(lock);
}

void Worker::enter()
{
    try
    {
        const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        if (FAILED(result))
            m_startProblem = Problem::ofCall("CoInitializeEx", "", result);
    }
    catch (const std::exception& failure)
    {
        m_startProblem = Problem(Problem::Kind::internal, "CoInitializeEx", "", failure.what());
    }
    Task onStart = std::move(m_onStart);
    m_onStart = nullptr;
    if (onStart != nullptr)
        perform(onStart);
}

void Worker::work()
{
    while (takeTurn())
    {
    }
    m_members.clear();
}

/// Does the next thing: all changes, the members if one of them is due, and one reading. @return false at the end
bool Worker::takeTurn()
{
    letChangesPass();
    bool isStep = false;
    Task reading;
    {
        std::unique_lock<std::mutex> lock(m_alarm->mutex);
        isStep = m_alarm->isRung || m_due <= m_clock->now();
        m_alarm->isRung = false;
        if (!m_readings.empty())
        {
            reading = std::move(m_readings.front());
            m_readings.pop_front();
        }
        else if (!isStep && m_changes.empty())
        {
            if (m_isEnding)
                return false;
            m_isIdle = true;
            m_idleAt = m_clock->now();
            m_alarm->changed.notify_all(); // whoever settles
            m_clock->wait(m_alarm->changed, lock, m_due);
            return true;
        }
    }
    if (isStep)
        stepMembers();
    perform(reading);
    return true;
}

void Worker::stepMembers()
{
    Clock::Time due = Clock::never;
    for (std::size_t index = 0; index < m_members.size();)
    {
        const std::shared_ptr<Member> member = m_members[index]; // the list may change
        due = std::min(due, member->step(m_clock->now()));
        if (index < m_members.size() && m_members[index] == member)
            ++index;
    }
    const std::lock_guard<std::mutex> lock(m_alarm->mutex);
    m_due = due;
}

/// Tasks catch their exceptions themselves; an exception that leaves one nevertheless is dropped.
void Worker::perform(Task& task) noexcept
{
    try
    {
        if (task != nullptr)
            task();
        task = nullptr;
    }
    catch (...)
    {
        static_cast<void>(0);
    }
}
}
