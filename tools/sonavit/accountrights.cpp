#include "tools/sonavit/accountrights.h"

#include "tools/sonavit/text.h"

#include <algorithm>
#include <cstddef>

namespace sonavit
{
namespace
{
bool isUnreadable(const Endpoint& endpoint)
{
    return endpoint.failure == std::optional<HRESULT>(E_ACCESSDENIED);
}

void report(const Context& context, std::size_t unreadable)
{
    if (unreadable == 0)
        return;
    context.environment.err << "sonavit: the system does not let this account read the properties of "
                            << counted(unreadable, "endpoint") << ", so names and cards are missing\n"
                            << std::flush;
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
    std::size_t unreadable = 0;
    for (const Card& card : cards)
    {
        const auto count = std::count_if(card.endpoints.begin(), card.endpoints.end(), isUnreadable);
        unreadable += static_cast<std::size_t>(count);
    }
    report(context, unreadable);
}

void reportUnreadable(const Context& context, const Endpoint& endpoint)
{
    report(context, isUnreadable(endpoint) ? 1 : 0);
}
}
