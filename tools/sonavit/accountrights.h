/// What Windows denies to the account that runs the program.
#pragma once

#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/endpointname.h"

#include <vector>

namespace sonavit::program
{
/// Whether the system does not let this account change the properties of @p device (IMMDevice::OpenPropertyStore).
bool isChangeDenied(AudioDevice& device);

/// Prints one sentence on standard error if the system does not let this account read the properties of some endpoints:
/// how many they are.
void reportUnreadable(const Context& context, const std::vector<Card>& cards);

/// The endpoint that the user names: findEndpoint() with Arguments::endpoint. Prints the same sentence if that endpoint
/// is unreadable; before an exception, if any of them is.
Endpoint& requestedEndpoint(const Context& context, std::vector<Endpoint>& endpoints);
EndpointOfCard requestedEndpoint(const Context& context, std::vector<Card>& cards);
}
