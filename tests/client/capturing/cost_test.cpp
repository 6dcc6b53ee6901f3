// What a capture costs in calls of the platform.
#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/file/machinefile.h"
#include "tests/client/capturing/capturetest.h"
#include "tests/simulator/held.h"
#include "tests/support/plainreader.h"

#include <map>
#include <sstream>
#include <string>

namespace
{
/// The calls that ask something, by operation.
class Questions
{
public:
    explicit Questions(const sim::JournalEntries& journal)
    {
        for (const sim::JournalEntry& entry : journal)
        {
            if (entry.operation.rfind("Co", 0) == 0 || entry.operation == "PropVariantClear")
                continue;
            ++m_byOperation[entry.operation];
            ++total;
        }
    }

    /// For people: what both count.
    std::string besides(const Questions& other) const
    {
        std::map<std::string, std::pair<unsigned, unsigned>> both;
        for (const auto& [operation, count] : m_byOperation)
            both[operation].first = count;
        for (const auto& [operation, count] : other.m_byOperation)
            both[operation].second = count;
        std::ostringstream text;
        for (const auto& [operation, counts] : both)
            text << counts.first << '\t' << counts.second << '\t' << operation << '\n';
        return text.str();
    }

    unsigned total = 0;

private:
    std::map<std::string, unsigned> m_byOperation;
};

class CaptureCost : public CaptureTest
{
protected:
    static Questions ofCapture(const sim::Machine& machine) { return Questions(captured(machine).journal); }

    static Questions ofPlainReader(const sim::Machine& machine)
    {
        sim::Simulation simulation(machine);
        simulation.latency().clear();
        const bench::Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
        support::readPlainly(*enumerator.get());
        return Questions(simulation.journal().entries());
    }

    static sim::Machine withEndpoints(unsigned count)
    {
        sim::MachineBuilder builder;
        for (unsigned index = 0; index < count; index += 2)
        {
            sim::CardBuilder card = builder.card("Card " + std::to_string(index));
            card.speaker();
            card.microphone();
        }
        return builder.build();
    }
};

TEST_F(CaptureCost, OfTheCrowdedMachineIsAtMostOneAndAHalfTimesThatOfAPlainReader)
{
    const sim::Machine machine = sim::findMachine("crowded");

    const Questions capture = ofCapture(machine);
    const Questions plain = ofPlainReader(machine);

    ASSERT_LT(5000u, plain.total);
    EXPECT_LE(2 * capture.total, 3 * plain.total) << capture.besides(plain);
    RecordProperty("calls", static_cast<int>(capture.total));
    RecordProperty("plain", static_cast<int>(plain.total));
}

TEST_F(CaptureCost, GrowsWithTheNumberOfEndpoints)
{
    const unsigned ofFifty = ofCapture(withEndpoints(50)).total;
    const unsigned ofHundred = ofCapture(withEndpoints(100)).total;
    const unsigned ofTwoHundred = ofCapture(withEndpoints(200)).total;

    EXPECT_LT(ofFifty, ofHundred);
    EXPECT_EQ(2 * (ofHundred - ofFifty), ofTwoHundred - ofHundred);
}
}
