#include "tests/client/sonavit/supportsnapshots.h"

#include "sonavit/contentfields.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace support
{
using namespace sonavit;

namespace
{
template<class Thing>
Thing takeOut(std::vector<Thing>& things, std::size_t place)
{
    Thing thing = things[place];
    things.erase(things.begin() + static_cast<std::ptrdiff_t>(place));
    return thing;
}

template<class Thing>
void putIn(std::vector<Thing>& things, std::size_t place, Thing thing)
{
    things.insert(things.begin() + static_cast<std::ptrdiff_t>(place), std::move(thing));
}
}

EndpointId SnapshotGenerator::endpointId()
{
    static constexpr std::array<const char*, 10> ids = {"",    "{a}", "{A}", "{b}", "{c}",
                                                        "{d}", "{e}", "{f}", "{g}", "{h}"};
    return EndpointId(ids[choice(ids.size())]);
}

Problem SnapshotGenerator::problem()
{
    const auto code = static_cast<std::int32_t>(0x80070000u + choice(3));
    return Problem::ofCall("IMMDevice::GetState", std::string(choice(2), 'x'), code);
}

void SnapshotGenerator::fill(Endpoint::Content& content, EndpointField field)
{
    const bool isThere = choice(4) != 0;
    const std::size_t value = choice(3);
    const std::string text = "text" + std::to_string(value);
    Guid guid;
    guid.data1 = static_cast<std::uint32_t>(value);
    const auto number = static_cast<std::uint32_t>(value);
    switch (field)
    {
    case EndpointField::id:
        content.id = endpointId();
        break;
    case EndpointField::description:
        content.description = isThere ? std::optional(text) : std::nullopt;
        break;
    case EndpointField::interfaceName:
        content.interfaceName = isThere ? std::optional(text) : std::nullopt;
        break;
    case EndpointField::flow:
        content.flow = static_cast<Flow>(choice(2));
        break;
    case EndpointField::state:
        content.state = isThere ? std::optional(static_cast<State>(choice(4))) : std::nullopt;
        break;
    case EndpointField::roles:
        content.roles = Roles();
        if (isThere)
            content.roles.add(static_cast<Role>(value));
        break;
    case EndpointField::jacks:
        content.jacks.assign(choice(3), Jack());
        for (Jack& jack : content.jacks)
            jack.formFactor = static_cast<FormFactor>(choice(3));
        break;
    case EndpointField::volume:
        content.volume = isThere ? std::optional(Volume()) : std::nullopt;
        if (isThere)
            content.volume->master.percent = Percent(static_cast<double>(value));
        break;
    case EndpointField::format:
        content.format = isThere ? std::optional(Format::integer(16, 44100 + number, 2)) : std::nullopt;
        break;
    case EndpointField::speakers:
        content.speakers = isThere ? std::optional(number) : std::nullopt;
        break;
    case EndpointField::waveId:
        content.waveId = isThere ? std::optional(number) : std::nullopt;
        break;
    case EndpointField::directSoundId:
        content.directSoundId = isThere ? std::optional(guid) : std::nullopt;
        break;
    case EndpointField::driverNode:
        content.driverNode = isThere ? std::optional(text) : std::nullopt;
        break;
    case EndpointField::container:
        content.container = isThere ? std::optional(guid) : std::nullopt;
        break;
    case EndpointField::instancePath:
        content.instancePath = isThere ? std::optional(text) : std::nullopt;
        break;
    case EndpointField::incarnation:
        content.incarnation = number;
        break;
    case EndpointField::problems:
        content.problems.clear();
        for (std::size_t i = 0; i < value; ++i)
            content.problems.push_back({static_cast<EndpointField>(choice(17)), problem()});
        break;
    }
}

Endpoint SnapshotGenerator::endpoint()
{
    Endpoint::Content content;
    for (const EndpointField field : allEndpointFields)
        fill(content, field);
    return Endpoint(std::move(content));
}

Endpoint SnapshotGenerator::changed(const Endpoint& endpoint)
{
    Endpoint::Content content = endpoint.content();
    for (std::size_t count = 1 + choice(3); count > 0; --count)
        fill(content, allEndpointFields[choice(allEndpointFields.size())]);
    return Endpoint(std::move(content));
}

Card SnapshotGenerator::card()
{
    static constexpr std::array<const char*, 7> ids = {"", "one", "ONE", "two", "three", "four", "five"};
    static constexpr std::array<const char*, 3> texts = {"text", "TEXT", "other"};
    const auto text = [&] { return choice(3) == 0 ? std::nullopt : std::optional<std::string>(texts[choice(3)]); };
    Card::Content content;
    content.id = CardId(ids[choice(ids.size())]);
    content.instancePath = text();
    content.instanceId = text();
    content.parent = text();
    content.bus = text();
    content.title = texts[choice(3)];
    if (choice(2) == 0)
        content.container = Guid();
    for (std::size_t count = choice(5); count > 0; --count)
        content.endpoints.push_back(endpoint());
    for (std::size_t count = choice(2); count > 0; --count)
        content.problems.push_back(problem());
    return Card(std::move(content));
}

Hardware SnapshotGenerator::hardware()
{
    Hardware result;
    result.card = card().id();
    result.controls.resize(choice(2));
    for (Hardware::EndpointControls& controls : result.controls)
        controls.endpoint = endpointId();
    result.selectors.resize(choice(2));
    for (Selector& selector : result.selectors)
        selector.selection = static_cast<std::uint32_t>(choice(3));
    return result;
}

Snapshot SnapshotGenerator::snapshot()
{
    Content content;
    for (std::size_t count = choice(6); count > 0; --count)
        content.cards.push_back(card());
    for (auto& flow : content.defaults)
        std::generate(flow.begin(), flow.end(), [&] { return endpointId(); });
    for (std::size_t count = choice(4); count > 0; --count)
        content.hardware.push_back(hardware());
    content.service = static_cast<Service>(choice(2));
    for (std::size_t count = choice(2); count > 0; --count)
        content.problems.push_back(problem());
    return Snapshot(std::move(content));
}

Snapshot SnapshotGenerator::changed(const Snapshot& before)
{
    Content content = before.content();
    for (std::size_t count = 1 + choice(4); count > 0; --count)
        changeOnce(content);
    return Snapshot(std::move(content));
}

void SnapshotGenerator::changeOnce(Content& content)
{
    switch (choice(8))
    {
    case 0:
        content.defaults[choice(2)][choice(3)] = endpointId();
        break;
    case 1:
        if (content.hardware.empty() || choice(2) == 0)
            putIn(content.hardware, choice(content.hardware.size() + 1), hardware());
        else
            takeOut(content.hardware, choice(content.hardware.size()));
        break;
    case 2:
        content.service = static_cast<Service>(choice(2));
        break;
    case 3:
        changeCards(content.cards);
        break;
    default:
        changeEndpoints(content.cards);
        break;
    }
}

/// Adds, removes or moves one.
void SnapshotGenerator::changeCards(std::vector<Card>& cards)
{
    const std::size_t way = choice(3);
    if (cards.empty() || way == 0)
        return putIn(cards, choice(cards.size() + 1), card());
    const Card taken = takeOut(cards, choice(cards.size()));
    if (way == 1)
        putIn(cards, choice(cards.size() + 1), taken);
}

/// Adds, removes, changes or moves one, the last inside its card or to another one.
void SnapshotGenerator::changeEndpoints(std::vector<Card>& cards)
{
    if (cards.empty())
        return;
    Card& from = cards[choice(cards.size())];
    Card& to = choice(2) == 0 ? from : cards[choice(cards.size())];
    Card::Content source = from.content();
    std::optional<Endpoint> moving;
    if (source.endpoints.empty() || choice(4) == 0)
        moving = endpoint();
    else
        moving = takeOut(source.endpoints, choice(source.endpoints.size()));
    from = Card(source);
    if (choice(4) == 0)
        return;
    Card::Content target = to.content();
    putIn(target.endpoints, choice(target.endpoints.size() + 1), choice(2) == 0 ? changed(*moving) : *moving);
    to = Card(target);
}
}
