#include "platform/propertykeys.h"
#include "simulator/machine/equality.h"
#include "tests/faults/client/operations.h"

#include <algorithm>
#include <memory>

using namespace sonavit;

namespace faults::client
{
namespace
{
using Change = std::function<Result<Volume>(Stage&, const EndpointId&)>;

/// What of the volume cannot be read back has no value there; the snapshot says why, until it has been read again.
Operation ofVolume(const std::string& name, const Change& change)
{
    Operation operation{name, [change](Stage& stage, Answer& answer)
                        { answer.add(stage.targets().output, change(stage, stage.targets().output)); }};
    operation.fits = [](const Targets& targets) { return !targets.output.isEmpty(); };
    operation.changesMachine = true;
    operation.tellsWhy = false;
    return operation;
}

Operation ofLevel(const std::string& name, const LevelChange& change)
{
    return ofVolume("System::setVolume " + name, [change](Stage& stage, const EndpointId& endpoint)
                    { return stage.audio().setVolume(endpoint, change); });
}

Operation ofControl(const std::string& name, const std::function<Result<Control>(Stage&, const Targets&)>& change)
{
    Operation operation{name, [change](Stage& stage, Answer& answer) { answer.add(change(stage, stage.targets())); }};
    operation.fits = [](const Targets& targets) { return targets.control.has_value(); };
    operation.changesMachine = true;
    return operation;
}

Operation ofControlMute(const std::string& name, const std::function<Result<Control>(Stage&, const Targets&)>& change)
{
    Operation operation = ofControl(name, change);
    operation.fits = [](const Targets& targets) { return targets.mute.has_value(); };
    return operation;
}

Operation ofSelector(const std::string& name, const std::function<Result<Selector>(Stage&, const Targets&)>& change)
{
    Operation operation{name, [change](Stage& stage, Answer& answer) { answer.add(change(stage, stage.targets())); }};
    operation.fits = [](const Targets& targets) { return targets.selector.has_value(); };
    operation.changesMachine = true;
    operation.tellsWhy = false; // of a device's name, for example
    return operation;
}

void addFormat(Answer& answer, const EndpointId& endpoint, const std::string& name, const Format& format)
{
    answer.facts.addDerived("endpoint " + endpoint.text() + ": format " + name, format);
}

/// The format that the machine has now; no call of the platform.
sim::PropertyValue formatOf(Stage& stage)
{
    const sim::Machine machine = stage.simulation().machine();
    const sim::Endpoint* const endpoint = machine.endpoint(stage.targets().formatted.text());
    const sim::PropertyValue* const value =
        endpoint == nullptr ? nullptr : sim::findProperty(endpoint->properties, platform::propertykeys::deviceFormat);
    return value == nullptr ? sim::PropertyValue() : *value;
}

/// Holds a format and gives it back; the former one must then be there again unless a problem says otherwise.
Operation ofFormat(const std::string& name, const std::function<void(Stage&, Answer&)>& end)
{
    Operation operation{name, [end](Stage& stage, Answer& answer)
                        {
                            const EndpointId& endpoint = stage.targets().formatted;
                            stage.formerFormat = formatOf(stage);
                            Result<FormatHold> hold = stage.audio().holdFormat(endpoint, Format::integer(16, 44100, 2));
                            if (!answer.requireValue(hold))
                            {
                                if (!(formatOf(stage) == stage.formerFormat))
                                    answer.complaints.push_back("the format is held, and nobody can end that");
                                return;
                            }
                            addFormat(answer, endpoint, "before", hold->former());
                            addFormat(answer, endpoint, "while held", hold->held());
                            stage.hold = *std::move(hold);
                            end(stage, answer);
                        }};
    operation.fits = [](const Targets& targets) { return !targets.formatted.isEmpty(); };
    operation.changesMachine = true;
    return operation;
}

bool isPutBack(const RestoredSetting& setting)
{
    using Outcome = RestoredSetting::Outcome;
    return setting.outcome == Outcome::restored || setting.outcome == Outcome::unchanged;
}

void addReport(Answer& answer, const Result<RestoreReport>& report)
{
    if (!answer.requireValue(report))
        return;
    for (const RestoredSetting& setting : report->settings)
    {
        if (isPutBack(setting) == setting.problem.has_value())
            answer.complaints.push_back(setting.what + ": outcome and problem do not agree");
        if (setting.problem)
            answer.add(*setting.problem);
        answer.facts.addDerived("setting " + setting.what, isPutBack(setting) ? "put back" : keyOf(setting.outcome));
    }
}

/// What is reported as put back need not be put back a second time.
void expectSame(Answer& answer, const RestoreReport& first, const RestoreReport& second)
{
    for (std::size_t i = 0; i < std::min(first.settings.size(), second.settings.size()); ++i)
    {
        const bool isAgain = second.settings[i].outcome == RestoredSetting::Outcome::restored;
        if (isPutBack(first.settings[i]) && isAgain)
            answer.complaints.push_back(first.settings[i].what + ": it is not as the report says");
    }
}

Operation ofRestore()
{
    const auto report = std::make_shared<RestoreReport>();
    Operation operation{"System::restore", [report](Stage& stage, Answer& answer)
                        {
                            const Result<RestoreReport> now = stage.audio().restore(stage.targets().settings);
                            addReport(answer, now);
                            *report = now ? *now : RestoreReport();
                        }};
    operation.verify = [report](Stage& stage, Answer& answer)
    { expectSame(answer, *report, stage.audio().restore(stage.targets().settings).value()); };
    operation.fits = [](const Targets& targets) { return !targets.settings.endpoints.empty(); };
    operation.changesMachine = true;
    return operation;
}

std::vector<Operation> changesOfVolumes()
{
    return {
        ofLevel("in percent", Percent(37)),
        ofLevel("in decibels", Decibels(-7.5)),
        ofLevel("by steps", LevelChange::down(Steps{2})),
        ofLevel("up in percent", LevelChange::up(Percent(5))),
        ofLevel("of a channel", LevelChange(Percent(21)).onChannel(0)),
        ofVolume("System::setMute", [](Stage& stage, const EndpointId& id) { return stage.audio().setMute(id, true); }),
        ofVolume("System::toggleMute", [](Stage& stage, const EndpointId& id) { return stage.audio().toggleMute(id); }),
    };
}

std::vector<Operation> changesOfHardware()
{
    return {
        ofControl("System::setControl by id", [](Stage& stage, const Targets& targets)
                  { return stage.audio().setControl(targets.controlled, targets.control->id, Decibels(-6)); }),
        ofControl("System::setControl by text", [](Stage& stage, const Targets& targets)
                  { return stage.audio().setControl(targets.controlled, targets.control->id.text(), Percent(40)); }),
        ofControl("System::setControl of a channel",
                  [](Stage& stage, const Targets& targets)
                  {
                      return stage.audio().setControl(targets.controlled, targets.control->id,
                                                      LevelChange::down(Decibels(3)).onChannel(0));
                  }),
        ofControlMute("System::setControlMute by id",
                      [](Stage& stage, const Targets& targets) {
                          return stage.audio().setControlMute(targets.mutable_, targets.mute->id,
                                                              !targets.mute->isMuted.value_or(false));
                      }),
        ofControlMute("System::setControlMute by text", [](Stage& stage, const Targets& targets)
                      { return stage.audio().setControlMute(targets.mutable_, targets.mute->id.text(), true); }),
        ofSelector("System::select of a card", [](Stage& stage, const Targets& targets)
                   { return stage.audio().select(targets.selecting, targets.selector->id.text(), targets.input); }),
        ofSelector("System::select", [](Stage& stage, const Targets& targets)
                   { return stage.audio().select(targets.selector->id.text(), targets.input); }),
    };
}
}

std::vector<Operation> changingOperations()
{
    std::vector<Operation> all = changesOfVolumes();
    for (Operation& operation : changesOfHardware())
        all.push_back(std::move(operation));
    all.push_back(ofFormat("System::holdFormat and FormatHold::end",
                           [](Stage& stage, Answer& answer)
                           {
                               const bool isDone = answer.requireValue(stage.hold->end());
                               if (isDone && !(formatOf(stage) == stage.formerFormat))
                                   answer.complaints.push_back("the former format is not there again");
                           }));
    all.push_back(ofFormat("System::holdFormat and ~FormatHold", [](Stage& stage, Answer&) { stage.hold.reset(); }));
    all.push_back(ofRestore());
    return all;
}
}
