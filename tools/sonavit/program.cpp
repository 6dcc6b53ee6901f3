#include "tools/sonavit/program.h"

#include "qor/exception.h"
#include "tools/sonavit/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/json.h"
#include "tools/sonavit/logoutput.h"

#include <exception>

namespace sonavit
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

void runCommand(const std::vector<std::string>& words, const Environment& environment)
{
    const CommandLine line = readCommandLine(words);
    if (!line.answer.empty())
    {
        environment.out << line.answer;
        return;
    }
    const LogOutput log(environment.err, line.arguments.log);
    Session session(environment, line.arguments);
    Context context{environment, line.arguments, session};
    commandOf(line.arguments.verb)(context);
}

void complain(const std::vector<std::string>& words, const Environment& environment, const std::string& sentence)
{
    if (asksForJson(words))
        environment.out << Json::document({{"error", sentence}}).line() << "\n" << std::flush;
    environment.err << "sonavit: " << sentence << "\n" << std::flush;
}
}

int run(const std::vector<std::string>& words, const Environment& environment)
{
    try
    {
        runCommand(words, environment);
        environment.out.flush();
        if (!environment.out)
            throw OperationFailure("the answer cannot be written");
        return exitDone;
    }
    catch (const Interrupted&)
    {
        environment.out.flush();
        return exitInterrupted;
    }
    catch (const UsageError& error)
    {
        complain(words, environment, error.what());
        return exitUsage;
    }
    catch (const OperationFailure& error)
    {
        complain(words, environment, error.what());
    }
    catch (const std::exception& error)
    {
        complain(words, environment, "something unforeseen happened: " + std::string(error.what()));
    }
    return exitFailed;
}
}
