#include "tests/faults/memory/trials.h"

#include <chrono>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <sstream>
#include <system_error>
#include <thread>
#include <utility>

namespace faults::memory
{
using namespace sonavit;

namespace
{
using Clock = std::chrono::steady_clock;

constexpr auto longestWait = std::chrono::seconds(20);

/// The snapshot without the past, which a System that begins later does not know.
Snapshot withoutPast(const Snapshot& snapshot)
{
    Snapshot::Content content = snapshot.content();
    for (Card& card : content.cards)
    {
        Card::Content changed = card.content();
        for (Endpoint& endpoint : changed.endpoints)
        {
            Endpoint::Content each = endpoint.content();
            each.incarnation = 0;
            endpoint = Endpoint(std::move(each));
        }
        card = Card(std::move(changed));
    }
    return Snapshot(std::move(content));
}

class ClientRun
{
public:
    /// @param allowed blocks that a run without a failure leaves; none if this is such a run
    ClientRun(const ClientCase& each, const sim::Machine& machine, std::optional<std::size_t> allowed)
        : m_case(each),
          m_simulation(machine),
          m_allowed(allowed)
    {
        m_simulation.deliverAtOnce(true);
        m_simulation.journal().record(false);
        m_simulation.latency().clear();
    }

    Outcome perform(const Failure& failure)
    {
        const HeapCount heap;
        try
        {
            System audio(optionsFor(failure));
            const std::unique_ptr<ClientSubject> subject = begin(audio);
            work(*subject, failure);
            expectOrder(audio, *subject);
        }
        catch (const std::exception& exception)
        {
            expect(false, faults::Kind::reuse, std::string("the program cannot go on: ") + exception.what());
        }
        expectNothingLeft(heap);
        return m_outcome;
    }

    std::size_t blocks() const { return m_blocks; }

private:
    /// While the worker has no memory at all it answers nothing: the program gets no answer when its patience ends.
    static System::Options optionsFor(const Failure& failure)
    {
        System::Options options = polledOptions();
        if (failure.side == Side::others && failure.extent == memory::Extent::lasting)
            options.patience = std::chrono::milliseconds(300);
        return options;
    }

    std::unique_ptr<ClientSubject> begin(System& audio)
    {
        while (audio.snapshot().cards().empty() && !m_simulation.machine().endpoints.empty())
            std::this_thread::yield(); // the computer is busy
        return m_case.make(m_simulation, audio);
    }

    void work(ClientSubject& subject, const Failure& failure)
    {
        const Clock::time_point start = Clock::now();
        const Shortage shortage(failure.side, failure.extent, failure.more);
        bool isDocumented = true;
        try
        {
            subject.work();
        }
        catch (const std::bad_alloc&)
        {
        }
        catch (const std::system_error&)
        {
        }
        catch (...)
        {
            isDocumented = false;
        }
        const Uncounted ours;
        m_outcome.count = shortage.count();
        m_outcome.asked = shortage.asked();
        m_outcome.hasStruck = shortage.hasStruck();
        expect(isDocumented, faults::Kind::exception,
               "another exception than std::bad_alloc and std::system_error came out");
        expect(Clock::now() - start < longestWait, faults::Kind::hang, "the layer does not answer");
    }

    void expect(bool isRight, faults::Kind kind, const std::string& text)
    {
        const Uncounted ours;
        if (!isRight)
            m_outcome.findings.push_back({kind, text});
    }

    /// The System works again, knows the truth, and tells its subscribers. All of this counts: the worker's queues get
    /// their blocks from the threads that ask.
    void expectOrder(System& audio, ClientSubject& subject)
    {
        subject.work();
        sonavit::Result<Snapshot> known = audio.refresh(Depth::everything);
        for (const Clock::time_point latest = Clock::now() + longestWait; !known && Clock::now() < latest;)
            known = audio.refresh(Depth::everything);
        const System other(polledOptions());
        const Snapshot truth = withoutPast(other.snapshot());
        expect(static_cast<bool>(known), faults::Kind::reuse, known ? "" : known.problem().sentence());
        if (!known)
            return;
        std::ostringstream differences;
        differences << difference(withoutPast(*known), truth);
        expect(withoutPast(*known) == truth, faults::Kind::reuse,
               "the snapshot is not the truth: " + differences.str());
        expectEvents(audio);
    }

    void expectEvents(System& audio)
    {
        const std::optional<Endpoint> speakers = audio.defaultEndpoint(Flow::output);
        if (!speakers || !speakers->volume())
            return;
        unsigned heard = 0;
        const Subscription subscription = audio.subscribe([&](const Change&) { ++heard; });
        m_simulation.events().setVolume(speakers->id().text(), -17.0F, !speakers->volume()->isMuted);
        static_cast<void>(audio.refresh());
        audio.poll();
        expect(heard > 0, faults::Kind::reuse, "no events come");
    }

    /// Blocks that are left when their number does not fall any more: the worker's thread frees its last ones after its
    /// System has ended. A few stay until the next System begins.
    std::size_t blocksLeft(const HeapCount& heap) const
    {
        const Uncounted ours;
        const auto longest = m_allowed ? std::chrono::milliseconds(3000) : std::chrono::milliseconds(200);
        const Clock::time_point latest = Clock::now() + longest;
        std::size_t left = heap.live().size();
        for (; left > m_allowed.value_or(0) && Clock::now() < latest; left = heap.live().size())
            std::this_thread::yield();
        return left;
    }

    void expectNothingLeft(const HeapCount& heap)
    {
        const Uncounted ours;
        m_blocks = blocksLeft(heap);
        expect(!m_allowed || m_blocks <= *m_allowed, faults::Kind::references,
               std::to_string(m_blocks - m_allowed.value_or(0)) + " blocks of memory are lost");
        const sim::Census census = m_simulation.census();
        expect(census.empty(), faults::Kind::references, "with the platform is left " + census.describe());
        expect(m_simulation.comUnderflows() == 0, faults::Kind::references, "COM is left once too often");
        expect(m_simulation.violations().empty(), faults::Kind::answer, "a callback does what is forbidden there");
    }

    const ClientCase& m_case;
    sim::Simulation m_simulation;
    const std::optional<std::size_t> m_allowed;
    std::size_t m_blocks = 0;
    Outcome m_outcome;
};
}

AllocationRuns::Perform trialOf(const ClientCase& each, const sim::Machine& machine)
{
    return [=, allowed = std::optional<std::size_t>()](const Failure& failure) mutable
    {
        const bool isClean = failure.more == endless;
        ClientRun run(each, machine, isClean ? std::nullopt : allowed);
        Outcome outcome = run.perform(failure);
        if (isClean)
            allowed = run.blocks();
        return outcome;
    };
}
}
