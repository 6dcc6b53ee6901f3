#include "sonavit/capture.h"
#include "tests/client/watching/watchtest.h"
#include "tests/foundation/supportallocations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <utility>

using namespace sonavit;
using namespace testing;
using namespace std::chrono_literals;

/// A listener whose registration cannot be ended, as where the platform itself lacks memory, is kept on purpose and
/// counted: the platform may still call it.
extern "C" const char* __lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier)
{
    return "leak:sonavit::watching::registerFor";
}

namespace
{
/// One allocation fails while a program does something, on the worker or on the program's own thread.
class SystemShortOfMemory : public support::WatchTest
{
protected:
    using Work = std::function<void()>;

    void SetUp() override
    {
        WatchTest::SetUp();
        sim::MachineBuilder builder;
        sim::CardBuilder card = builder.card("Analog Audio");
        m_id = EndpointId(card.speaker().id());
        m_other = EndpointId(card.microphone().id());
        m_machine = builder.build();
        watch(m_machine);
        simulation().journal().record(false);
        m_card = audio().snapshot().cardOf(m_id)->id();
    }

    /// Does @p work while the allocation after @p more others fails on the worker. @return whether so many were made
    bool withFailureOnWorker(unsigned more, const Work& work)
    {
        std::unique_ptr<support::AllocationProbe> probe;
        bool isReached = false;
        onWorker(
            [&]
            {
                probe = std::make_unique<support::AllocationProbe>();
                probe->failOnce(more);
            });
        attempt(work);
        onWorker(
            [&]
            {
                isReached = probe->count() > more;
                probe.reset();
            });
        return isReached;
    }

    bool withFailureHere(unsigned more, const Work& work)
    {
        support::AllocationProbe probe;
        m_probeHere = &probe;
        probe.failOnce(more);
        attempt(work);
        m_probeHere = nullptr;
        return probe.count() > more;
    }

    void onWorker(const Work& work)
    {
        worker::Worker::current()->post(worker::Urgency::change, work);
        settle();
    }

    static void attempt(const Work& work)
    {
        try
        {
            work();
        }
        catch (const std::bad_alloc&)
        {
            return; // as documented; any other exception fails the test
        }
    }

    /// Everything is known again, and events come.
    void expectTruth(System& system)
    {
        advance(250ms);
        ASSERT_TRUE(system.refresh());
        const System other(polledOptions());
        const Snapshot truth = support::withoutPast(other.snapshot());
        const Snapshot known = support::withoutPast(system.snapshot());
        EXPECT_EQ(truth, known) << difference(known, truth);
        m_isMuted = !m_isMuted;
        simulation().events().setVolume(m_id.text(), -10.0F, m_isMuted);
        advance(20ms);
        EXPECT_EQ(m_isMuted, system.endpoint(m_id)->volume()->isMuted);
    }

    /// Lets @p work fail at each @p stride -th of its allocations.
    /// @param fewest failures that there are at least, also where a compiler spares allocations
    template<class WithFailure>
    void forEachAllocation(unsigned stride, unsigned fewest, const WithFailure& withFailure, const Work& work)
    {
        unsigned reached = 0;
        for (unsigned more = 0; withFailure(more, work); more += stride)
        {
            SCOPED_TRACE("after " + std::to_string(more) + " allocations");
            ++reached;
            expectTruth(audio());
            ASSERT_FALSE(HasFailure());
        }
        EXPECT_LE(fewest, reached);
    }

    auto onWorkerSide()
    {
        return [this](unsigned more, const Work& work) { return withFailureOnWorker(more, work); };
    }

    auto onThisSide()
    {
        return [this](unsigned more, const Work& work) { return withFailureHere(more, work); };
    }

    sim::Machine m_machine;
    EndpointId m_id;
    EndpointId m_other;
    CardId m_card;
    bool m_isMuted = false;
    support::AllocationProbe* m_probeHere = nullptr;
};

TEST_F(SystemShortOfMemory, KnowsTheTruthAfterARefresh)
{
    forEachAllocation(37, 5, onWorkerSide(),
                      [this]
                      {
                          simulation().events().setVolume(m_id.text(), -30.0F);
                          static_cast<void>(audio().refresh(Depth::everything));
                      });
}

/// What was announced is not lost with the reading that fails.
TEST_F(SystemShortOfMemory, LosesNothingThatWasAnnounced)
{
    bool isThere = true;
    forEachAllocation(29, 3, onWorkerSide(),
                      [&]
                      {
                          isThere = !isThere;
                          if (isThere)
                              simulation().events().add(m_other.text());
                          else
                              simulation().events().remove(m_other.text());
                          static_cast<void>(audio().refresh());
                      });
}

TEST_F(SystemShortOfMemory, LosesNothingThatComesByItself)
{
    bool isThere = true;
    forEachAllocation(29, 2, onWorkerSide(),
                      [&]
                      {
                          isThere = !isThere;
                          if (isThere)
                              simulation().events().add(m_other.text());
                          else
                              simulation().events().remove(m_other.text());
                          advance(50ms);
                      });
}

TEST_F(SystemShortOfMemory, KnowsTheTruthAfterAChange)
{
    unsigned step = 0;
    forEachAllocation(7, 3, onWorkerSide(),
                      [&]
                      {
                          ++step;
                          static_cast<void>(audio().setVolume(m_id, Percent(step % 100)));
                          static_cast<void>(audio().setMute(m_id, step % 2 == 0));
                      });
}

TEST_F(SystemShortOfMemory, KnowsTheTruthAfterAWalkAndAWatch)
{
    forEachAllocation(31, 5, onWorkerSide(),
                      [this]
                      {
                          advance(1s);
                          static_cast<void>(audio().graph());
                          static_cast<void>(audio().controls(m_id));
                          const Result<Watch> watched = audio().watch(m_card);
                      });
}

TEST_F(SystemShortOfMemory, LosesNoReferenceInACapture)
{
    const sim::Census before = simulation().census();
    forEachAllocation(23, 5, onWorkerSide(),
                      [&]
                      {
                          try
                          {
                              static_cast<void>(capture(audio()));
                          }
                          catch (const std::bad_alloc&)
                          {
                              EXPECT_EQ(before, simulation().census()) << simulation().census() - before;
                          }
                      });
    EXPECT_EQ(before, simulation().census()) << simulation().census() - before;
}

TEST_F(SystemShortOfMemory, AsksNothingThatItCannotWaitFor)
{
    forEachAllocation(1, 3, onThisSide(),
                      [this]
                      {
                          const Subscription heard = audio().subscribe([](const Change&) {});
                          static_cast<void>(audio().setVolume(m_id, Percent(20)));
                          static_cast<void>(audio().refresh());
                          static_cast<void>(audio().graph());
                      });
}

/// Each change follows from the one before, whatever fails in between.
TEST_F(SystemShortOfMemory, TellsSubscribersAllOfIt)
{
    Snapshot told = audio().snapshot();
    unsigned wrong = 0;
    const auto receive = [&](const Change& change)
    {
        if (m_probeHere != nullptr)
            m_probeHere->succeed(); // it is the layer's memory that fails, not that of this function
        wrong += change.before() == told ? 0 : 1;
        wrong += change.events() == difference(change.before(), change.after()) ? 0 : 1;
        told = change.after();
    };
    const Subscription quick = audio().subscribe(receive);
    unsigned step = 0;
    const auto change = [&]
    {
        ++step;
        simulation().events().setVolume(m_id.text(), -static_cast<float>(step % 40));
        static_cast<void>(audio().refresh());
    };
    for (unsigned more = 0; withFailureOnWorker(more, change); more += 3)
    {
        withFailureHere(step % 60, [this] { audio().poll(); });
        advance(250ms);
        audio().poll();
        EXPECT_EQ(audio().snapshot(), told);
        EXPECT_EQ(0u, wrong);
        EXPECT_TRUE(quick.isActive());
        ASSERT_FALSE(HasFailure()) << more;
    }
    EXPECT_LT(10u, step);
}

/// The first reading and the registration fail, and come later.
TEST_F(SystemShortOfMemory, StartsLater)
{
    unsigned more = 0;
    for (bool isReached = true; isReached; more += 41)
    {
        SCOPED_TRACE("after " + std::to_string(more) + " allocations");
        System late(polledOptions());
        isReached = withFailureOnWorker(more, [&] { static_cast<void>(late.refresh()); });
        expectTruth(late);
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_LT(200u, more);
}

/// The other System goes on, and nothing of this one stays behind.
TEST_F(SystemShortOfMemory, EndsNevertheless)
{
    const sim::Census before = simulation().census();
    for (unsigned more = 0;; ++more)
    {
        auto ending = std::make_unique<System>(polledOptions());
        const Snapshot formerly = ending->snapshot();
        const Result<Watch> watched = ending->watch(m_card);
        const Result<FormatHold> held = ending->holdFormat(m_id, Format::integer(24, 96000, 2));
        ASSERT_TRUE(held);

        const bool isReached = withFailureHere(more, [&] { ending.reset(); });

        settle();
        EXPECT_EQ(before, simulation().census()) << simulation().census() - before;
        EXPECT_TRUE(audio().refresh(Depth::everything));
        EXPECT_EQ(formerly, audio().snapshot());
        ASSERT_FALSE(HasFailure()) << more;
        if (!isReached)
            break;
    }
}
}
