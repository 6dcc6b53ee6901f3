#include "tools/sonavit/accountrights.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/deviceformat.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/formatwords.h"
#include "tools/sonavit/output/json.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/text.h"
#include "tools/sonavit/simulationnote.h"

namespace sonavit::program
{
namespace
{
/// The endpoint's present format; @p device may have read an older one.
WAVEFORMATEXTENSIBLE presentFormat(const AudioDevice& device)
{
    return AudioDevice(device.deviceProperty().deviceId).deviceProperty().format;
}

/// Explains a refusal: of this format, or of any change under this account.
[[noreturn]] void raiseRefused(const Context& context, AudioDevice& device, const Endpoint& endpoint)
{
    const char* const remedy = context.session.machineName() ? "simulate the machine with --account administrator"
                                                             : "run sonavit as administrator";
    if (isChangeDenied(device))
        throw OperationFailure("Windows lets only administrators change a format; " + std::string(remedy) +
                               " to change that of " + shortTitleWords(endpoint));
    throw OperationFailure("the system refused that format for " + shortTitleWords(endpoint));
}

/// Sets the format for as long as the user wants. The last copy of the device restores the old format, so this function
/// makes a device of its own.
/// @param isInterrupted set if the end was requested in the meantime
WAVEFORMATEXTENSIBLE holdFormat(Context& context, const Endpoint& endpoint, bool& isInterrupted)
{
    const std::shared_ptr<void> deferral = context.environment.deferEnd(); // outlives the device
    AudioDevice device(endpoint.device.deviceProperty().deviceId);
    if (!isKnown(device.deviceProperty().format))
        throw OperationFailure("the format of " + shortTitleWords(endpoint) +
                               " cannot be read, so it could not be restored");
    if (!device.setFormat(deviceFormat(*context.arguments.format)))
        raiseRefused(context, device, endpoint);
    announceTemporaryChange(context);
    const WAVEFORMATEXTENSIBLE during = device.deviceProperty().format;
    if (!context.arguments.isJson)
        context.environment.out << titleWords(endpoint) << "\nbefore  "
                                << formatWords(endpoint.device.deviceProperty().format) << "\nduring  "
                                << formatWords(during) << "\n"
                                << std::flush;
    isInterrupted = context.environment.pause(context.arguments.hold);
    return during;
}

void showFormat(const Context& context, const Endpoint& endpoint)
{
    const WAVEFORMATEXTENSIBLE& format = endpoint.device.deviceProperty().format;
    if (context.arguments.isJson)
    {
        const Json answer = endpointDocument(context.session.machineName(), endpoint).set("format", formatJson(format));
        context.environment.out << answer.text() << "\n";
        return;
    }
    context.environment.out << titleWords(endpoint) << ": " << formatWords(format) << "\n";
}
}

void runFormat(Context& context)
{
    std::vector<Endpoint> endpoints = readEndpoints();
    const Endpoint& endpoint = requestedEndpoint(context, endpoints);
    if (!context.arguments.format)
        return showFormat(context, endpoint);

    std::ostream& out = context.environment.out;
    const WAVEFORMATEXTENSIBLE before = endpoint.device.deviceProperty().format;
    bool isInterrupted = false;
    const WAVEFORMATEXTENSIBLE during = holdFormat(context, endpoint, isInterrupted);
    const WAVEFORMATEXTENSIBLE after = presentFormat(endpoint.device);
    if (context.arguments.isJson)
    {
        const Json answer = endpointDocument(context.session.machineName(), endpoint)
                                .set("before", formatJson(before))
                                .set("during", formatJson(during))
                                .set("after", formatJson(after));
        out << answer.text() << "\n";
    }
    else
        out << "after   " << formatWords(after) << "\n";
    if (isInterrupted)
        throw Interrupted();
}
}
