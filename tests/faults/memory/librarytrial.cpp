#include "libSonavit/endpointdeviceenumerator.h"
#include "qor/exception.h"
#include "qor/logging.h"
#include "simulator/portable/comapartment.h"
#include "tests/faults/memory/trials.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <utility>

namespace faults::memory
{
namespace
{
/// What one run has left and found.
struct Traces
{
    Outcome outcome;
    std::string exception; ///< that is not documented
    std::string answer;    ///< after the work was done again, with memory
    std::string trouble;   ///< what made that impossible
    sim::Census census;
    bool keepsItsOwnAlone = true;
    std::size_t blocks = 0;
    unsigned depth = 0;
    unsigned underflows = 0;
    std::size_t violations = 0;
};

long successesOf(const sim::JournalEntries& calls)
{
    return static_cast<long>(calls.size()) - static_cast<long>(calls.failed().size());
}

long readsOfDirectSoundGuids(const sim::JournalEntries& calls)
{
    long count = 0;
    const sim::JournalEntries reads = calls.of("IPropertyStore::GetValue");
    for (std::size_t i = 0; i < reads.size(); ++i)
        count += SUCCEEDED(reads[i].result) && reads[i].arguments.front() == "endpointGuid" ? 1 : 0;
    return count;
}

/// Whether the library has kept no more than what it keeps on purpose: the list of each walk to the neighbours of a
/// part, the string of each DirectSound GUID, the id of each default endpoint.
bool keepsItsOwnAlone(const sim::Census& left, const sim::JournalEntries& calls)
{
    const long walks =
        successesOf(calls.of("IPart::EnumPartsIncoming")) + successesOf(calls.of("IPart::EnumPartsOutgoing"));
    long guids = 0;
    long others = 0;
    for (const auto& [origin, count] : left.taskMemory)
        (origin.rfind("IPropertyStore::GetValue", 0) == 0 ? guids : others) += count;
    return left.references() == left.references("IPartsList") && left.references() <= walks && left.clients.empty() &&
           guids <= readsOfDirectSoundGuids(calls) &&
           others <= successesOf(calls.of("IMMDeviceEnumerator::GetDefaultAudioEndpoint"));
}

/// Takes the shared enumerator down, as the end of the module does.
void endModule()
{
    libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr;
}

class LibraryRun
{
public:
    LibraryRun(const Case& each, const sim::Machine& machine) : m_case(each), m_simulation(machine)
    {
        m_simulation.deliverAtOnce(true);
        m_simulation.latency().clear();
    }

    Traces perform(const Failure& failure)
    {
        const unsigned depth = sim::comapartment::depth();
        {
            const HeapCount heap;
            try
            {
                const std::unique_ptr<Subject> subject = m_case.make(m_simulation);
                work(*subject, failure);
                again(*subject);
            }
            catch (const std::exception& exception)
            {
                const Uncounted ours;
                m_traces.trouble = exception.what();
            }
            endModule();
            m_traces.blocks = heap.live().size();
        }
        m_traces.census = m_simulation.census();
        m_traces.keepsItsOwnAlone = keepsItsOwnAlone(m_traces.census, m_simulation.journal().entries());
        m_traces.depth = sim::comapartment::depth() - depth;
        m_traces.underflows = m_simulation.comUnderflows();
        m_traces.violations = m_simulation.violations().size();
        return m_traces;
    }

private:
    void work(Subject& subject, const Failure& failure)
    {
        const Shortage shortage(failure.side, failure.extent, failure.more);
        bool isDocumented = true;
        try
        {
            subject.work();
        }
        catch (const std::bad_alloc&)
        {
        }
        catch (const qor::NullPointer&)
        {
        }
        catch (...)
        {
            isDocumented = false;
        }
        const Uncounted ours;
        m_traces.outcome.count = shortage.count();
        m_traces.outcome.asked = shortage.asked();
        m_traces.outcome.hasStruck = shortage.hasStruck();
        if (!isDocumented)
            m_traces.exception = "another exception than std::bad_alloc and qor::NullPointer came out";
    }

    void again(Subject& subject)
    {
        subject.work();
        const Uncounted ours;
        m_traces.answer = subject.answer();
    }

    const Case& m_case;
    sim::Simulation m_simulation;
    Traces m_traces;
};

/// Judges one run by the one without a failure.
std::vector<Finding> judge(const Traces& clean, const Traces& run)
{
    std::vector<Finding> findings;
    const auto expect = [&](bool isRight, Kind kind, const std::string& text)
    {
        if (!isRight)
            findings.push_back({kind, text});
    };
    expect(run.exception.empty(), Kind::exception, run.exception);
    expect(run.trouble.empty(), Kind::reuse, "the work cannot be done again: " + run.trouble);
    expect(!run.trouble.empty() || run.answer == clean.answer, Kind::reuse,
           "the objects know afterwards\n" + run.answer + "instead of\n" + clean.answer);
    expect(run.keepsItsOwnAlone, Kind::references,
           "more is left than what is kept on purpose: " + run.census.describe());
    expect(run.blocks <= clean.blocks, Kind::references,
           std::to_string(run.blocks - clean.blocks) + " blocks of memory are lost");
    expect(run.depth == clean.depth, Kind::references, "COM stays initialised");
    expect(run.underflows == 0, Kind::references, "COM is left once too often");
    expect(run.violations == 0, Kind::answer, "a callback does what is forbidden there");
    return findings;
}

/// The multithreaded one, as the facade wants it.
class ApartmentOfThread
{
public:
    ApartmentOfThread() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    ~ApartmentOfThread() { CoUninitialize(); }
    ApartmentOfThread(const ApartmentOfThread&) = delete;
    ApartmentOfThread& operator=(const ApartmentOfThread&) = delete;
};

/// No log: its records would be the larger part of the allocations. Restores minimum and sink.
class SilentLog
{
public:
    SilentLog() : m_minimum(qor::LogFactory::getPriority())
    {
        qor::LogFactory::setPriority(qor::LoggerPriority::LOG_FATAL);
    }
    ~SilentLog() { qor::LogFactory::setPriority(m_minimum); }
    SilentLog(const SilentLog&) = delete;
    SilentLog& operator=(const SilentLog&) = delete;

private:
    const qor::LOGGER_PRIORITY m_minimum;
};
}

AllocationRuns::Perform trialOf(const Case& each, const sim::Machine& machine)
{
    return [=, clean = std::optional<Traces>()](const Failure& failure) mutable
    {
        const SilentLog silence;
        const ApartmentOfThread apartment;
        const Traces traces = LibraryRun(each, machine).perform(failure);
        if (failure.more == endless)
            clean = traces;
        Outcome outcome = traces.outcome;
        if (clean)
            outcome.findings = judge(*clean, traces);
        return outcome;
    };
}
}
