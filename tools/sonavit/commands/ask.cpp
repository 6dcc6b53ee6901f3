#include "libSonavit/sysinfohelper.h"
#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/tableprinter.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>

namespace sonavit::program
{
namespace
{
struct Answers
{
    bool analogOut;
    bool digitalOut;
    bool lineIn;
    bool microphoneIn;
};

/// The helper's destructor uninitialises COM even if its constructor could not initialise it, as on this thread, which
/// is in an apartment of another kind. The initialisation here makes up for that; without it the helper would leave the
/// apartment of another caller.
Answers askHelper(const std::string& instanceId)
{
    const HRESULT entered = CoInitialize(nullptr);
    if (FAILED(entered) && entered != RPC_E_CHANGED_MODE)
        throw OperationFailure("the system's audio cannot be reached: " + reasonText(entered));
    libSonavit::SysInfoHelper helper;
    const qor::String id = qor::String::fromUtf8(instanceId);
    return {helper.hasAnalogOut(id), helper.hasDigitalOut(id), helper.hasLineIn(id), helper.hasMicIn(id)};
}

/// The helper answers no for a card that does not exist.
bool isKnown(const Context& context, const std::string& instanceId)
{
    const Snapshot snapshot = readSnapshot(context);
    reportDenied(context, snapshot.cards());
    return std::any_of(snapshot.cards().begin(), snapshot.cards().end(),
                       [&](const Card& card) { return equalNoCase(card.instanceId().value_or(""), instanceId); });
}
}

void runAsk(Context& context)
{
    const std::string& instanceId = context.arguments.instanceId;
    const Environment& environment = context.environment;
    const bool isKnownCard = isKnown(context, instanceId); // first: the shared enumerator belongs to this thread
    const Answers answers = askHelper(instanceId);
    if (context.arguments.isJson)
    {
        environment.out << machineDocument(context.session.machineName())
                               .set("instanceId", instanceId)
                               .set("analogOut", answers.analogOut)
                               .set("digitalOut", answers.digitalOut)
                               .set("lineIn", answers.lineIn)
                               .set("microphoneIn", answers.microphoneIn)
                               .set("known", isKnownCard)
                               .text()
                        << "\n";
        if (!isKnownCard)
            throw Answered(exitNotThere);
        return;
    }
    Table table({{Table::Column::Align::left, 0, 0, 0}, {}});
    const auto add = [&](const char* question, bool answer) {
        table.add({{question, Paint::none}, {answer ? "yes" : "no", answer ? Paint::green : Paint::dim}});
    };
    add("analog output", answers.analogOut);
    add("digital output", answers.digitalOut);
    add("line input", answers.lineIn);
    add("microphone input", answers.microphoneIn);
    printTable(environment, table);
    if (!isKnownCard)
    {
        environment.out << "No card has this instance id.\n";
        throw Answered(exitNotThere);
    }
}
}
