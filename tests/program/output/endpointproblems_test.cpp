#include "tools/sonavit/output/endpointproblems.h"

#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

using nlohmann::json;

namespace
{
/// What JSON says where the platform fails to report a default.
class ProgramUnknownDefault : public support::ProgramTest
{
};
}

TEST_F(ProgramUnknownDefault, IsNullInTheList)
{
    run(support::smallMachine());
    simulation().faults().fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint").with({"eRender"});

    for (const char* const via : {"layer", "model"})
    {
        const json endpoints = json::parse(call({"list", "--json", "--via", via}).out)["cards"][0]["endpoints"];
        ASSERT_EQ(3u, endpoints.size()) << via;
        for (const std::size_t output : {0, 1})
        {
            EXPECT_TRUE(endpoints[output]["isDefault"].is_null()) << via;
            EXPECT_TRUE(endpoints[output]["defaultFor"].is_null()) << via;
            EXPECT_EQ(3u, endpoints[output]["problems"].size()) << via;
            EXPECT_EQ("roles", endpoints[output]["problems"][0]["field"]) << via;
        }
        EXPECT_EQ(json(true), endpoints[2]["isDefault"]) << via;
        EXPECT_EQ(3u, endpoints[2]["defaultFor"].size()) << via;
        EXPECT_TRUE(endpoints[2]["problems"].empty()) << via;
    }
}

TEST_F(ProgramUnknownDefault, IsNullInTheListWithoutTheIdOfTheDefault)
{
    run(support::smallMachine());
    const auto endpoints = [&](const char* via, std::uint32_t call)
    {
        simulation().faults().clear();
        simulation().faults().fail("IMMDevice::GetId").on(support::speakerId()).at(call);
        return json::parse(ProgramTest::call({"list", "--json", "--via", via}).out)["cards"][0]["endpoints"];
    };

    for (const json& listed : {endpoints("layer", 2), endpoints("model", 1)}) // the list is the first, or the last
    {
        ASSERT_EQ(3u, listed.size());
        EXPECT_TRUE(listed[0]["isDefault"].is_null());
        EXPECT_TRUE(listed[1]["isDefault"].is_null());
        EXPECT_EQ("IMMDevice::GetId(eRender, eConsole)", listed[0]["problems"][0]["operation"]);
        EXPECT_EQ(json(true), listed[2]["isDefault"]);
    }
}

TEST_F(ProgramUnknownDefault, LeavesIsDefaultAsItIsInAnotherRole)
{
    run(support::smallMachine());
    simulation().faults().fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint").with({"eRender", "eMultimedia"});

    for (const std::vector<std::string>& via : {std::vector<std::string>(), {"--via", "model"}})
    {
        std::vector<std::string> words = {"show", support::speakerId(), "--json"};
        words.insert(words.end(), via.begin(), via.end());
        const json endpoint = json::parse(call(words).out)["endpoint"];

        EXPECT_EQ(json(true), endpoint["isDefault"]);
        EXPECT_TRUE(endpoint["defaultFor"].is_null());
        ASSERT_EQ(1u, endpoint["problems"].size());
        EXPECT_EQ("roles", endpoint["problems"][0]["field"]);
        EXPECT_EQ("IMMDeviceEnumerator::GetDefaultAudioEndpoint(eRender, eMultimedia)",
                  endpoint["problems"][0]["operation"]);
    }
}
