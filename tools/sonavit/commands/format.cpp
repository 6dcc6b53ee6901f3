#include "platform/coreaudio.h"
#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/text.h"

#include <memory>
#include <optional>

namespace sonavit::program
{
namespace
{
std::string formatWords(const std::optional<Format>& format)
{
    return format ? format->sentence() : nothing;
}

Json document(const Context& context, const Endpoint& endpoint)
{
    return machineDocument(context.session.machineName()).set("endpoint", endpointNameJson(endpoint));
}

/// Explains a refusal: of this format, or of any change under this account.
[[noreturn]] void raiseRefused(const Context& context, const Problem& problem, const Endpoint& endpoint)
{
    const char* const remedy = context.session.machineName() ? "simulate the machine with --account administrator"
                                                             : "run sonavit as administrator";
    const bool isOpening = problem.operation().find("OpenPropertyStore") != std::string::npos;
    if (isOpening && problem.code() == E_ACCESSDENIED)
        throw OperationFailure("Windows lets only administrators change a format; " + std::string(remedy) +
                               " to change that of " + shortTitleWords(endpoint));
    raise(problem, "the format of " + shortTitleWords(endpoint) + " cannot be set");
}

/// The endpoint's format as it is now.
std::optional<Format> presentFormat(Context& context, const Endpoint& endpoint)
{
    const std::optional<Endpoint> now = context.session.audio().endpoint(endpoint.id());
    return now ? now->format() : std::nullopt;
}

void showFormat(const Context& context, const Endpoint& endpoint)
{
    if (context.arguments.isJson)
        context.environment.out << document(context, endpoint).set("format", formatJson(endpoint.format())).text()
                                << "\n";
    else
        context.environment.out << titleWords(endpoint) << ": " << formatWords(endpoint.format()) << "\n";
}
}

void runFormat(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    const Endpoint endpoint = requestedEndpoint(context, snapshot).endpoint;
    if (!context.arguments.format)
        return showFormat(context, endpoint);

    const sim::DeviceFormat& request = *context.arguments.format;
    const std::shared_ptr<void> deferral = context.environment.deferEnd(); // outlives the hold
    Result<FormatHold> hold = context.session.audio().holdFormat(
        endpoint.id(), Format::integer(request.bits, request.rate, request.channels));
    if (!hold)
        raiseRefused(context, hold.problem(), endpoint);
    std::ostream& out = context.environment.out;
    if (!context.arguments.isJson)
        out << titleWords(endpoint) << "\nbefore  " << formatWords(hold->former()) << "\nduring  "
            << formatWords(hold->held()) << "\n"
            << std::flush;
    const bool isInterrupted = context.environment.pause(context.arguments.hold);
    const Result<Done> end = hold->end();
    if (!end)
        throw OperationFailure("the format of " + shortTitleWords(endpoint) +
                               " cannot be put back: " + end.problem().sentence());
    const std::optional<Format> after = presentFormat(context, endpoint);
    if (context.arguments.isJson)
        out << document(context, endpoint)
                   .set("before", formatJson(hold->former()))
                   .set("during", formatJson(hold->held()))
                   .set("after", formatJson(after))
                   .text()
            << "\n";
    else
        out << "after   " << formatWords(after) << "\n";
    if (isInterrupted)
        throw Interrupted();
}
}
