// The program's commands on hostile platforms: each ends with success, with one sentence or with valid JSON, and writes
// nothing that is no text. When the platform is honest again, so is the program.
#include "tests/hostile/platforms/platform.h"
#include "tests/hostile/texts.h"
#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <vector>

using nlohmann::json;

namespace
{
using hostile::Platform;
using Words = std::vector<std::string>;

const char* const reference = "REFERENCE"; // stands for what refer says of the honest machine's speaker

/// Machine "honest" has these endpoints; "0" is a wave id.
const std::vector<Words> readingCommands = {{"list"},
                                            {"list", "--short"},
                                            {"show", "Speakers"},
                                            {"controls", "Microphone"},
                                            {"selectors"},
                                            {"graph"},
                                            {"get-volume", "Speakers"},
                                            {"save"},
                                            {"capture"},
                                            {"doctor"},
                                            {"explain", "Speakers"},
                                            {"find", "0"},
                                            {"refer", "Speakers"},
                                            {"format", "Speakers"},
                                            {"list", "--via", "model"},
                                            {"controls", "Speakers", "--via", "model"},
                                            {"resolve", reference}};

const std::vector<Words> changingCommands = {{"set-volume", "Speakers", "50%"},
                                             {"mute", "Speakers", "toggle"},
                                             {"set-control", "Speakers", "Volume", "-6dB"},
                                             {"select", "Input", "Microphone"},
                                             {"format", "Speakers", "--set", "16/44100/2"},
                                             {"restore"},
                                             {"monitor"}};

class ProgramOnHostilePlatforms : public support::ProgramTest, public testing::WithParamInterface<hostile::Topic>
{
protected:
    void SetUp() override
    {
        ProgramTest::SetUp();
        run(hostile::honest().machine);
        input = call({"save"}).out; // for restore
        m_reference = call({"refer", "Speakers"}).lines().at(0);
    }

    /// Calls one of @p commands on each platform, another one on the next, in both forms; all of them on each if
    /// everything is wanted. Then the platform becomes honest.
    void onEach(std::size_t number, const std::vector<Words>& commands)
    {
        constexpr std::size_t uses = 2;
        std::size_t next = 0;
        for (const Platform& platform : hostile::shareOf(GetParam(), number, uses))
        {
            SCOPED_TRACE(platform.name);
            run(hostile::machineOf(platform));
            hostile::References references = platform.lie ? platform.lie(simulation()) : hostile::References();
            for (std::size_t count = hostile::isEverythingWanted() ? commands.size() : 1; count > 0; --count)
            {
                const Words& words = commands[next++ % commands.size()];
                if (!readsWithModel(words) || platform.beyondObjectModel.empty())
                    tryBoth(words);
            }
            references.clear();
            const std::string found = honestList();
            run(&commands == &readingCommands ? hostile::machineOf(platform) : simulation().machine());
            EXPECT_EQ(honestList(), found);
        }
    }

private:
    static bool readsWithModel(const Words& words) { return words.back() == "model"; }

    /// The list of the machine, which tells the truth from now on.
    std::string honestList()
    {
        simulation().faults().clear();
        return call({"list", "--json"}).out;
    }

    void tryBoth(Words words)
    {
        SCOPED_TRACE(testing::PrintToString(words));
        std::replace(words.begin(), words.end(), std::string(reference), m_reference);
        const bool isWithModel = readsWithModel(words);
        const bool isMonitor = words[0] == "monitor"; // it goes on until the end is requested
        pause = [isMonitor](std::chrono::milliseconds) { return isMonitor; };
        const sim::Census before = simulation().census();
        const support::Answer text = call(words);
        std::string shown = text.out;
        std::replace(shown.begin(), shown.end(), '\t', ' '); // between the fields of short lists
        if (words[0] == "capture")
            std::replace(shown.begin(), shown.end(), '\x7F',
                         ' '); // a terminal ignores it, and JSON may have it as it is
        hostile::expectPrintable(shown, false);
        expectSentence(words[0], text);
        words.emplace_back("--json");
        const support::Answer answer = call(words);
        hostile::expectUtf8(answer.out);
        expectSentence(words[0], answer);
        if (isMonitor)
            return; // its lines are events
        const json document = json::parse(answer.out, nullptr, false);
        ASSERT_FALSE(document.is_discarded()) << answer.out.substr(0, 500);
        if (answer.code != 0 && !isReport(words[0], answer))
        {
            ASSERT_TRUE(document.contains("error")) << answer.out.substr(0, 500);
            EXPECT_THAT(answer.err, testing::EndsWith("sonavit: " + document["error"].get<std::string>() + "\n"));
        }
        const sim::Census left = simulation().census() - before;
        if (isWithModel)
            expectWhatTheModelKeeps(left);
        else
            EXPECT_EQ(sim::Census(), left);
    }

    /// Lists of neighbours, and ids of default endpoints.
    static void expectWhatTheModelKeeps(const sim::Census& left)
    {
        EXPECT_EQ(left.references("IPartsList"), left.references()) << left;
        EXPECT_TRUE(left.clients.empty()) << left;
        for (const auto& block : left.taskMemory)
            EXPECT_EQ(0u, block.first.rfind("IMMDevice::GetId", 0)) << left;
    }

    /// A report of doctor or restore with findings has exit code 1, and needs no sentence.
    static bool isReport(const std::string& command, const support::Answer& answer)
    {
        return (command == "doctor" || command == "restore") && answer.code == 1 && answer.err.empty() &&
               !answer.out.empty();
    }

    static void expectSentence(const std::string& command, const support::Answer& answer)
    {
        hostile::expectPrintable(answer.err, false);
        EXPECT_THAT(answer.code, testing::AnyOf(0, 1, 2, 3)); // 2: several things have that name
        if (answer.code == 0 || isReport(command, answer))
            return;
        const std::size_t sentence = answer.err.rfind("sonavit: ");
        ASSERT_NE(std::string::npos, sentence) << answer.err.substr(0, 500);
        EXPECT_EQ(answer.err.size() - 1, answer.err.find('\n', sentence)) << answer.err.substr(0, 500);
    }

    std::string m_reference;
};
}

TEST_P(ProgramOnHostilePlatforms, ReadsWhatThereIs)
{
    onEach(0, readingCommands);
}

TEST_P(ProgramOnHostilePlatforms, ChangesWhatCanBeChanged)
{
    onEach(1, changingCommands);
}

INSTANTIATE_TEST_SUITE_P(Topics, ProgramOnHostilePlatforms, testing::ValuesIn(hostile::topics()),
                         [](const auto& each) { return std::string(each.param.name); });
