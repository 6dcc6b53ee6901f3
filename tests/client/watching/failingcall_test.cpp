#include "tests/client/watching/watchtest.h"
#include "tests/support/pace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

using namespace sonavit;
using namespace testing;
using namespace std::chrono_literals;

namespace
{
/// A code that nothing else returns.
constexpr HRESULT planned = static_cast<HRESULT>(0x8007045D);
constexpr HRESULT noServer = static_cast<HRESULT>(0x800706BAU);

/// The n-th call of an operation.
struct Call
{
    std::string operation;
    std::string argument;
    std::uint32_t number;
};

/// Whether the failure is no problem of the card: its bus is known if another of its endpoints reports it.
bool mayStaySilent(const Call& call)
{
    return call.argument == "enumeratorName";
}

/// Calls that cannot fail, or whose failure is not told: a listener that cannot be unregistered is kept for good.
bool isLeftOut(const std::string& operation)
{
    static const std::set<std::string> all = {
        "CoTaskMemFree",     "PropVariantClear", "CoTaskMemAlloc",           "CoUninitialize",
        "waveOutGetNumDevs", "waveInGetNumDevs", "getParentDeviceInstanceId"};
    return all.count(operation) != 0 || operation.find("::Release") != std::string::npos ||
           operation.find("::AddRef") != std::string::npos || operation.find("::Unregister") != std::string::npos ||
           operation.find("Callback::On") != std::string::npos || operation.find("Notify::On") != std::string::npos ||
           operation.find("Client::On") != std::string::npos;
}

void append(std::vector<Problem>& all, const std::vector<Problem>& more)
{
    all.insert(all.end(), more.begin(), more.end());
}

void append(std::vector<Problem>& all, const std::vector<Control>& controls)
{
    for (const Control& control : controls)
        append(all, control.problems);
}

void append(std::vector<Problem>& all, const Snapshot& snapshot)
{
    append(all, snapshot.problems());
    for (const Card& card : snapshot.cards())
    {
        append(all, card.problems());
        for (const Endpoint& endpoint : card.endpoints())
        {
            for (const EndpointProblem& problem : endpoint.problems())
                all.push_back(problem.problem);
        }
    }
    for (const Hardware& hardware : snapshot.content().hardware)
    {
        append(all, hardware.problems);
        for (const Hardware::EndpointControls& each : hardware.controls)
            append(all, each.controls);
        for (const Selector& selector : hardware.selectors)
            append(all, selector.problems);
    }
}

/// The problems of an answer, whether it is one or consists of values that have some.
template<class T>
void appendResult(std::vector<Problem>& all, const Result<T>& result)
{
    if (!result)
        all.push_back(result.problem());
}

/// One call of the platform fails while a program does something; the next calls succeed.
class SystemWithAFailingCall : public support::WatchTest
{
protected:
    /// What a program does, with all problems that it is told of.
    using Work = std::function<std::vector<Problem>()>;

    void SetUp() override
    {
        WatchTest::SetUp();
        watch("desktop");
        simulation().faults().clear();
        static_cast<void>(audio().refresh(Depth::everything));
        m_id = audio().defaultEndpoint(Flow::output)->id();
        m_card = audio().snapshot().cardOf(m_id)->id();
    }

    std::vector<Call> callsOf(const Work& work)
    {
        simulation().journal().clear();
        static_cast<void>(work());
        std::vector<Call> calls;
        std::map<std::string, std::uint32_t> numbers;
        for (const sim::JournalEntry& entry : simulation().journal().entries())
        {
            if (!isLeftOut(entry.operation))
                calls.push_back(
                    {entry.operation, entry.arguments.empty() ? "" : entry.arguments[0], ++numbers[entry.operation]});
        }
        simulation().journal().record(false);
        return calls;
    }

    /// Does @p work once as it is, and once for each @p stride -th call that it makes then, which fails.
    void forEachCall(const Work& work, std::size_t fewest, std::size_t stride = 1)
    {
        static_cast<void>(work());
        const std::vector<Call> calls = callsOf(work);
        ASSERT_LE(fewest, calls.size());
        stride *= support::cases(1, 20);
        std::size_t failed = 0;
        for (std::size_t index = 0; index < calls.size(); index += stride)
        {
            const Call& call = calls[index];
            SCOPED_TRACE(call.operation + ", call " + std::to_string(call.number));
            static_cast<void>(audio().refresh(Depth::everything));
            const Snapshot whole = audio().snapshot();
            const sim::PlannedFault fault = simulation().faults().fail(call.operation, planned).at(call.number);

            const std::vector<Problem> problems = work();

            if (fault.fired() == 0) // a notification that came sooner has saved a reading
            {
                simulation().faults().clear();
                continue;
            }
            ++failed;
            EXPECT_TRUE(isTold(problems, call) || mayStaySilent(call) || isDone());
            simulation().faults().clear();
            ASSERT_TRUE(audio().refresh(Depth::everything));
            expectWhole(whole);
            ASSERT_FALSE(HasFailure());
        }
        EXPECT_LE(fewest / stride / 2, failed);
        simulation().journal().record(true);
    }

    static bool isTold(const std::vector<Problem>& problems, const Call& call)
    {
        const auto isMeant = [&](const Problem& problem) {
            return problem.operation().substr(0, problem.operation().find('(')) == call.operation &&
                   problem.code() == planned;
        };
        return std::any_of(problems.begin(), problems.end(), isMeant);
    }

    /// Everything is known again, and events come.
    void expectWhole(const Snapshot& whole)
    {
        const Snapshot truth = System(polledOptions()).snapshot();
        EXPECT_EQ(support::withoutPast(truth).cards(), support::withoutPast(audio().snapshot()).cards());
        EXPECT_EQ(truth.problems(), audio().snapshot().problems());
        EXPECT_EQ(truth.content().defaults, audio().snapshot().content().defaults);
        EXPECT_EQ(whole.content().hardware, audio().snapshot().content().hardware);
        m_isMuted = !m_isMuted;
        simulation().events().setVolume(m_id.text(), m_isMuted ? -20.0F : -30.0F, m_isMuted);
        advance(20ms);
        EXPECT_EQ(m_isMuted, audio().endpoint(m_id)->volume()->isMuted);
    }

    Watch m_watch;
    /// Whether all has been done nevertheless, so that there is nothing to tell.
    std::function<bool()> isDone = [] { return false; };
    EndpointId m_id;
    CardId m_card;
    bool m_isMuted = false;
};

TEST_F(SystemWithAFailingCall, IsCompleteAgainAfterTheNextRefresh)
{
    forEachCall(
        [this]
        {
            std::vector<Problem> problems;
            appendResult(problems, audio().refresh(Depth::everything));
            append(problems, audio().snapshot());
            return problems;
        },
        200, 3);
}

TEST_F(SystemWithAFailingCall, IsCompleteAgainAfterTheNextRefreshOfAWatchedCard)
{
    forEachCall(
        [this]
        {
            std::vector<Problem> problems;
            m_watch = Watch();
            Result<Watch> watched = audio().watch(m_card);
            appendResult(problems, watched);
            append(problems, audio().snapshot());
            if (watched)
                m_watch = *std::move(watched);
            return problems;
        },
        50, 5);
    m_watch.stop();
}

TEST_F(SystemWithAFailingCall, NamesItInTheGraph)
{
    forEachCall(
        [this]
        {
            std::vector<Problem> problems;
            const Result<Graph> graph = audio().graph(m_card);
            appendResult(problems, graph);
            if (graph)
                append(problems, graph->problems);
            return problems;
        },
        50, 3);
}

TEST_F(SystemWithAFailingCall, NamesItInTheAnswerOfASetter)
{
    bool areDone = false;
    isDone = [&] { return areDone && audio().endpoint(m_id)->problems().empty(); };
    forEachCall(
        [&]
        {
            std::vector<Problem> problems;
            const Result<Volume> level = audio().setVolume(m_id, Percent(37));
            const Result<Volume> mute = audio().setMute(m_id, true);
            areDone = level && mute && mute->isMuted == true && mute->master.percent &&
                      std::abs(mute->master.percent->value() - 37) < 1;
            appendResult(problems, level);
            appendResult(problems, mute);
            append(problems, audio().snapshot());
            return problems;
        },
        5);
}

/// The last reading of the computer as a whole was announced, and could not be made.
TEST_F(SystemWithAFailingCall, TriesToReadADefaultAgain)
{
    const auto inputs = audio().snapshot().endpoints();
    const auto other = std::find_if(inputs.begin(), inputs.end(),
                                    [this](const Endpoint& endpoint) {
                                        return endpoint.flow() == Flow::output && endpoint.state() == State::active &&
                                               endpoint.id() != m_id;
                                    });
    ASSERT_NE(inputs.end(), other);
    simulation().faults().fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint", planned);
    simulation().events().setDefault(other->id().text(), eConsole);
    advance(50ms);
    ASSERT_FALSE(audio().snapshot().problems().empty());
    simulation().faults().clear();

    advance(250ms);

    EXPECT_THAT(audio().snapshot().problems(), IsEmpty());
    ASSERT_TRUE(audio().defaultEndpoint(Flow::output));
    EXPECT_EQ(other->id(), audio().defaultEndpoint(Flow::output)->id());
}

/// An announcement of the defaults of one flow comes while an earlier reading is to be tried again.
TEST_F(SystemWithAFailingCall, TriesToReadADefaultAgainSoonAfterEachAnnouncement)
{
    const auto count = [this] { return simulation().journal().count("IMMDeviceEnumerator::GetDefaultAudioEndpoint"); };
    for (const EDataFlow flow : {eRender, eCapture})
    {
        const auto announce = [&] { simulation().events().announceDefault(flow, eConsole, m_id.text()); };
        simulation().faults().fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint", planned);
        announce();
        advance(50ms);
        for (const auto pause : {250ms, 500ms, 1000ms})
            advance(pause); // the next try comes after 2 seconds
        announce();
        ASSERT_TRUE(audio().refresh());
        const std::size_t before = count();

        advance(250ms);

        EXPECT_LT(before, count());
        simulation().faults().clear();
        ASSERT_TRUE(audio().refresh(Depth::everything));
        ASSERT_THAT(audio().snapshot().problems(), IsEmpty());
    }
}

/// Without notifications the layer would never know better.
TEST_F(SystemWithAFailingCall, RegistersForEventsAgain)
{
    endSystem();
    const sim::PlannedFault fault =
        simulation().faults().fail("IMMDeviceEnumerator::RegisterEndpointNotificationCallback", planned).at(1);
    System audio(polledOptions());
    EXPECT_EQ(1u, audio.snapshot().problems().size());
    ASSERT_EQ(1u, fault.fired());

    ASSERT_TRUE(audio.refresh(Depth::everything));

    EXPECT_THAT(audio.snapshot().problems(), IsEmpty());
    simulation().events().remove(m_id.text());
    advance(50ms);
    EXPECT_FALSE(audio.endpoint(m_id));
}

/// Nothing announces the end of the service.
TEST_F(SystemWithAFailingCall, NoticesTheEndOfTheServiceInASetter)
{
    for (const char* const operation : {"CoCreateInstance", "IMMDeviceEnumerator::EnumAudioEndpoints",
                                        "IAudioEndpointVolume::SetMasterVolumeLevelScalar"})
        simulation().faults().fail(operation, noServer);

    const Result<Volume> refused = audio().setVolume(m_id, Percent(12));
    advance(50ms);

    ASSERT_FALSE(refused);
    EXPECT_EQ(noServer, refused.problem().code());
    EXPECT_EQ(Service::stopped, audio().snapshot().service());
}

TEST_F(SystemWithAFailingCall, NoticesTheEndOfTheServiceInAWalk)
{
    for (const char* const operation :
         {"CoCreateInstance", "IMMDeviceEnumerator::EnumAudioEndpoints", "IMMDeviceEnumerator::GetDevice"})
        simulation().faults().fail(operation, noServer);

    static_cast<void>(audio().graph());
    advance(50ms);

    EXPECT_EQ(Service::stopped, audio().snapshot().service());
}

/// An endpoint goes between two calls of a reading, at any place.
TEST_F(SystemWithAFailingCall, HasNoEndpointThatVanishesInTheMiddleOfAReading)
{
    const auto read = [this]
    {
        static_cast<void>(audio().refresh(Depth::everything));
        return std::vector<Problem>();
    };
    const std::vector<Call> calls = callsOf(read);
    for (std::size_t index = 0; index < calls.size(); index += 7)
    {
        SCOPED_TRACE(calls[index].operation + ", call " + std::to_string(calls[index].number));
        const sim::PlannedFault fault =
            simulation()
                .faults()
                .run(calls[index].operation, [this] { simulation().events().remove(m_id.text()); })
                .at(calls[index].number);
        ASSERT_TRUE(audio().refresh(Depth::everything));
        ASSERT_EQ(1u, fault.fired());
        simulation().faults().clear();

        ASSERT_TRUE(audio().refresh());

        EXPECT_FALSE(audio().endpoint(m_id));
        EXPECT_NE(m_id, audio().defaultEndpoint(Flow::output).value_or(Endpoint()).id());
        simulation().events().add(m_id.text());
        ASSERT_TRUE(audio().refresh());
        ASSERT_TRUE(audio().endpoint(m_id));
        EXPECT_THAT(audio().endpoint(m_id)->problems(), IsEmpty());
        ASSERT_FALSE(HasFailure());
    }
}
}
