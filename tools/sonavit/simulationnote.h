/// What the program says about a machine that is only simulated: on standard error, and not in JSON mode, whose answers
/// name the machine themselves.
#pragma once

#include "tools/sonavit/commands/commands.h"

namespace sonavit::program
{
/// Says which machine is simulated; nothing on the system's own audio.
void announceSimulation(const Context& context);

/// Says that the change just made does not last; nothing on the system's own audio.
void announceTemporaryChange(const Context& context);
}
