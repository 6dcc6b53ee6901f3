#include "client/reading/hardwarewalk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using sonavit::Problem;
using testing::HasSubstr;

sonavit::Control control(const std::string& id, const std::string& name, const std::string& owner)
{
    sonavit::Control result;
    result.id = sonavit::ControlId(id);
    result.name = name;
    result.ownerName = owner;
    return result;
}

const std::vector<sonavit::Control>& theControls()
{
    static const std::vector<sonavit::Control> controls = {
        control("{2}.card/00020000", "Volume", "Line Out"), control("{2}.card/00020001", "Volume", "Headphones"),
        control("{2}.card/00020002", "Mic Boost", "Microphone"), control("{2}.card/00020003", "Mic Boost 2", "Aux")};
    return controls;
}

std::string idOf(std::string_view text)
{
    return sonavit::reading::controlNamed(theControls(), text).value().id.text();
}

TEST(ControlNamed, IsFoundByItsIdInAnyCase)
{
    EXPECT_EQ("{2}.card/00020001", idOf("{2}.CARD/00020001"));
}

TEST(ControlNamed, IsFoundByTheWholeNameOfItsConnectorOrItsTitle)
{
    EXPECT_EQ("{2}.card/00020001", idOf("headphones"));
    EXPECT_EQ("{2}.card/00020002", idOf("Microphone: Mic Boost"));
}

TEST(ControlNamed, IsFoundByAWholeNameEvenIfThatIsAPartOfAnother)
{
    EXPECT_EQ("{2}.card/00020002", idOf("mic boost"));
}

TEST(ControlNamed, IsFoundByAPartThatNoOtherHas)
{
    EXPECT_EQ("{2}.card/00020000", idOf("line o"));
}

TEST(ControlNamed, IsAmbiguousWithTheCandidates)
{
    const Problem problem = sonavit::reading::controlNamed(theControls(), "volume").problem();

    EXPECT_EQ(Problem::Kind::ambiguous, problem.kind());
    EXPECT_EQ("\"volume\" matches 2 controls: Line Out and Headphones", problem.sentence());
}

TEST(ControlNamed, IsAmbiguousWithTheIdsOfCandidatesThatHaveOneTitle)
{
    const std::vector<sonavit::Control> controls = {control("{2}.card/00020000", "Volume", "Line Out"),
                                                    control("{2}.card/00020001", "Volume", "Line Out")};

    EXPECT_EQ("\"line\" matches 2 controls: Line Out {2}.card/00020000 and Line Out {2}.card/00020001",
              sonavit::reading::controlNamed(controls, "line").problem().sentence());
}

TEST(ControlNamed, IsNotThere)
{
    const Problem problem = sonavit::reading::controlNamed(theControls(), "treble").problem();

    EXPECT_EQ(Problem::Kind::notThere, problem.kind());
    EXPECT_EQ("there is no control \"treble\"", problem.sentence());
}

TEST(ControlNamed, IsNotThereWithoutAName)
{
    std::vector<sonavit::Control> unnamed(1);

    EXPECT_EQ(Problem::Kind::notThere, sonavit::reading::controlNamed(unnamed, "").problem().kind());
    EXPECT_EQ(Problem::Kind::notThere, sonavit::reading::controlNamed({}, "volume").problem().kind());
}

TEST(ControlNamed, MayBeOneWhoseNameCannotBeRead)
{
    std::vector<sonavit::Control> controls = theControls();
    controls[2].name.reset();
    controls[2].problems.push_back(Problem::ofCall("IPart::GetName", "{2}.card/00020002", E_ACCESSDENIED));

    const Problem problem = sonavit::reading::controlNamed(controls, "treble").problem();

    EXPECT_EQ(Problem::Kind::platform, problem.kind());
    EXPECT_EQ("IPart::GetName", problem.operation());
    EXPECT_THAT(problem.sentence(), HasSubstr("cannot be found"));
}

sonavit::Selector selector(const std::string& id, const std::string& name)
{
    sonavit::Selector result;
    result.id = sonavit::SelectorId(id);
    result.name = name;
    return result;
}

TEST(SelectorNamed, IsFoundByIdNameOrPart)
{
    const std::vector<sonavit::Selector> selectors = {selector("{2}.a/1", "Record Source"),
                                                      selector("{2}.a/2", "Tape")};

    EXPECT_EQ("Tape", sonavit::reading::selectorNamed(selectors, "{2}.A/2").value().name);
    EXPECT_EQ("Record Source", sonavit::reading::selectorNamed(selectors, "RECORD SOURCE").value().name);
    EXPECT_EQ("Tape", sonavit::reading::selectorNamed(selectors, "tap").value().name);
    EXPECT_EQ(Problem::Kind::notThere, sonavit::reading::selectorNamed(selectors, "x").problem().kind());
    EXPECT_EQ(Problem::Kind::ambiguous, sonavit::reading::selectorNamed(selectors, "{2}.a").problem().kind());
}

TEST(InputNamed, IsFoundByNumberNodeConnectorOrPart)
{
    sonavit::Selector source;
    source.inputs = {
        {131072, "Mic Gain", "Microphone", {}}, {131073, "Line Gain", "Line In", {}}, {7, "131072", {}, {}}};

    EXPECT_EQ("Microphone", sonavit::reading::inputNamed(source, "131072").value().connectorName);
    EXPECT_EQ("Line In", sonavit::reading::inputNamed(source, "line gain").value().connectorName);
    EXPECT_EQ("Line In", sonavit::reading::inputNamed(source, "LINE IN").value().connectorName);
    EXPECT_EQ("Microphone", sonavit::reading::inputNamed(source, "micro").value().connectorName);
    const Problem problem = sonavit::reading::inputNamed(source, "gain").problem();
    EXPECT_EQ(Problem::Kind::ambiguous, problem.kind());
    EXPECT_EQ("\"gain\" matches 2 inputs: Microphone 131072 and Line In 131073", problem.sentence());
}
}
