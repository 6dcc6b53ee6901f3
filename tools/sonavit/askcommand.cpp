#include "libSonavit/sysinfohelper.h"
#include "tools/sonavit/commands.h"
#include "tools/sonavit/endpoint.h"
#include "tools/sonavit/json.h"
#include "tools/sonavit/table.h"
#include "tools/sonavit/text.h"

#include <algorithm>

namespace sonavit
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

/// The helper's end uninitialises COM, also where its beginning could not initialise it: this thread has entered its
/// apartment in another way. One initialisation beforehand is what it takes away.
Answers askHelper(const std::string& instanceId)
{
    CoInitialize(nullptr);
    libSonavit::SysInfoHelper helper;
    const qor::String id = qor::String::fromUtf8(instanceId);
    return {helper.hasAnalogOut(id), helper.hasDigitalOut(id), helper.hasLineIn(id), helper.hasMicIn(id)};
}

/// The helper answers no for a card that there is not.
bool isKnown(const std::string& instanceId)
{
    const std::vector<Card> cards = readCards();
    return std::any_of(cards.begin(), cards.end(),
                       [&](const Card& card) { return equalNoCase(card.instanceId.value_or(""), instanceId); });
}
}

void runAsk(Context& context)
{
    const std::string& instanceId = context.arguments.instanceId;
    const Environment& environment = context.environment;
    const bool isKnownCard = isKnown(instanceId); // first, so that it is this thread that makes what all share
    const Answers answers = askHelper(instanceId);
    if (context.arguments.isJson)
    {
        const Json answer = Json::document({{"instanceId", instanceId},
                                            {"analogOut", answers.analogOut},
                                            {"digitalOut", answers.digitalOut},
                                            {"lineIn", answers.lineIn},
                                            {"microphoneIn", answers.microphoneIn},
                                            {"known", isKnownCard}});
        environment.out << answer.text() << "\n";
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
    for (const std::string& line : table.lines(0, environment.hasColours))
        environment.out << line << "\n";
    if (!isKnownCard)
        environment.out << "No card has this instance id.\n";
}
}
