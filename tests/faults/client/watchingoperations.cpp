#include "platform/propertykeys.h"
#include "tests/faults/client/operations.h"

using namespace sonavit;

namespace faults::client
{
namespace
{
void subscribe(Stage& stage)
{
    stage.subscriptions.push_back(
        stage.audio().subscribe([&stage](const Change& change) { stage.changes.push_back(change); }));
}

/// What the subscriber knows now; each change must follow from the one before.
Snapshot followed(Stage& stage, Answer& answer)
{
    stage.audio().poll();
    Snapshot known = stage.subscriptions.front().initial();
    for (const Change& change : stage.changes)
    {
        if (change.before() != known)
            answer.complaints.push_back("a change does not begin where the one before has ended");
        if (sonavit::apply(change.before(), change.events()) != change.after())
            answer.complaints.push_back("the events of a change do not lead to its end");
        known = change.after();
    }
    return known;
}

/// An event of the machine to a program that has subscribed.
Operation ofEvent(const std::string& name, const std::function<void(Stage&)>& cause)
{
    Operation operation{"event: " + name, [cause](Stage& stage, Answer& answer)
                        {
                            cause(stage);
                            answer.requireValue(stage.audio().refresh());
                            Stage::settle();
                            answer.add(followed(stage, answer));
                        }};
    operation.arrange = subscribe;
    operation.mayBeLate = true;
    operation.fits = [](const Targets& targets) { return !targets.output.isEmpty(); };
    operation.changesMachine = true;
    return operation;
}

void arrangeRemoval(Stage& stage)
{
    subscribe(stage);
    stage.simulation().events().remove(stage.targets().output.text());
    static_cast<void>(stage.audio().refresh());
    Stage::settle();
    stage.audio().poll();
}

std::vector<Operation> events()
{
    std::vector<Operation> all = {
        ofEvent("volume", [](Stage& stage)
                { stage.simulation().events().setVolume(stage.targets().output.text(), 0.25F, true); }),
        ofEvent("state", [](Stage& stage)
                { stage.simulation().events().setState(stage.targets().output.text(), DEVICE_STATE_DISABLED); }),
        ofEvent("removal", [](Stage& stage) { stage.simulation().events().remove(stage.targets().output.text()); }),
        ofEvent("name",
                [](Stage& stage)
                {
                    stage.simulation().events().announceProperty(stage.targets().output.text(),
                                                                 platform::propertykeys::deviceDescription);
                }),
        ofEvent("default",
                [](Stage& stage) { stage.simulation().events().setDefault(stage.targets().other.text(), eConsole); }),
        ofEvent("addition", [](Stage& stage) { stage.simulation().events().add(stage.targets().output.text()); }),
        ofEvent("service", [](Stage& stage) { stage.simulation().events().serviceStop(); }),
        ofEvent("wake", [](Stage& stage) { stage.simulation().events().wake(); })};
    all[4].fits = [](const Targets& targets) { return !targets.other.isEmpty(); };
    all[5].arrange = arrangeRemoval;
    return all;
}

void addWatch(Stage& stage, Answer& answer, const CardId& card)
{
    Result<Watch> watch = stage.audio().watch(card);
    if (answer.requireValue(watch))
        stage.watches.push_back(*std::move(watch));
}

/// The selector is another one, by another program: its calls are on the thread of the test.
Operation ofWatchedChange()
{
    Operation operation{"event: watched level", [](Stage& stage, Answer& answer)
                        {
                            Stage::settle();
                            answer.requireValue(stage.audio().setControl(stage.targets().controlled,
                                                                         stage.targets().control->id, Decibels(-9)));
                            Stage::settle();
                            answer.add(stage.audio().snapshot());
                        }};
    operation.arrange = [](Stage& stage)
    {
        Answer ignored;
        const std::optional<Card> card = stage.audio().snapshot().cardOf(stage.targets().controlled);
        addWatch(stage, ignored, card->id());
    };
    operation.fits = [](const Targets& targets) { return targets.control.has_value(); };
    operation.changesMachine = true;
    return operation;
}

std::vector<Operation> watches()
{
    Operation begin{"System::watch", [](Stage& stage, Answer& answer)
                    {
                        addWatch(stage, answer, stage.targets().card);
                        answer.add(stage.audio().snapshot());
                    }};
    begin.fits = [](const Targets& targets) { return !targets.output.isEmpty(); };
    Operation end{"Watch::stop", [](Stage& stage, Answer& answer)
                  {
                      stage.watches.clear();
                      Stage::settle();
                      answer.add(stage.audio().snapshot());
                  }};
    end.fits = begin.fits;
    end.arrange = [](Stage& stage)
    {
        Answer ignored;
        addWatch(stage, ignored, stage.targets().card);
    };
    return {begin, end, ofWatchedChange()};
}

/// A System ends with all that a program can hold of it.
Operation ofEnd()
{
    Operation operation{"~System", [](Stage& stage, Answer&) { stage.endSystem(); }};
    operation.arrange = [](Stage& stage)
    {
        subscribe(stage);
        Answer ignored;
        for (const CardId& card : stage.targets().cards)
            addWatch(stage, ignored, card);
        if (stage.targets().formatted.isEmpty())
            return;
        Result<FormatHold> hold = stage.audio().holdFormat(stage.targets().formatted, Format::integer(16, 44100, 2));
        if (hold)
            stage.hold = *std::move(hold);
    };
    operation.changesMachine = true;
    operation.keepsSystem = false;
    return operation;
}
}

std::vector<Operation> watchingOperations()
{
    std::vector<Operation> all = events();
    for (Operation& operation : watches())
        all.push_back(std::move(operation));
    Operation first{"System::subscribe, first", [](Stage& stage, Answer& answer)
                    {
                        subscribe(stage);
                        answer.add(followed(stage, answer));
                    }};
    first.arrange = [](Stage&) {};
    all.push_back(std::move(first));
    all.push_back(ofEnd());
    return all;
}
}
