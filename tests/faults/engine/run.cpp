#include "tests/faults/engine/run.h"

#include "qor/exception.h"

#include <new>
#include <stdexcept>
#include <utility>

namespace faults
{
Run::Run(sim::Simulation& simulation, std::vector<Fault> faults) : m_simulation(simulation)
{
    m_record.faults = std::move(faults);
}

void Run::act(const std::function<void()>& action)
{
    if (m_hasActed)
        throw std::logic_error("an operation acts once");
    plan();
    m_record.thrown = thrownBy(action);
    end();
}

void Run::plan()
{
    m_record.callsBefore = m_simulation.journal().size();
    m_simulation.journal().recordReferences(true);
    for (const Fault& fault : m_record.faults)
        m_planned.push_back(faults::plan(m_simulation.faults(), fault));
}

void Run::end()
{
    m_simulation.journal().recordReferences(false);
    const sim::JournalEntries calls = m_simulation.journal().entries();
    m_record.calls =
        sim::JournalEntries({calls.begin() + static_cast<std::ptrdiff_t>(m_record.callsBefore), calls.end()});
    for (sim::PlannedFault& planned : m_planned)
    {
        m_record.fired.push_back(planned.fired() > 0);
        withdraw(planned);
    }
    m_hasActed = true;
}

void Run::report(Kind kind, const std::string& text)
{
    m_record.findings.push_back({kind, text});
}

std::string thrownBy(const std::function<void()>& action)
{
    try
    {
        action();
        return {};
    }
    catch (const sim::InjectedException& exception)
    {
        return std::string("InjectedException: ") + exception.what();
    }
    catch (const qor::AssertionFailure& exception)
    {
        return std::string("qor::AssertionFailure: ") + exception.what();
    }
    catch (const qor::NullPointer& exception)
    {
        return std::string("qor::NullPointer: ") + exception.what();
    }
    catch (const qor::IndexOutOfBounds& exception)
    {
        return std::string("qor::IndexOutOfBounds: ") + exception.what();
    }
    catch (const qor::Exception& exception)
    {
        return std::string("qor::Exception: ") + exception.what();
    }
    catch (const std::bad_alloc& exception)
    {
        return std::string("std::bad_alloc: ") + exception.what();
    }
    catch (const std::exception& exception)
    {
        return std::string("exception: ") + exception.what();
    }
}
}
