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
    case Verb::explain:
        return runExplain;
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
    case Verb::setControl:
        return runSetControl;
    case Verb::select:
        return runSelect;
    case Verb::save:
        return runSave;
    case Verb::restore:
        return runRestore;
    case Verb::capture:
        return runCapture;
    case Verb::find:
        return runFind;
    case Verb::refer:
        return runRefer;
    case Verb::resolve:
        return runResolve;
    case Verb::doctor:
        return runDoctor;
    case Verb::monitor:
        return runMonitor;
    case Verb::format:
        return runFormat;
    }
    return runList;
}

/// Help or version, in JSON if the user asks for both.
std::string answerText(const CommandLine& line)
{
    if (!line.arguments.isJson)
        return line.answer;
    const std::string text =
        line.isVersion ? line.answer.substr(0, line.answer.find_last_not_of('\n') + 1) : line.answer;
    return Json::document({{line.isVersion ? "version" : "help", text}}).text() + "\n";
}

/// The session is closed here and not in its destructor, so that a failure on the way is reported. Events of the
/// monitor are printed as they come, any other answer in JSON only if nothing failed.
void runCommand(const std::vector<std::string>& words, const Environment& environment, HeldOutput& output)
{
    const CommandLine line = readCommandLine(words);
    if (!line.answer.empty())
    {
        environment.out << answerText(line);
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
              const Failure& failure)
{
    output.drop();
    if (asksForJson(words))
        environment.out
            << Json::document({{"error", failure.sentence}, {"exitCode", static_cast<int>(failure.code)}}).line()
            << "\n";
    environment.out.flush();
    environment.err << "sonavit: " << failure.sentence << "\n" << std::flush;
}

void finish(const Environment& environment, HeldOutput& output)
{
    output.release();
    environment.out.flush();
    if (!environment.out)
        throw OperationFailure("the answer cannot be written");
}

/// The exit code of a command that answers. One that says what is missing must have said it, like any other.
ExitCode answer(const std::vector<std::string>& words, const Environment& environment, HeldOutput& output)
{
    ExitCode code = exitDone;
    try
    {
        runCommand(words, environment, output);
    }
    catch (const Answered& answered)
    {
        code = answered.code();
    }
    finish(environment, output);
    return code;
}
}

int run(const std::vector<std::string>& words, const Environment& environment)
{
    HeldOutput output(environment.out);
    const LastWords lastWords([&] { complain(words, environment, output, currentFailure()); });
    try
    {
        return answer(words, environment, output);
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
        complain(words, environment, output, failure);
        return failure.code;
    }
}
}
