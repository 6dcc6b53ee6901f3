#include "tools/sonavit/simulationnote.h"

#include "tools/sonavit/output/text.h"

namespace sonavit::program
{
namespace
{
constexpr unsigned usualWidth = 200;

void announce(const Context& context, const std::string& text)
{
    if (context.arguments.isJson || !context.session.machineName())
        return;
    const unsigned width = context.environment.width > 0 ? context.environment.width : usualWidth;
    context.environment.err << shortened(printable(text), width) << "\n" << std::flush;
}
}

void announceSimulation(const Context& context)
{
    const std::string& description = context.session.machineDescription();
    announce(context, "Simulated machine " + context.session.machineName().value_or("") +
                          (description.empty() ? "" : ": " + description));
}

void announceTemporaryChange(const Context& context)
{
    announce(context, "The machine is simulated: the change lasts until sonavit ends.");
}
}
