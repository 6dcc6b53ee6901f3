// A capture of a machine answers as the machine itself: examiner against examiner, journal against journal.
#include "simulator/machine/file/machinefile.h"
#include "tests/client/capturing/capturetest.h"
#include "tests/simulator/machine/file/machinesample.h"
#include "tests/support/pace.h"
#include "tests/support/randommachine.h"

#include <algorithm>
#include <map>
#include <set>

namespace
{
constexpr std::uint32_t machinesInATest = support::cases(25, 5);

/// What no capture can see, taken out of the machine that is captured: a fault that comes once or after an event is
/// met by the capture, or not, and by the examiner at another call.
sim::Machine withLastingFaults(sim::Machine machine)
{
    const auto passes = [](const sim::FaultRule& rule)
    { return rule.call != 0 || rule.forMilliseconds != 0 || rule.after; };
    machine.faults.erase(std::remove_if(machine.faults.begin(), machine.faults.end(), passes), machine.faults.end());
    return machine;
}

/// Writes journals so that those of a machine and of its capture can be compared. The journal calls objects by their
/// ids in the machine, which are invented in a capture if the objects did not report them; those get numbers here, in
/// the order in which the journal meets them.
class ComparableJournal
{
public:
    explicit ComparableJournal(const sim::Machine& machine)
    {
        for (const sim::Endpoint& endpoint : machine.endpoints)
            noteSilentParts(endpoint);
        for (const sim::Adapter& adapter : machine.adapters)
            noteSilentParts(adapter);
        for (const sim::FaultRule& rule : machine.faults)
        {
            if (rule.operation == "IPart::GetGlobalId" || rule.operation == "IMMDevice::GetId")
                m_silent.insert(rule.object);
        }
    }

    std::vector<std::string> lines(const sim::JournalEntries& journal)
    {
        std::vector<std::string> result;
        for (sim::JournalEntry entry : journal)
        {
            entry.object = nameOf(entry.object);
            std::transform(entry.arguments.begin(), entry.arguments.end(), entry.arguments.begin(),
                           [&](const std::string& argument) { return nameOf(argument); });
            result.push_back(entry.line());
        }
        return result;
    }

private:
    void noteSilentParts(const sim::Device& device)
    {
        const auto note = [&](const sim::Part& part)
        {
            if (!part.reportsId)
                m_silent.insert(part.id);
        };
        if (!device.topology)
            return;
        std::for_each(device.topology->connectors.begin(), device.topology->connectors.end(), note);
        std::for_each(device.topology->subunits.begin(), device.topology->subunits.end(), note);
    }

    std::string nameOf(const std::string& object)
    {
        const std::size_t blank = object.find(' ');
        if (blank != std::string::npos && m_silent.count(object.substr(blank + 1)) > 0) // the origin of memory
            return object.substr(0, blank + 1) + nameOf(object.substr(blank + 1));
        if (m_silent.count(object) == 0)
            return object;
        const std::size_t number = m_numbers.emplace(object, m_numbers.size() + 1).first->second;
        return "object " + std::to_string(number) + " without id";
    }

    std::set<std::string> m_silent;
    std::map<std::string, std::size_t> m_numbers;
};

/// What a fault shows that a capture does not ask: the lines of a transcript, or of a journal, that it explains.
///
/// A fault without arguments, and a getter that an endpoint refuses, also meet calls with arguments that are invalid,
/// such as the channel after the last one, and the third way to open a store, for writing alone. And a capture that may
/// not open the store of a device does not know the format of its exclusive streams, which is a property.
class UnseenFailures
{
public:
    explicit UnseenFailures(const sim::Machine& machine)
    {
        for (const sim::FaultRule& rule : machine.faults)
        {
            if (rule.argument.empty() && rule.arguments.empty())
                m_broad.insert(rule.operation + " on " + rule.object);
        }
        for (const sim::Endpoint& endpoint : machine.endpoints)
        {
            if (!endpoint.volume)
                continue;
            for (const std::string& getter : endpoint.volume->refused)
                m_broad.insert("IAudioEndpointVolume::" + getter + " on " + endpoint.id);
        }
    }

    /// Takes over those answers of the replay that the failures explain.
    void settle(support::Transcript& original, const support::Transcript& replay) const
    {
        std::map<std::string, std::string> answers;
        for (const std::string& line : replay)
            answers.emplace(questionOf(line), line);
        for (std::string& line : original)
        {
            const auto found = answers.find(questionOf(line));
            if (found != answers.end() && explains(line, found->second))
                line = found->second;
        }
    }

private:
    static std::string questionOf(const std::string& line) { return line.substr(0, line.find(" -> ")); }
    static bool begins(const std::string& line, const std::string& with) { return line.rfind(with, 0) == 0; }

    bool explains(const std::string& line, const std::string& replayed) const
    {
        const std::string question = questionOf(line);
        const std::string object = question.substr(question.rfind(" on ") + 4);
        const std::string operation = question.substr(0, question.find('('));
        const auto isBroad = [&](const std::string& each) { return m_broad.count(each + " on " + object) > 0; };
        const bool isInvalid = replayed.find(" -> 0x80070057") != std::string::npos;
        if (isBroad(operation) && (isInvalid || begins(line, "IMMDevice::OpenPropertyStore(1)")))
            return true;
        return isBroad("IMMDevice::OpenPropertyStore") && (begins(line, "IAudioClient::IsFormatSupported(1, ") ||
                                                           begins(line, "IAudioClient::IsFormatSupported(exclusive"));
    }

    std::set<std::string> m_broad; ///< "operation on object"
};

/// Operations that change something or register a client.
bool isChange(const sim::JournalEntry& entry)
{
    static const char* const names[] = {"::Set",        "::Register",   "::Commit",    "::Unregister",
                                        "::Initialize", "::Start",      "::Stop",      "::Reset",
                                        "::ConnectTo",  "::Disconnect", "::VolumeStep"};
    return std::any_of(std::begin(names), std::end(names),
                       [&](const char* name) { return entry.operation.find(name) != std::string::npos; });
}

class CaptureRoundTrip : public CaptureTest
{
protected:
    static void expectEqualAnswers(const sim::Machine& machine, const sim::Machine& replay)
    {
        const support::Examination original = examined(machine);
        const support::Examination repeated = examined(replay);
        const UnseenFailures unseen(machine);
        support::Transcript expected = original.transcript;
        std::vector<std::string> expectedCalls = ComparableJournal(machine).lines(original.journal);
        const std::vector<std::string> calls = ComparableJournal(replay).lines(repeated.journal);
        unseen.settle(expected, repeated.transcript);
        unseen.settle(expectedCalls, calls);
        EXPECT_EQ("", support::firstDifference(expected, repeated.transcript));
        EXPECT_EQ("", support::firstDifference(expectedCalls, calls));
    }

    static void expectHarmless(const Captured& captured)
    {
        for (const sim::JournalEntry& entry : captured.journal)
            EXPECT_FALSE(isChange(entry)) << entry.line();
        EXPECT_TRUE(captured.left.empty()) << captured.left;
    }

    static void expectRoundTrip(const sim::Machine& captureOf)
    {
        const sim::Machine machine = withLastingFaults(captureOf);
        SCOPED_TRACE(machine.name + ", " + lookAt(machine));

        const Captured first = captured(machine);
        const sim::Machine replay = replayed(first);
        const Captured second = captured(replay);

        expectHarmless(first);
        expectEqualAnswers(machine, replay);
        EXPECT_EQ("", support::firstDifference(first.lines(), second.lines()));
        EXPECT_EQ(first.capture.text, second.capture.text);
        EXPECT_EQ("", support::firstDifference(first.problems(), second.problems()));
    }
};

class CaptureRoundTripAtRandom : public CaptureRoundTrip, public testing::WithParamInterface<std::uint32_t>
{
public:
    static constexpr std::uint32_t machines = support::cases(100, 5);
};

TEST_F(CaptureRoundTrip, OfEachShippedMachineAnswersAlike)
{
    for (const std::string& name : support::share(sim::machineNames(), 3))
        expectRoundTrip(sim::findMachine(name));
}

TEST_F(CaptureRoundTrip, OfAMachineWithEveryFieldAnswersAlike)
{
    sim::Machine machine = sample::machine();
    machine.faults.clear(); // its rules are of all forms, whatever they mean

    expectRoundTrip(machine);
}

TEST_P(CaptureRoundTripAtRandom, AnswersAlike)
{
    for (std::uint32_t seed = GetParam(); seed < GetParam() + machinesInATest && !HasFailure(); ++seed)
        expectRoundTrip(support::randomMachine(seed));
}

TEST_P(CaptureRoundTripAtRandom, OfOddLevelsAnswersAlike)
{
    const std::uint32_t last = GetParam() + machinesInATest / 5;
    for (std::uint32_t seed = GetParam(); seed < last && !HasFailure(); ++seed)
        expectRoundTrip(support::withOddLevels(support::randomMachine(seed), seed));
}

INSTANTIATE_TEST_SUITE_P(Seeds, CaptureRoundTripAtRandom,
                         testing::Range(std::uint32_t{0}, CaptureRoundTripAtRandom::machines, machinesInATest));
}
