#include "client/worker/thread.h"

#include <thread>
#include <utility>

namespace sonavit::worker
{
namespace
{
class StandardThread final : public Thread
{
public:
    explicit StandardThread(std::function<void()> work) : m_thread(std::move(work)) {}

    void join() override { m_thread.join(); }
    void detach() noexcept override { m_thread.detach(); }

private:
    std::thread m_thread;
};
}

std::unique_ptr<Thread> startThread(std::function<void()> work)
{
    return std::make_unique<StandardThread>(std::move(work));
}
}
