/// Performs one operation on a simulated machine, for an instrument: `./bench cost` counts with it.
///
///     sonavit-cost SIDE WORK MACHINE [COUNT]
///
/// SIDE and WORK: see work.h; MACHINE: see machines.h. The operation is performed COUNT times, otherwise once.
/// sonavit-allocations takes the same arguments and prints the client's own allocations.
///
/// The process has a second thread all the time, as programs on Windows have: counters of references and locks of the C
/// library take their short ways otherwise. The machine writes no journal, and the library no log.

#include "libSonavit/libsonavit.h"
#include "machines.h"
#include "measurement.h"
#include "work.h"

#include <condition_variable>
#include <cstdio>
#include <exception>
#include <mutex>
#include <string>
#include <thread>

namespace
{
/// A thread that waits.
class SecondThread
{
public:
    SecondThread() : m_thread([this] { wait(); }) {}

    ~SecondThread()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_isOver = true;
        }
        m_changed.notify_one();
        m_thread.join();
    }

    SecondThread(const SecondThread&) = delete;
    SecondThread& operator=(const SecondThread&) = delete;

private:
    void wait()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return m_isOver; });
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isOver = false;
    std::thread m_thread;
};

void measure(const std::string& side, const std::string& work, const std::string& machine, unsigned long count)
{
    sim::Simulation simulation(bench::machineOfSize(machine));
    simulation.deliverAtOnce(true);
    simulation.journal().record(false);
    const SecondThread thread;
    const bench::Operation operation = bench::prepareOperation(side, work, simulation);
    bench::beginMeasurement();
    for (unsigned long index = 0; index < count; ++index)
        operation();
    bench::endMeasurement();
}
}

int main(int argc, char** argv)
{
    if (argc < 4)
    {
        std::fputs(
            "usage: sonavit-cost library|direct|direct-wholelist discovery|lists|controls|event MACHINE [COUNT]\n",
            stderr);
        return 2;
    }
    try
    {
        qor::LogFactory::setSink([](const qor::LogRecord&) {});
        CoInitialize(nullptr);
        measure(argv[1], argv[2], argv[3], argc > 4 ? std::stoul(argv[4]) : 1);
        bench::printMeasurement();
        return 0;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
