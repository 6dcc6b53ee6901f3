#include "tests/client/model/supportdifferences.h"

#include "simulator/machine/propertykeys.h"
#include "tests/client/model/supporthardwaredifferences.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace support
{
namespace
{
using sonavit::Control;
using sonavit::ControlChannel;
using sonavit::Endpoint;
using sonavit::Graph;
using sonavit::Level;
using sonavit::LevelRange;
using sonavit::Percent;
using sonavit::State;
using OfEndpoint = Answers::OfEndpoint;

/// Changes the contents of all endpoints in one of the answers.
template<class Action>
void forEachContent(Answers& answers, const Action& action)
{
    answers.forEach([&](OfEndpoint& endpoint) { action(endpoint.content); });
}

bool canHaveHardware(const Endpoint::Content& content)
{
    return content.state == State::active || content.state == State::unplugged;
}

/// The platform takes such ids for one, so each endpoint after the first cannot be opened by its id.
void settleTwins(Answers&, Answers& model, const sim::Machine&)
{
    std::vector<sonavit::EndpointId> known;
    for (Answers::OfCard& card : model.cards)
    {
        const auto isTwin = [&](const OfEndpoint& endpoint)
        {
            const bool isKnown = std::find(known.begin(), known.end(), endpoint.content.id) != known.end();
            if (!isKnown)
                known.push_back(endpoint.content.id);
            return isKnown;
        };
        std::vector<OfEndpoint> kept;
        std::remove_copy_if(card.endpoints.begin(), card.endpoints.end(), std::back_inserter(kept), isTwin);
        card.endpoints = std::move(kept);
    }
}

void forgetProblems(Answers& answers)
{
    answers.rest.problems.clear();
    for (Answers::OfCard& card : answers.cards)
    {
        card.content.problems.clear();
        card.graph.problems.clear();
        for (sonavit::Selector& selector : card.selectors)
            selector.problems.clear();
    }
    answers.forEach(
        [](OfEndpoint& endpoint)
        {
            endpoint.content.problems.clear();
            if (endpoint.controls)
                std::for_each(endpoint.controls->begin(), endpoint.controls->end(),
                              [](Control& control) { control.problems.clear(); });
        });
}

void settleProblems(Answers& client, Answers& model, const sim::Machine&)
{
    forgetProblems(client);
    forgetProblems(model);
}

void settleContainers(Answers& client, Answers&, const sim::Machine&)
{
    for (Answers::OfCard& card : client.cards)
    {
        card.content.container.reset();
        card.content.bus.reset();
        card.content.parent.reset();
    }
    forEachContent(client, [](Endpoint::Content& content) { content.container.reset(); });
}

void settleJacks(Answers& client, Answers& model, const sim::Machine&)
{
    const auto settle = [](OfEndpoint& clients, OfEndpoint& models)
    {
        std::vector<sonavit::Jack>& jacks = clients.content.jacks;
        const bool isKnown = !models.content.jacks.empty() && canHaveHardware(clients.content);
        if (!isKnown)
        {
            jacks.clear();
            models.content.jacks.clear();
            return;
        }
        if (jacks.empty())
            return;
        jacks.resize(1);
        sonavit::Jack bare;
        bare.type = jacks.front().type;
        jacks.front() = bare;
    };
    forEachPair(client, model, settle);
}

void settleHardwareVolumes(Answers& client, Answers&, const sim::Machine&)
{
    const auto settle = [](Endpoint::Content& content)
    {
        if (content.volume)
            content.volume->isInHardware.reset();
    };
    forEachContent(client, settle);
}

void settleAbsentVolumes(Answers&, Answers& model, const sim::Machine&)
{
    const auto settle = [](Endpoint::Content& content)
    {
        if (!canHaveHardware(content))
            content.volume.reset();
    };
    forEachContent(model, settle);
}

/// Replaces a percent by the whole number that the object model has, unless it is another level.
void round(std::optional<Percent>& percent, double whole)
{
    if (percent && std::abs(percent->value() - whole) <= 0.5001)
        percent = Percent(whole);
}

void settleEmptyRanges(Answers&, Answers& model, const sim::Machine&)
{
    const auto settle = [](Endpoint::Content& content)
    {
        std::optional<sonavit::Volume>& volume = content.volume;
        if (!volume || !volume->range || volume->range->minimum != volume->range->maximum)
            return;
        volume->master.percent.reset();
        if (volume->channels)
            std::for_each(volume->channels->begin(), volume->channels->end(),
                          [](Level& level) { level.percent.reset(); });
    };
    forEachContent(model, settle);
}

/// The object model's formula, in single precision.
void roundScalar(Level& level)
{
    if (level.percent)
        round(level.percent, std::trunc(static_cast<float>(level.percent->value() / 100.0) * 100.0f + 0.5f));
}

void settleEndpointPercent(Answers& client, Answers&, const sim::Machine&)
{
    const auto settle = [](Endpoint::Content& content)
    {
        if (!content.volume)
            return;
        roundScalar(content.volume->master);
        if (content.volume->channels)
            std::for_each(content.volume->channels->begin(), content.volume->channels->end(), roundScalar);
    };
    forEachContent(client, settle);
}

/// The object model's formula, in single precision but for the last step.
void roundShare(ControlChannel& channel)
{
    if (!channel.level.percent || !channel.level.decibels || !channel.range)
        return;
    const auto level = static_cast<float>(channel.level.decibels->value());
    const auto minimum = static_cast<float>(channel.range->minimum);
    const auto maximum = static_cast<float>(channel.range->maximum);
    const float percent = (level - minimum) / (maximum - minimum) * 100.0f;
    round(channel.level.percent, std::trunc(static_cast<double>(percent) + 0.5));
}

void roundShares(std::optional<std::vector<ControlChannel>>& channels)
{
    if (channels)
        std::for_each(channels->begin(), channels->end(), roundShare);
}

void settlePartPercent(Answers& client, Answers&, const sim::Machine&)
{
    const auto settle = [](OfEndpoint& endpoint)
    {
        if (endpoint.controls)
            std::for_each(endpoint.controls->begin(), endpoint.controls->end(),
                          [](Control& control) { roundShares(control.channels); });
    };
    client.forEach(settle);
    for (Answers::OfCard& card : client.cards)
        std::for_each(card.graph.parts.begin(), card.graph.parts.end(),
                      [](Graph::Part& part) { roundShares(part.channels); });
}

/// One card of all endpoints without an instance path, in the place of the first; selectors and graphs of several
/// cards cannot be compared with those of one.
void gatherPathless(Answers& answers, bool isOne)
{
    const auto isPathless = [](const Answers::OfCard& card) { return !card.content.instancePath; };
    const auto first = std::find_if(answers.cards.begin(), answers.cards.end(), isPathless);
    if (first == answers.cards.end())
        return;
    Answers::OfCard gathered = *first;
    gathered.content = {};
    if (!isOne)
    {
        gathered.selectors.clear();
        gathered.graph = {};
    }
    for (auto card = std::next(first); card != answers.cards.end(); ++card)
    {
        if (isPathless(*card))
            gathered.endpoints.insert(gathered.endpoints.end(), card->endpoints.begin(), card->endpoints.end());
    }
    std::sort(gathered.endpoints.begin(), gathered.endpoints.end(),
              [](const OfEndpoint& left, const OfEndpoint& right) { return left.content.id < right.content.id; });
    answers.cards.erase(std::remove_if(std::next(first), answers.cards.end(), isPathless), answers.cards.end());
    *first = std::move(gathered);
}

void settlePathless(Answers& client, Answers& model, const sim::Machine&)
{
    const auto pathless = std::count_if(client.cards.begin(), client.cards.end(),
                                        [](const Answers::OfCard& card) { return !card.content.instancePath; });
    gatherPathless(client, pathless == 1);
    gatherPathless(model, pathless == 1);
}

void settleDefaultCase(Answers&, Answers& model, const sim::Machine&)
{
    const auto settle = [&](Endpoint::Content& content)
    {
        for (const sonavit::Role role : sonavit::allRoles)
        {
            const auto flow = static_cast<std::size_t>(content.flow);
            if (model.rest.defaults[flow][static_cast<std::size_t>(role)] == content.id)
                content.roles.add(role);
        }
    };
    forEachContent(model, settle);
}

/// The object model asks for the numbers of inputs up to the number of outputs.
void settleWaveIdsOfInputs(Answers& client, Answers&, const sim::Machine& machine)
{
    const auto settle = [&](Endpoint::Content& content)
    {
        if (content.flow == sonavit::Flow::input && content.waveId && *content.waveId >= machine.waveOut.size())
            content.waveId.reset();
    };
    forEachContent(client, settle);
}

/// Where the object model has found no number, or a later one, the client has that of an id in other case.
void settleWaveIdCase(Answers& client, Answers& model, const sim::Machine& machine)
{
    const auto settle = [&](OfEndpoint& clients, OfEndpoint& models)
    {
        const std::optional<std::uint32_t>& number = clients.content.waveId;
        const auto& devices = clients.content.flow == sonavit::Flow::input ? machine.waveIn : machine.waveOut;
        if (number && *number < devices.size() && devices[*number].endpointId != clients.content.id.text())
            clients.content.waveId = models.content.waveId;
    };
    forEachPair(client, model, settle);
}

void settleNullGuids(Answers& client, Answers&, const sim::Machine&)
{
    const auto settle = [](Endpoint::Content& content)
    {
        if (content.directSoundId && content.directSoundId->isNull())
            content.directSoundId.reset();
    };
    forEachContent(client, settle);
}

void settleGuidBraces(Answers& client, Answers&, const sim::Machine& machine)
{
    const auto settle = [&](Endpoint::Content& content)
    {
        const sim::Endpoint* const endpoint = machine.endpoint(content.id.text());
        const sim::PropertyValue* const value =
            endpoint == nullptr ? nullptr : sim::findProperty(endpoint->properties, sim::keys::endpointGuid);
        if (value != nullptr && value->text && value->text->substr(0, 1) != "{")
            content.directSoundId.reset();
    };
    forEachContent(client, settle);
}

/// The short form of formats, and formats of rate 0.
void settleFormats(Answers& client, Answers& model, const sim::Machine&)
{
    const auto settle = [](OfEndpoint& clients, OfEndpoint& models)
    {
        const std::optional<sonavit::Format>& format = clients.content.format;
        if (!models.content.format && format && (!format->subFormat || format->rate == 0))
            clients.content.format.reset();
    };
    forEachPair(client, model, settle);
}

}

const std::vector<Difference>& wantedDifferences()
{
    static const std::vector<Difference> differences = {
        {"ids that differ in case alone", "the platform takes them for one id, and so does the client", settleTwins},
        {"problems", "the object model reports failures to its log", settleProblems},
        {"containers, buses and parents", "the object model does not read them", settleContainers},
        {"jacks", "the object model reads the kind of the first connector's peer and nothing else", settleJacks},
        {"volume in hardware", "the object model does not ask for it", settleHardwareVolumes},
        {"volume of endpoints that are not there",
         "the client does not ask endpoints that are neither active nor unplugged", settleAbsentVolumes},
        {"levels between two nodes", "the object model's records are those of the levels next to a connector",
         settleLevelsBetweenNodes},
        {"names of controls", "the object model's records name the connector next to the level", settleControlNames},
        {"formats", "the object model reads the long form alone, and takes a rate of 0 as none", settleFormats},
        {"case of the default's id", "the object model compares ids with regard to case", settleDefaultCase},
        {"wave ids of inputs", "the object model asks for as many numbers of inputs as there are outputs",
         settleWaveIdsOfInputs},
        {"case of wave ids", "the object model compares ids with regard to case", settleWaveIdCase},
        {"null GUIDs", "the object model has the null GUID where it could read none", settleNullGuids},
        {"GUIDs without braces", "the object model's converter of GUIDs refuses them", settleGuidBraces},
        {"selectors of endpoints", "the object model searches the endpoints of other cards, too",
         settleSelectorsOfEndpoints},
        {"parts whose ids differ in case alone",
         "both take them for one, but the client asks the first one, the object model the one that it meets",
         settleTwinConnectors},
        {"percent of endpoints", "the object model rounds to whole numbers", settleEndpointPercent},
        {"percent of an empty range", "the object model reports the platform's scalar, whatever the range is",
         settleEmptyRanges},
        {"percent of parts", "the object model rounds to whole numbers", settlePartPercent},
        {"controls met twice", "the object model lists a control once for each connector next to it",
         settleTwiceMetControls},
        {"hardware behind a device that cannot be opened",
         "the object model's walk ends there: with an exception where it looks for controls",
         settleUnreachableHardware},
        {"endpoints without an instance path", "the object model has one card for all of them", settlePathless},
    };
    return differences;
}
}
