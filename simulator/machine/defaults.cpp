// Which endpoint is the default of a flow in a role.
//
// Microsoft's "Default Audio Endpoint Selection Starting in Windows 10" (Windows drivers, audio) gives the order: only
// active endpoints count; first the one that the user has chosen, then the one with the highest rank; E_NOTFOUND if
// none is left. Of the factors that make up the rank the machine knows the form of the endpoint and the kind of its
// microphone. The rest (jack detection, bus, place of the jack, how often the user chose an endpoint) has weights that
// are not published; the machine's order takes its place.
#include "simulator/machine/defaults.h"

#include "simulator/machine/formfactor.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace sim
{
namespace
{
using Form = FormFactor;

struct FormAndRank
{
    Form form;
    std::size_t rank; ///< 0 is the best; equal ones are equally good
};

constexpr std::array<FormAndRank, 6> render = {{{Form::headphones, 0},
                                                {Form::headset, 0},
                                                {Form::speakers, 1},
                                                {Form::lineLevel, 2},
                                                {Form::display, 3},
                                                {Form::spdif, 4}}};
constexpr std::array<FormAndRank, 3> capture = {{{Form::headset, 0}, {Form::microphone, 1}, {Form::lineLevel, 2}}};
constexpr std::array<FormAndRank, 7> renderCall = {{{Form::headset, 0},
                                                    {Form::handset, 1},
                                                    {Form::headphones, 2},
                                                    {Form::speakers, 3},
                                                    {Form::lineLevel, 4},
                                                    {Form::display, 5},
                                                    {Form::spdif, 6}}};
constexpr std::array<FormAndRank, 4> captureCall = {
    {{Form::headset, 0}, {Form::handset, 1}, {Form::microphone, 2}, {Form::lineLevel, 3}}};

template<std::size_t count>
std::size_t rankIn(const std::array<FormAndRank, count>& ranks, Form form)
{
    const auto isForm = [&](const FormAndRank& each) { return each.form == form; };
    const auto found = std::find_if(ranks.begin(), ranks.end(), isForm);
    return found == ranks.end() ? count : found->rank; // any other form comes last
}

std::size_t formRank(Form form, EDataFlow flow, ERole role)
{
    if (role == eCommunications)
        return flow == eRender ? rankIn(renderCall, form) : rankIn(captureCall, form);
    return flow == eRender ? rankIn(render, form) : rankIn(capture, form);
}

std::size_t microphoneRank(const GUID& jack)
{
    const std::array<GUID, 3> best = {KSNODETYPE_PROCESSING_MICROPHONE_ARRAY, KSNODETYPE_MICROPHONE_ARRAY,
                                      KSNODETYPE_OMNI_DIRECTIONAL_MICROPHONE};
    const auto isJack = [&](const GUID& other) { return IsEqualGUID(other, jack) != 0; };
    return static_cast<std::size_t>(std::find_if(best.begin(), best.end(), isJack) - best.begin());
}

/// The kind of the jack behind the endpoint's first connector; zero if the endpoint has none.
GUID jackBehind(const Machine& machine, const Endpoint& endpoint)
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
    const auto jackOf = [this](const Endpoint& endpoint) { return jackBehind(*this, endpoint); };
    return named == nullptr ? nullptr : electDefault(*this, *named, role, jackOf);
}

const Endpoint* electDefault(const Machine& machine, const Endpoint& named, ERole role,
                             const std::function<GUID(const Endpoint&)>& jackOf)
{
    const EDataFlow flow = named.flow;
    if (isEligible(named, flow))
        return &named;

    using Rank = std::pair<std::size_t, std::size_t>;
    const Endpoint* best = nullptr;
    Rank bestRank;
    for (const Endpoint& candidate : machine.endpoints)
    {
        if (!isEligible(candidate, flow))
            continue;
        const GUID jack = jackOf(candidate);
        const Rank rank = {formRank(formFactorOf(jack), flow, role), microphoneRank(jack)};
        if (best != nullptr && !(rank < bestRank))
            continue;
        best = &candidate;
        bestRank = rank;
    }
    return best;
}
}
