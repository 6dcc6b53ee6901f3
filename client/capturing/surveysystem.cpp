#include "client/capturing/survey.h"
#include "client/watching/systemstate.h"

#include <utility>

namespace sonavit
{
inline namespace v1
{
/// What a System has for other operations of the layer.
struct SystemAccess
{
    using State = System::State;

    static State& state(System& system) { return *system.m_state; }
};
}
}

namespace sonavit::capturing
{
namespace
{
/// Keeps the worker for one question.
class Membership
{
public:
    Membership(const SystemAccess::State& state, worker::Clock::Time deadline)
        : m_worker(worker::Worker::join(state.options.onWorkerStart)),
          m_deadline(deadline)
    {
    }
    ~Membership() { m_worker->leave(m_deadline); }
    Membership(const Membership&) = delete;
    Membership& operator=(const Membership&) = delete;

    worker::Worker& worker() const { return *m_worker; }
    const std::shared_ptr<worker::Worker>& shared() const { return m_worker; }

private:
    const std::shared_ptr<worker::Worker> m_worker;
    const worker::Clock::Time m_deadline;
};

/// On the worker. Without its apartment nothing can be asked.
Result<Survey> surveyOn(worker::Worker& worker)
{
    if (worker.startProblem())
        return *worker.startProblem();
    return surveyPlatform([&worker] { worker.letChangesPass(); });
}
}

Result<Survey> survey(System& system, const std::string& operation)
{
    const SystemAccess::State& state = SystemAccess::state(system);
    if (worker::isForked())
        return endedProblem(operation);
    const worker::Clock::Time deadline = worker::deadlineAfter(state.clock->now(), state.options.patience);
    const Membership membership(state, deadline);
    return worker::ask<Survey>(membership.worker(), worker::Urgency::reading, deadline, operation, "",
                               [kept = membership.shared()]() -> Result<Survey> { return surveyOn(*kept); });
}
}
