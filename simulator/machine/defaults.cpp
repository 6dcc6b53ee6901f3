// Which endpoint is the default of a flow in a role.
//
// Microsoft's "Default Audio Endpoint Selection Starting in Windows 10" (Windows drivers, audio) gives the order: only
// active endpoints count; first the one that the user has chosen, then the one with the highest rank; E_NOTFOUND if
// none is left. Of the factors that make up the rank the machine knows the form of the endpoint and the kind of its
// microphone. The rest (jack detection, bus, place of the jack, how often the user chose an endpoint) has weights that
// are not published; the machine's order takes its place.
#include "simulator/machine/formfactor.h"
#include "simulator/machine/machine.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace sim
{
namespace
{
using Form = FormFactor;

/// Forms that are equally good, the best first.
using Preference = std::vector<std::vector<Form>>;

const Preference& preference(EDataFlow flow, ERole role)
{
    static const Preference render = {
        {Form::headphones, Form::headset}, {Form::speakers}, {Form::lineLevel}, {Form::display}, {Form::spdif}};
    static const Preference capture = {{Form::headset}, {Form::microphone}, {Form::lineLevel}};
    static const Preference renderCall = {{Form::headset},   {Form::handset}, {Form::headphones}, {Form::speakers},
                                          {Form::lineLevel}, {Form::display}, {Form::spdif}};
    static const Preference captureCall = {{Form::headset}, {Form::handset}, {Form::microphone}, {Form::lineLevel}};
    if (role == eCommunications)
        return flow == eRender ? renderCall : captureCall;
    return flow == eRender ? render : capture;
}

std::size_t formRank(Form form, const Preference& preference)
{
    const auto contains = [&](const std::vector<Form>& forms)
    { return std::find(forms.begin(), forms.end(), form) != forms.end(); };
    return static_cast<std::size_t>(std::find_if(preference.begin(), preference.end(), contains) - preference.begin());
}

std::size_t microphoneRank(const GUID& jack)
{
    static const std::vector<GUID> best = {KSNODETYPE_PROCESSING_MICROPHONE_ARRAY, KSNODETYPE_MICROPHONE_ARRAY,
                                           KSNODETYPE_OMNI_DIRECTIONAL_MICROPHONE};
    const auto isJack = [&](const GUID& other) { return IsEqualGUID(other, jack) != 0; };
    return static_cast<std::size_t>(std::find_if(best.begin(), best.end(), isJack) - best.begin());
}

/// The kind of the jack behind the endpoint's first connector; zero if the endpoint has none.
GUID jackOf(const Machine& machine, const Endpoint& endpoint)
{
    if (!endpoint.topology || endpoint.topology->connectors.empty())
        return {};
    const std::optional<Peer> peer = machine.peer(endpoint.topology->connectors.front().id);
    const PartPlace jack = peer ? machine.part(peer->connector) : PartPlace();
    return jack ? jack->subType : GUID{};
}

bool isEligible(const Endpoint& endpoint, EDataFlow flow)
{
    return endpoint.flow == flow && endpoint.installed && endpoint.state == stateActive;
}
}

const Endpoint* Machine::namedDefault(EDataFlow flow, ERole role) const
{
    const auto isNamed = [&](const Endpoint& candidate)
    {
        const auto& roles = candidate.defaultFor;
        return candidate.flow == flow && std::find(roles.begin(), roles.end(), role) != roles.end();
    };
    const auto found = std::find_if(endpoints.begin(), endpoints.end(), isNamed);
    return found == endpoints.end() ? nullptr : &*found;
}

const Endpoint* Machine::defaultEndpoint(EDataFlow flow, ERole role) const
{
    const Endpoint* const named = namedDefault(flow, role);
    if (named == nullptr || isEligible(*named, flow))
        return named;

    using Rank = std::pair<std::size_t, std::size_t>;
    const Endpoint* best = nullptr;
    Rank bestRank;
    for (const Endpoint& candidate : endpoints)
    {
        if (!isEligible(candidate, flow))
            continue;
        const GUID jack = jackOf(*this, candidate);
        const Rank rank = {formRank(formFactorOf(jack), preference(flow, role)), microphoneRank(jack)};
        if (best != nullptr && !(rank < bestRank))
            continue;
        best = &candidate;
        bestRank = rank;
    }
    return best;
}
}
