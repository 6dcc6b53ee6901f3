/// What a command that is given a machine leaves of it. On Windows COM is the system's own, which keeps no journal.
#include "tests/program/programtest.h"

#include <cstddef>
#include <string>
#include <thread>
#include <vector>

namespace
{
class ProgramSession : public support::ProgramTest
{
protected:
    /// What the machine outside of the program is asked on this thread by a command on machine desktop.
    std::vector<std::string> askedOutside(std::vector<std::string> words)
    {
        simulation().journal().clear();
        words.insert(words.end(), {"--machine", "desktop"});
        call(words);
        return simulation().journal().entries().onThread(std::this_thread::get_id()).operations();
    }

    /// The same on other threads, those of the client layer.
    std::vector<std::string> askedElsewhere()
    {
        std::vector<std::string> operations;
        for (const sim::JournalEntry& entry : simulation().journal().entries())
        {
            if (entry.thread != std::this_thread::get_id())
                operations.push_back(entry.operation);
        }
        return operations;
    }
};
}

// Its thread works on the machine of the command alone, and has ended with COM before that machine does.
TEST_F(ProgramSession, EndsTheClientLayerBeforeItsMachine)
{
    run(support::smallMachine());

    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"list"}, {"controls", "Speakers"}, {"show", "Trumpet"}})
    {
        askedOutside(words);
        EXPECT_THAT(askedElsewhere(), testing::IsEmpty()) << words[0];
    }
}

TEST_F(ProgramSession, EndsItsMachineBeforeComAlsoAfterACommandThatFails)
{
    run(support::smallMachine());

    for (const char* const via : {"layer", "model"})
    {
        const std::vector<std::string> operations = askedOutside({"show", "Trumpet", "--via", via});

        ASSERT_FALSE(operations.empty()) << via;
        EXPECT_EQ("CoInitialize", operations.front()) << via;
        EXPECT_EQ("CoUninitialize", operations.back()) << via;
        EXPECT_EQ(0u, simulation().comUnderflows()) << via;
    }
}

TEST_F(ProgramSession, LeavesComAsItWas)
{
    run(support::smallMachine());
    const auto uses = [this](const char* operation)
    { return simulation().journal().entries().onThread(std::this_thread::get_id()).of(operation).size(); };
    for (const char* const via : {"layer", "model"})
    {
        call({"list", "--via", via}); // from here on the enumerator is that of a command
        const std::size_t begun = uses("CoInitialize*");
        const std::size_t ended = uses("CoUninitialize");

        call({"list", "--via", via});

        EXPECT_LT(begun, uses("CoInitialize*")) << via;
        EXPECT_EQ(uses("CoInitialize*") - begun, uses("CoUninitialize") - ended) << via;
    }
}
