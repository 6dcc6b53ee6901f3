#include "qor/logging.h"
#include "simulator/machine/file/machinefile.h"
#include "tests/faults/kept/judge.h"
#include "tests/faults/kept/machines.h"
#include "tests/faults/kept/rounds.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{
using namespace faults::kept;

/// SONAVIT_KEPT_ROUNDS sets how often all is done. A text that is no number above 0 fails the test.
unsigned keptRounds(unsigned usual)
{
    const char* const text = std::getenv("SONAVIT_KEPT_ROUNDS");
    const unsigned rounds = text == nullptr ? usual : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
    EXPECT_LT(0U, rounds) << text;
    return rounds;
}

/// The log would be most of the output, and half of the time.
class KeptTest : public testing::Test
{
protected:
    void SetUp() override
    {
        qor::LogFactory::setSink([](const qor::LogRecord&) {});
        qor::LogFactory::setPriority(qor::LoggerPriority::LOG_FATAL);
    }
};

using KeptTable = KeptTest;
using KeptRounds = KeptTest;

TEST_F(KeptTable, HasWhatEachOperationLeavesAndNothingElse)
{
    for (const Row& row : allRows())
    {
        EXPECT_EQ("", errorOf(row, deskMachine()));
        EXPECT_EQ("", errorOf(row, sim::findMachine("laptop")));
    }
}

TEST_F(KeptTable, HasNoKindThatNoMachineShows)
{
    EXPECT_EQ("", needlessKinds(allRows(), {deskMachine(), sim::findMachine("desktop")}));
}

TEST_F(KeptTable, MissesAnOperationThatIsInTheWrongRow)
{
    for (Row row : allRows())
    {
        if (row.keeps.empty())
            continue;
        row.keeps.clear();
        EXPECT_NE("", errorOf(row, deskMachine())) << row.operation;
    }
}

TEST_F(KeptRounds, OfWhatKeepsNothingGrowNothing)
{
    for (const Row& row : allRows())
    {
        if (row.keeps.empty())
        {
            EXPECT_EQ("", growthOf(row, deskMachine(), keptRounds(10))) << row.operation;
        }
    }
}

TEST_F(KeptRounds, OfTheClientLayerGrowNothing)
{
    std::vector<faults::memory::ClientCase> cases = faults::memory::readingCases();
    for (const faults::memory::ClientCase& each : faults::memory::changingCases())
        cases.push_back(each);

    EXPECT_EQ("", growthOf(cases, deskMachine(), keptRounds(20)));
    EXPECT_EQ("", growthOfSystems(deskMachine(), keptRounds(10)));
}

/// The watch itself: a row that keeps something does grow.
TEST_F(KeptRounds, OfWhatKeepsSomethingGrow)
{
    for (const Row& row : allRows())
    {
        if (row.operation == "AudioDevice::isDefaultEndpoint")
        {
            EXPECT_NE("", growthOf(row, deskMachine(), 10));
        }
    }
}
}
