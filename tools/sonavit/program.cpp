#include "tools/sonavit/program.h"

#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/heldoutput.h"
#include "tools/sonavit/lastwords.h"
#include "tools/sonavit/logoutput.h"
#include "tools/sonavit/output/json.h"
#include "tools/sonavit/simulationnote.h"

namespace sonavit::program
{
namespace
{
using Command = void (*)(Context&);

Command commandOf(Verb verb)
{
    switch (verb)
    {
    case Verb::list:
        return runList;
    case Verb::show:
        return runShow;
    case Verb::controls:
        return runControls;
    case Verb::selectors:
        return runSelectors;
    case Verb::graph:
        return runGraph;
    case Verb::ask:
        return runAsk;
    case Verb::getVolume:
        return runGetVolume;
    case Verb::setVolume:
        return runSetVolume;
    case Verb::mute:
        return runMute;
    case Verb::monitor:
        return runMonitor;
    case Verb::format:
        return runFormat;
    }
    return runList;
}

/// The session is closed here and not in its destructor, so that a failure on the way is reported. Events of the
/// monitor are printed as they come, any other answer in JSON only if nothing failed.
void runCommand(const std::vector<std::string>& words, const Environment& environment, HeldOutput& output)
{
    const CommandLine line = readCommandLine(words);
    if (!line.answer.empty())
    {
        environment.out << line.answer;
        return;
    }
    if (line.arguments.isJson && line.arguments.verb != Verb::monitor)
        output.hold();
    const LogOutput log(environment.err, line.arguments.log);
    Session session(environment, line.arguments);
    Context context{environment, line.arguments, session};
    announceSimulation(context);
    commandOf(line.arguments.verb)(context);
    session.close();
}

/// The error object takes one line, as each line of the monitor's output is an object.
void complain(const std::vector<std::string>& words, const Environment& environment, HeldOutput& output,
              const std::string& sentence)
{
    output.drop();
    if (asksForJson(words))
        environment.out << Json::document({{"error", sentence}}).line() << "\n";
    environment.out.flush();
    environment.err << "sonavit: " << sentence << "\n" << std::flush;
}

void finish(const Environment& environment, HeldOutput& output)
{
    output.release();
    environment.out.flush();
    if (!environment.out)
        throw OperationFailure("the answer cannot be written");
}
}

int run(const std::vector<std::string>& words, const Environment& environment)
{
    HeldOutput output(environment.out);
    const LastWords lastWords([&] { complain(words, environment, output, currentFailure().sentence); });
    try
    {
        runCommand(words, environment, output);
        finish(environment, output);
        return exitDone;
    }
    catch (const Interrupted&)
    {
        output.release();
        environment.out.flush();
        return exitInterrupted;
    }
    catch (...)
    {
        const Failure failure = currentFailure();
        complain(words, environment, output, failure.sentence);
        return failure.code;
    }
}
}
