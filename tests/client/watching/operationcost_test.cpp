#include "tests/client/watching/watchtest.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using namespace sonavit;

namespace
{
/// What the operations of a System cost, in calls of the platform. docs/client.md shows these numbers.
class SystemOperationCost : public support::WatchTest
{
protected:
    /// An operation and the most calls that it may make on the machine "desktop" and on the machine "crowded".
    struct Row
    {
        const char* operation;
        std::size_t onDesktop;
        std::size_t onCrowded;
        std::function<bool()> isDone;
    };

    void start(const std::string& machine)
    {
        watch(machine);
        isCrowded = machine == "crowded";
        output = audio().defaultEndpoint(Flow::output).value().id();
        card = audio().snapshot().cardOf(output).value().id();
        const Result<std::vector<Control>> controls = audio().controls(output);
        ASSERT_TRUE(controls && !controls->empty());
        control = controls->front().id;
        saved = audio().settings().value();
    }

    /// Measures what @p rows cost one after the other.
    void measure(const std::vector<Row>& rows)
    {
        for (const Row& row : rows)
        {
            advance(std::chrono::seconds(2)); // so that no walk through the hardware is used again
            static_cast<void>(audio().refresh());
            callsSince();

            EXPECT_TRUE(row.isDone()) << row.operation;

            const std::size_t calls = callsSince();
            EXPECT_LE(calls, isCrowded ? row.onCrowded : row.onDesktop) << row.operation;
            RecordProperty(row.operation, static_cast<int>(calls));
        }
    }

    std::vector<Row> readings()
    {
        return {{"snapshot", 0, 0, [this] { return !audio().snapshot().cards().empty(); }},
                {"refresh", 0, 0, [this] { return bool(audio().refresh()); }},
                {"refreshEverything", 309, 2052, [this] { return bool(audio().refresh(Depth::everything)); }},
                {"find", 0, 0, [this] { return !audio().find("0").empty(); }},
                {"refer", 0, 0, [this] { return bool(audio().refer(output)); }},
                {"controls", 423, 758, [this] { return bool(audio().controls(output)); }},
                {"selectors", 389, 696, [this] { return bool(audio().selectors(card)); }},
                {"graphOfCard", 524, 1131, [this] { return bool(audio().graph(card)); }},
                {"graph", 874, 10291, [this] { return bool(audio().graph()); }},
                {"settings", 872, 6562, [this] { return bool(audio().settings()); }}};
    }

    std::vector<Row> changes()
    {
        return {{"restoreWhatIsThere", 980, 2148, [this] { return audio().restore(saved)->isComplete(); }},
                {"setVolumePercent", 22, 22, [this] { return bool(audio().setVolume(output, Percent(40))); }},
                {"setVolumeDecibels", 23, 23, [this] { return bool(audio().setVolume(output, Decibels(-20))); }},
                {"setVolumeStep", 22, 22, [this] { return bool(audio().setVolume(output, LevelChange::up())); }},
                {"setMute", 22, 22, [this] { return bool(audio().setMute(output, true)); }},
                {"toggleMute", 22, 22, [this] { return bool(audio().toggleMute(output)); }},
                {"setControl", 485, 860, [this] { return bool(audio().setControl(output, control, Percent(30))); }},
                {"setControlMute", 481, 856, [this] { return bool(audio().setControlMute(output, control, true)); }},
                {"holdFormatAndEnd", 38, 38,
                 [this]
                 {
                     Result<FormatHold> hold = audio().holdFormat(output, Format::integer(16, 44100, 2));
                     return hold && hold->end();
                 }},
                {"restoreWhatChanged", 1048, 2256, [this] { return audio().restore(saved)->isComplete(); }}};
    }

    EndpointId output;
    CardId card;
    ControlId control;
    Settings saved; ///< before all changes
    bool isCrowded = false;
};

TEST_F(SystemOperationCost, OfTheFirstSnapshotIsThatOfTheManual)
{
    start("crowded");
    endSystem();
    callsSince();

    System fresh(polledOptions());
    EXPECT_EQ(0u, callsSince());
    EXPECT_EQ(120u, fresh.snapshot().endpoints().size());

    EXPECT_LE(callsSince(), 2081u);
}

TEST_F(SystemOperationCost, OfReadingsOnTheDesktopIsThatOfTheManual)
{
    start("desktop");
    measure(readings());
}

TEST_F(SystemOperationCost, OfReadingsOnTheCrowdedMachineIsThatOfTheManual)
{
    start("crowded");
    measure(readings());
}

TEST_F(SystemOperationCost, OfChangesOnTheDesktopIsThatOfTheManual)
{
    start("desktop");
    measure(changes());
}

TEST_F(SystemOperationCost, OfChangesOnTheCrowdedMachineIsThatOfTheManual)
{
    start("crowded");
    measure(changes());
}

/// Registrations and one walk; after that, a change of a control costs one reading of the card's hardware.
TEST_F(SystemOperationCost, OfAWatchIsThatOfTheManual)
{
    start("desktop");
    callsSince();

    const Result<Watch> held = audio().watch(card);

    EXPECT_TRUE(held);
    const std::size_t calls = callsSince();
    EXPECT_GT(calls, 0u);
    EXPECT_LE(calls, 558u);
    EXPECT_TRUE(audio().refresh());
    EXPECT_EQ(0u, callsSince());
}
}
