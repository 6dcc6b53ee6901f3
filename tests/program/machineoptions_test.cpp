// Options that change a simulated machine.
#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using support::Answer;

namespace
{
struct MachineOption
{
    const char* name;
    const char* value;
};

class ProgramMachineOption : public support::ProgramTest, public testing::WithParamInterface<MachineOption>
{
};

TEST_P(ProgramMachineOption, NeedsASimulatedMachine)
{
    run(support::smallMachine());
    const std::string option = GetParam().name;
    const std::string error = option + " needs a simulated machine, which --machine names";

    const Answer text = call({"list", option, GetParam().value});
    const Answer inJson = call({"list", option, GetParam().value, "--json"});

    EXPECT_EQ(2, text.code);
    EXPECT_EQ("", text.out);
    EXPECT_EQ("sonavit: " + error + "\n", text.err);
    EXPECT_EQ(2, inJson.code);
    EXPECT_EQ(error, json::parse(inJson.out)["error"]);
}

/// The default value of an option is refused, too.
INSTANTIATE_TEST_SUITE_P(Each, ProgramMachineOption,
                         testing::Values(MachineOption{"--account", "ordinary"},
                                         MachineOption{"--account", "administrator"},
                                         MachineOption{"--latency", "windows"}, MachineOption{"--latency", "none"}),
                         [](const auto& info) { return std::string(info.param.name + 2) + info.param.value; });
}
