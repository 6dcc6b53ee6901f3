#include "simulator/machine/file/machinefile.h"
#include "tests/faults/client/operations.h"

#include <utility>

using namespace sonavit;

namespace faults::client
{
namespace
{
void nothing(Stage&) {}

bool hasOutput(const Targets& targets)
{
    return !targets.output.isEmpty();
}

/// An answer that says nothing about failures itself: the newest snapshot does.
template<class T>
void addPart(Stage& stage, Answer& answer, const std::optional<T>& part)
{
    const Snapshot snapshot = stage.audio().snapshot();
    answer.add(snapshot);
    answer.hasValue = part.has_value();
}

void addFindings(Answer& answer, const Result<std::vector<Finding>>& findings)
{
    if (!answer.requireValue(findings))
        return;
    for (const Finding& finding : *findings)
    {
        if (finding.problem)
            answer.add(*finding.problem);
        if (finding.sentence.empty() || finding.subject.empty() || finding.rule.empty())
            answer.complaints.push_back("a finding has no sentence, no subject or no rule");
    }
}

void addReasons(Answer& answer, const Result<std::vector<Reason>>& reasons)
{
    if (!answer.requireValue(reasons))
        return;
    for (const Reason& reason : *reasons)
    {
        if (reason.conclusion.empty())
            answer.complaints.push_back("a reason has no conclusion");
        answer.facts.addDerived("reason " + reason.title, reason.conclusion);
        for (const Fact& fact : reason.facts)
        {
            if (fact.code != 0)
                answer.add(Problem::ofCall(fact.call, fact.object, fact.code));
            if (fact.sentence.find("a call failed in one of them alone") != std::string::npos)
                answer.explainsItself = true;
        }
    }
}

/// The file can be read again, whatever has failed.
void addCapture(Answer& answer, const Result<Capture>& capture)
{
    if (!answer.requireValue(capture))
        return;
    answer.add(capture->problems);
    try
    {
        static_cast<void>(sim::readMachine(capture->text, "capture"));
    }
    catch (const std::exception& error)
    {
        answer.complaints.push_back(std::string("the capture cannot be read: ") + error.what());
    }
}

std::vector<Operation> firstQuestions()
{
    std::vector<Operation> all = {
        {"System::snapshot, first", [](Stage& stage, Answer& answer) { answer.add(stage.audio().snapshot()); }},
        {"System::refresh, first", [](Stage& stage, Answer& answer) { answer.add(stage.audio().refresh()); }},
        {"System::endpoint, first",
         [](Stage& stage, Answer& answer) { addPart(stage, answer, stage.audio().endpoint(stage.targets().output)); }},
        {"System::defaultEndpoint, first",
         [](Stage& stage, Answer& answer) { addPart(stage, answer, stage.audio().defaultEndpoint(Flow::output)); }},
        {"System::find, first",
         [](Stage& stage, Answer& answer)
         {
             const std::vector<Match> matches = stage.audio().find(stage.targets().output.text());
             addPart(stage, answer, matches.empty() ? std::nullopt : std::optional<Match>(matches.front()));
         }},
        {"System::refer, first",
         [](Stage& stage, Answer& answer)
         {
             const Result<Reference> reference = stage.audio().refer(stage.targets().output);
             addPart(stage, answer, reference ? std::optional<Reference>(*reference) : std::nullopt);
         }},
        {"System::resolve, first",
         [](Stage& stage, Answer& answer)
         {
             const Resolution resolution = stage.audio().resolve(*stage.targets().reference);
             addPart(stage, answer, resolution.best());
             const bool isWrong = resolution.kind == Resolution::Kind::exact && resolution.best() &&
                                  resolution.best()->endpoint.id() != stage.targets().output;
             if (isWrong)
                 answer.complaints.push_back("the reference means another endpoint");
         }},
        {"capture, first", [](Stage& stage, Answer& answer) { addCapture(answer, capture(stage.audio())); }},
        {"diagnose, first", [](Stage& stage, Answer& answer) { addFindings(answer, diagnose(stage.audio())); }},
        {"System::graph, first", [](Stage& stage, Answer& answer) { answer.add(stage.audio().graph()); }},
        {"System::setMute, first", [](Stage& stage, Answer& answer)
         {
             const EndpointId& output = stage.targets().output;
             answer.add(output, stage.audio().setMute(output, true));
         }}};
    for (Operation& operation : all)
    {
        operation.arrange = nothing;
        const bool isAboutAll = operation.name == "System::snapshot, first" ||
                                operation.name == "System::refresh, first" || operation.name == "capture, first" ||
                                operation.name == "diagnose, first" || operation.name == "System::graph, first";
        if (!isAboutAll)
            operation.fits = hasOutput;
    }
    all.back().changesMachine = true;
    all.back().tellsWhy = false;
    return all;
}

std::vector<Operation> questionsAboutHardware()
{
    std::vector<Operation> all = {{"System::controls", [](Stage& stage, Answer& answer)
                                   { answer.add(stage.audio().controls(stage.targets().controlled)); }},
                                  {"System::selectors", [](Stage& stage, Answer& answer)
                                   { answer.add(stage.audio().selectors(stage.targets().selecting)); }},
                                  {"System::graph of a card", [](Stage& stage, Answer& answer)
                                   { answer.add(stage.audio().graph(stage.targets().card)); }},
                                  {"System::graph of cards", [](Stage& stage, Answer& answer)
                                   { answer.add(stage.audio().graph(stage.targets().cards)); }},
                                  {"System::settings",
                                   [](Stage& stage, Answer& answer)
                                   {
                                       const Result<Settings> settings = stage.audio().settings();
                                       if (answer.requireValue(settings) &&
                                           !(Settings::parse(settings->text()).value() == *settings))
                                           answer.complaints.push_back("the settings cannot be read again");
                                   }},
                                  {"explain", [](Stage& stage, Answer& answer)
                                   { addReasons(answer, explain(stage.audio(), stage.targets().output)); }},
                                  {"diagnose of an endpoint", [](Stage& stage, Answer& answer)
                                   { addFindings(answer, diagnose(stage.audio(), stage.targets().output)); }},
                                  {"capture, anonymous", [](Stage& stage, Answer& answer)
                                   {
                                       CaptureOptions options;
                                       options.isAnonymous = true;
                                       addCapture(answer, capture(stage.audio(), options));
                                   }}};
    all[0].fits = [](const Targets& targets) { return targets.control.has_value(); };
    all[1].fits = [](const Targets& targets) { return targets.selector.has_value(); };
    for (const std::size_t silent : {0, 1, 4})
        all[silent].tellsWhy = false;
    for (const std::size_t ofOutput : {2, 5, 6})
        all[ofOutput].fits = hasOutput;
    return all;
}
}

std::vector<Operation> readingOperations()
{
    std::vector<Operation> all = firstQuestions();
    for (Operation& operation : questionsAboutHardware())
        all.push_back(std::move(operation));
    all.push_back({"System::refresh of everything",
                   [](Stage& stage, Answer& answer) { answer.add(stage.audio().refresh(Depth::everything)); }});
    return all;
}
}
