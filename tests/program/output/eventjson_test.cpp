#include "tools/sonavit/output/eventjson.h"

#include "sonavit/client.h"
#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using sonavit::Flow;
using sonavit::Role;

namespace
{
/// A line of the monitor about a default that changes.
class ProgramDefaultEvent : public support::ProgramTest
{
protected:
    /// That of the default input for multimedia, when @p happen has changed the small machine.
    template<class Happening>
    json lineAfter(Happening happen)
    {
        run(support::smallMachine());
        sonavit::System::Options options;
        options.delivery = sonavit::Delivery::poll;
        options.onWorkerStart = onWorkerStart;
        sonavit::System audio(options);
        const sonavit::Snapshot before = audio.snapshot();
        happen();
        const sonavit::Snapshot after = audio.refresh(sonavit::Depth::everything).value();
        const std::vector<sonavit::Event> events = sonavit::difference(before, after);
        const sonavit::Change change(before, after, events);
        for (const sonavit::Event& event : events)
        {
            if (event.kind == sonavit::Event::Kind::defaultChanged && event.flow == Flow::input &&
                event.role == Role::multimedia)
                return json::parse(sonavit::program::eventJson(event, change, {}, std::nullopt).line());
        }
        return json();
    }
};
}

TEST_F(ProgramDefaultEvent, SaysWhyADefaultIsNotKnownAnyMore)
{
    const json line = lineAfter(
        [this] { simulation().faults().fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint").with({"eCapture"}); });

    ASSERT_EQ("defaultChanged", line["event"]);
    EXPECT_EQ(nullptr, line["after"]);
    EXPECT_EQ("IMMDeviceEnumerator::GetDefaultAudioEndpoint(eCapture, eMultimedia)", line["problem"]["operation"]);
}

TEST_F(ProgramDefaultEvent, HasNoProblemIfThereIsNoDefaultAnyMore)
{
    const json line = lineAfter([this] { simulation().events().clearDefault(eCapture, eMultimedia); });

    ASSERT_EQ("defaultChanged", line["event"]);
    EXPECT_EQ(nullptr, line["after"]);
    ASSERT_EQ(1u, line.count("problem"));
    EXPECT_EQ(nullptr, line["problem"]);
}
