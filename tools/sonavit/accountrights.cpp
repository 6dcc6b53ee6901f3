#include "tools/sonavit/accountrights.h"

#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <cstddef>

namespace sonavit::program
{
namespace
{
bool isUnreadable(const Endpoint& endpoint)
{
    return endpoint.failure == std::optional<HRESULT>(E_ACCESSDENIED);
}

std::size_t unreadableAmong(const std::vector<Endpoint>& endpoints)
{
    return static_cast<std::size_t>(std::count_if(endpoints.begin(), endpoints.end(), isUnreadable));
}

std::size_t unreadableAmong(const std::vector<Card>& cards)
{
    std::size_t unreadable = 0;
    for (const Card& card : cards)
        unreadable += unreadableAmong(card.endpoints);
    return unreadable;
}

void report(const Context& context, std::size_t unreadable)
{
    if (unreadable == 0)
        return;
    context.environment.err << "sonavit: the system does not let this account read the properties of "
                            << counted(unreadable, "endpoint") << ", so names and cards are missing\n"
                            << std::flush;
}

/// findEndpoint(), which explains its exceptions by what cannot be read.
template<class Things>
auto findOrReport(const Context& context, Things& things) -> decltype(findEndpoint(things, context.arguments.endpoint))
{
    try
    {
        return findEndpoint(things, context.arguments.endpoint);
    }
    catch (...)
    {
        report(context, unreadableAmong(things));
        throw;
    }
}
}

bool isChangeDenied(AudioDevice& device)
{
    const COMPtr<IMMDevice>::pointer platformDevice = device.device();
    if (platformDevice.get() == nullptr)
        return false;
    IPropertyStore* store = nullptr;
    const HRESULT result = platformDevice->OpenPropertyStore(STGM_READWRITE, &store);
    const COMPtr<IPropertyStore>::pointer holder(SUCCEEDED(result) ? store : nullptr);
    return result == E_ACCESSDENIED;
}

void reportUnreadable(const Context& context, const std::vector<Card>& cards)
{
    report(context, unreadableAmong(cards));
}

Endpoint& requestedEndpoint(const Context& context, std::vector<Endpoint>& endpoints)
{
    Endpoint& endpoint = findOrReport(context, endpoints);
    report(context, isUnreadable(endpoint) ? 1 : 0);
    return endpoint;
}

EndpointOfCard requestedEndpoint(const Context& context, std::vector<Card>& cards)
{
    const EndpointOfCard found = findOrReport(context, cards);
    report(context, isUnreadable(found.endpoint) ? 1 : 0);
    return found;
}
}
