#include "sonavit/control.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace sonavit;

namespace
{
Control control(const std::optional<std::string>& owner, const std::optional<std::string>& name)
{
    Control result;
    result.ownerName = owner;
    result.name = name;
    return result;
}
}

TEST(ControlTitle, NamesTheConnectorAndTheNodeThatSaysMore)
{
    EXPECT_EQ("Line Out 1/2: Mic Boost", control("Line Out 1/2", "Mic Boost").title());
    EXPECT_EQ("Line Out 1/2", control("Line Out 1/2", "volume").title());
    EXPECT_EQ("Line Out 1/2", control("Line Out 1/2", "LINE OUT 1/2").title());
    EXPECT_EQ("Line Out 1/2", control("Line Out 1/2", std::nullopt).title());
}

TEST(ControlTitle, IsNeverEmpty)
{
    EXPECT_EQ("Mic Boost", control(std::nullopt, "Mic Boost").title());
    EXPECT_EQ("Volume", control(std::nullopt, std::nullopt).title());
    EXPECT_EQ("Volume", control("", "").title());
    Control ofKind;
    ofKind.ownerType = guidOf(NodeKind::headphones);
    EXPECT_EQ("Headphones", ofKind.title());
    ofKind.ownerType = Guid();
    EXPECT_EQ("Volume", ofKind.title());
}

TEST(SelectorInputTitle, IsTheMostTellingName)
{
    SelectorInput input;
    EXPECT_EQ("Input", input.title());
    input.number = 3;
    EXPECT_EQ("Input 3", input.title());
    input.connectorType = guidOf(NodeKind::line);
    EXPECT_EQ("Line", input.title());
    input.name = "Volume";
    EXPECT_EQ("Volume", input.title());
    input.connectorName = "Line\nIn";
    EXPECT_EQ("Line\xEF\xBF\xBDIn", input.title());
}

TEST(Selector, KnowsTheChosenInput)
{
    Selector selector;
    selector.inputs.resize(3);
    selector.inputs[1].number = 7;
    selector.inputs[2].number = 7;
    EXPECT_EQ(nullptr, selector.selected()); // no selection is not no number
    selector.selection = 7;
    EXPECT_EQ(&selector.inputs[1], selector.selected());
    selector.selection = 8;
    EXPECT_EQ(nullptr, selector.selected());
}

TEST(SelectorTitle, IsNeverEmpty)
{
    Selector selector;
    EXPECT_EQ("Selector", selector.title());
    selector.name = "Mux";
    EXPECT_EQ("Mux", selector.title());
}

TEST(Control, IsEqualIfEachMemberIs)
{
    const auto differs = [](auto change)
    {
        Control value;
        change(value);
        return value != Control() && value == Control(value);
    };

    EXPECT_TRUE(differs([](Control& value) { value.id = ControlId("x"); }));
    EXPECT_TRUE(differs([](Control& value) { value.name = ""; }));
    EXPECT_TRUE(differs([](Control& value) { value.ownerName = ""; }));
    EXPECT_TRUE(differs([](Control& value) { value.ownerType.emplace(); }));
    EXPECT_TRUE(differs([](Control& value) { value.channels.emplace(); }));
    EXPECT_TRUE(differs([](Control& value) { value.hasMute = true; }));
    EXPECT_TRUE(differs([](Control& value) { value.isMuted = false; }));
    EXPECT_TRUE(differs([](Control& value) { value.problems.emplace_back(Problem::Kind::internal, "", "", ""); }));
    EXPECT_NE((ControlChannel{{}, LevelRange()}), ControlChannel());
    EXPECT_NE((ControlChannel{{Percent(1), {}}, {}}), ControlChannel());
}

TEST(Selector, IsEqualIfEachMemberIs)
{
    const auto differs = [](auto change)
    {
        Selector value;
        change(value);
        return value != Selector() && value == Selector(value);
    };
    const auto inputDiffers = [](auto change)
    {
        SelectorInput value;
        change(value);
        return value != SelectorInput() && value == SelectorInput(value);
    };

    EXPECT_TRUE(differs([](Selector& value) { value.id = SelectorId("x"); }));
    EXPECT_TRUE(differs([](Selector& value) { value.name = ""; }));
    EXPECT_TRUE(differs([](Selector& value) { value.deviceId = ""; }));
    EXPECT_TRUE(differs([](Selector& value) { value.deviceName = ""; }));
    EXPECT_TRUE(differs([](Selector& value) { value.inputs.resize(1); }));
    EXPECT_TRUE(differs([](Selector& value) { value.selection = 0; }));
    EXPECT_TRUE(differs([](Selector& value) { value.problems.emplace_back(Problem::Kind::internal, "", "", ""); }));
    EXPECT_TRUE(inputDiffers([](SelectorInput& value) { value.number = 0; }));
    EXPECT_TRUE(inputDiffers([](SelectorInput& value) { value.name = ""; }));
    EXPECT_TRUE(inputDiffers([](SelectorInput& value) { value.connectorName = ""; }));
    EXPECT_TRUE(inputDiffers([](SelectorInput& value) { value.connectorType.emplace(); }));
}

TEST(Control, IsPrintedWithAllThatIsKnown)
{
    Control value = control("Line Out", std::nullopt);
    value.id = ControlId("x");
    value.channels = {{{Percent(40), Decibels(-18)}, LevelRange{-96, 0, 0.5}}};
    std::ostringstream out;
    out << value;

    EXPECT_EQ("Control(id: \"x\", ownerName: \"Line Out\", "
              "channels: [40% (-18.00 dB) of -96.00 to 0.00 dB in steps of 0.50], hasMute: no)",
              out.str());
}

TEST(Selector, IsPrintedWithItsInputs)
{
    Selector selector;
    selector.selection = 1;
    selector.inputs.resize(1);
    selector.inputs[0].number = 1;
    std::ostringstream out;
    out << selector;

    EXPECT_EQ("Selector(id: \"\", inputs: [SelectorInput(number: 1)], selection: 1)", out.str());
}
