// A module with a static object that outlives the library: it asks the library's factory for the shared enumerator
// after the library's own static objects are destroyed. It also provides the simulated Core Audio, which must last as
// long.

#include "simulator/simulation.h"
#include "tests/unloading/events.h"
#include "tests/unloading/module.h"

namespace
{
class Caller
{
public:
    Caller() = default;
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    ~Caller()
    {
        if (m_ask != nullptr)
            unloading::printLine(m_ask());
    }

    void ask(const char* (*question)())
    {
        m_ask = question;
        unloading::printLine(m_ask());
    }

private:
    const char* (*m_ask)() = nullptr;
};

Caller caller;
}

/// Starts the simulated Core Audio, calls @p question now and once more at the end of this module.
UNLOADING_EXPORT void askNowAndAtTheEnd(const char* (*question)())
{
    CoInitialize(nullptr);
    auto* const simulation = new sim::Simulation({});
    caller.ask(question);
    simulation->faults()
        .run("IMMDeviceEnumerator::Release", [] { unloading::printLine("the enumerator is released"); })
        .at(1);
}
