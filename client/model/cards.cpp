#include "client/model/cards.h"

#include "client/model/values.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

namespace sonavit::model
{
namespace
{
/// The name that the endpoints give the card: the first one. Endpoints without an instance path may belong to different
/// devices, so they name their card only if they agree.
std::string titleOf(const std::vector<ModelEndpoint>& endpoints, bool hasPath)
{
    std::vector<std::string> names;
    for (const ModelEndpoint& endpoint : endpoints)
    {
        const std::optional<std::string>& name = endpoint.value.interfaceName();
        if (name && std::find(names.begin(), names.end(), *name) == names.end())
            names.push_back(*name);
    }
    if (names.size() == 1 || (!names.empty() && hasPath))
        return names.front();
    return hasPath ? std::string() : "Endpoints of no known card";
}

ModelCard readCard(const ::SoundCard& soundCard, const std::vector<ModelEndpoint>& endpoints)
{
    ModelCard card{soundCard, {}, Card()};
    Card::Content content;
    content.id = CardId(soundCard.deviceId().toUtf8());
    content.instancePath = textOrNothing(soundCard.deviceId());
    content.instanceId = textOrNothing(card.card.instanceId());
    for (const ModelEndpoint& endpoint : endpoints)
    {
        if (endpoint.device.deviceProperty().instancePath == soundCard.deviceId())
        {
            card.endpoints.push_back(endpoint);
            content.endpoints.push_back(endpoint.value);
        }
    }
    content.title = titleOf(card.endpoints, content.instancePath.has_value());
    card.value = Card(std::move(content));
    return card;
}
}

std::vector<ModelCard> listCards(const std::vector<ModelEndpoint>& endpoints, std::vector<Problem>& problems)
{
    const qor::Array<::SoundCard> soundCards = ::SoundCard::enumerateSystemSoundDevices();
    std::vector<ModelCard> cards;
    std::set<std::string> paths;
    for (unsigned i = 0; i < soundCards.size(); ++i)
    {
        cards.push_back(readCard(soundCards[i], endpoints));
        paths.insert(soundCards[i].deviceId().toUtf8());
    }
    for (const ModelEndpoint& endpoint : endpoints)
    {
        if (paths.count(endpoint.device.deviceProperty().instancePath.toUtf8()) == 0)
            problems.push_back(Problem(Problem::Kind::notThere, "SoundCard::enumerateSystemSoundDevices",
                                       endpoint.value.id().text(),
                                       "the object model has no card for " + endpoint.value.title()));
    }
    return cards;
}
}
