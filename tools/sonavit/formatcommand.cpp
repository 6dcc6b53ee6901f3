#include "tools/sonavit/commands.h"
#include "tools/sonavit/deviceformat.h"
#include "tools/sonavit/endpointname.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/json.h"
#include "tools/sonavit/text.h"

namespace sonavit
{
namespace
{
/// The format as the endpoint has it now, whatever @p device has read before.
WAVEFORMATEXTENSIBLE presentFormat(const AudioDevice& device)
{
    return AudioDevice(device.deviceProperty().deviceId).deviceProperty().format;
}

/// Sets the format for the time that the user wants. The device puts it back when it ends, so this one is made for
/// the purpose, and nobody else holds a copy.
///
/// @p isInterrupted is set if the end was requested in the meantime
WAVEFORMATEXTENSIBLE holdFormat(Context& context, const Endpoint& endpoint, bool& isInterrupted)
{
    const std::shared_ptr<void> deferral = context.environment.deferEnd(); // outlives the device
    AudioDevice device(endpoint.device.deviceProperty().deviceId);
    if (!isKnown(device.deviceProperty().format))
        throw OperationFailure(endpoint.title() + " does not tell its format, so there is none to go back to");
    if (!device.setFormat(deviceFormat(*context.arguments.format)))
        throw OperationFailure("the system refused that format for " + endpoint.title());
    const WAVEFORMATEXTENSIBLE during = device.deviceProperty().format;
    if (!context.arguments.isJson)
        context.environment.out << "during  " << formatWords(during) << "\n" << std::flush;
    isInterrupted = context.environment.pause(context.arguments.hold);
    return during;
}

void showFormat(const Context& context, const Endpoint& endpoint)
{
    const WAVEFORMATEXTENSIBLE& format = endpoint.device.deviceProperty().format;
    if (context.arguments.isJson)
    {
        const Json answer =
            Json::document({{"endpoint", endpoint.id}, {"name", endpoint.name()}, {"format", formatJson(format)}});
        context.environment.out << answer.text() << "\n";
        return;
    }
    context.environment.out << endpoint.title() << ": " << formatWords(format) << "\n";
}
}

void runFormat(Context& context)
{
    std::vector<Endpoint> endpoints = readEndpoints();
    const Endpoint& endpoint = findEndpoint(endpoints, context.arguments.endpoint);
    if (!context.arguments.format)
        return showFormat(context, endpoint);

    std::ostream& out = context.environment.out;
    const WAVEFORMATEXTENSIBLE before = endpoint.device.deviceProperty().format;
    if (!context.arguments.isJson)
        out << endpoint.title() << "\nbefore  " << formatWords(before) << "\n" << std::flush;
    bool isInterrupted = false;
    const WAVEFORMATEXTENSIBLE during = holdFormat(context, endpoint, isInterrupted);
    const WAVEFORMATEXTENSIBLE after = presentFormat(endpoint.device);
    if (context.arguments.isJson)
    {
        const Json answer = Json::document({{"endpoint", endpoint.id},
                                            {"name", endpoint.name()},
                                            {"before", formatJson(before)},
                                            {"during", formatJson(during)},
                                            {"after", formatJson(after)}});
        out << answer.text() << "\n";
    }
    else
        out << "after   " << formatWords(after) << "\n";
    if (isInterrupted)
        throw Interrupted();
}
}
