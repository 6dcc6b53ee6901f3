#include "sonavit/capture.h"

#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/text.h"
#include "tools/sonavit/textfile.h"

#include <string>

namespace sonavit::program
{
namespace
{
CaptureOptions optionsOf(const Context& context)
{
    CaptureOptions options;
    options.name = context.session.machineName().value_or(options.name);
    options.isAnonymous = context.arguments.isAnonymous;
    if (options.isAnonymous)
        options.names = context.environment.ownerNames();
    return options;
}

/// "IMMDevice::Activate(IAudioClient, 23) of {0.0.0.00000000}.{...} (0x88890004, the device is no longer present)".
std::string callOf(const Problem& problem)
{
    std::string call = problem.operation();
    if (!problem.object().empty())
        call += " of " + problem.object();
    return call + " (" + reasonText(problem.code()) + ")";
}

/// One line for each thing that the file does not show as an answer.
void report(const Context& context, const Capture& capture)
{
    std::ostream& err = context.environment.err;
    for (const Problem& problem : capture.problems)
        err << escaped("could not read " + callOf(problem)) << ": the file replays the failure\n";
    for (const std::string& note : capture.notes)
        err << escaped(note) << "\n";
    err << std::flush;
}
}

void runCapture(Context& context)
{
    const Result<Capture> captured = capture(context.session.audio(), optionsOf(context));
    if (!captured)
        raise(captured.problem(), "the sound hardware cannot be read");
    if (context.arguments.outputFile.empty())
        context.environment.out << captured->text;
    else
        replaceFile(context.arguments.outputFile, captured->text);
    report(context, *captured);
}
}
