#include "tools/sonavit/commands.h"
#include "tools/sonavit/endpoint.h"
#include "tools/sonavit/endpointjson.h"
#include "tools/sonavit/table.h"
#include "tools/sonavit/text.h"

#include <algorithm>
#include <map>

namespace sonavit
{
namespace
{
constexpr unsigned barCells = 10;
constexpr const char* noInstancePath = "(no instance path)";

using Align = Table::Column::Align;
using Row = std::vector<Table::Cell>;

/// Branch, mark, name, jack, flow, state, bar, percent, decibels, mute, short id.
std::vector<Table::Column> columns()
{
    return {{Align::left, 0, 0, 0},
            {Align::left, 1, 0, 0},
            {Align::left, 1, 0, 12},
            {Align::left, 2, 3, 0},
            {Align::left, 2, 4, 0},
            {Align::left, 2, 0, 0},
            {Align::left, 2, Table::goodToHave + 1, 0},
            {Align::right, 2, 0, 0},
            {Align::right, 2, 2, 0},
            {Align::left, 2, 1, 0},
            {Align::left, 2, Table::goodToHave, 0}};
}

/// Ten cells, as many of them full as the level has tens of percent.
std::string bar(const std::optional<unsigned>& percent)
{
    if (!percent)
        return {};
    const unsigned full = std::min((*percent + barCells / 2) / barCells, barCells);
    std::string result;
    for (unsigned cell = 0; cell < barCells; ++cell)
        result += cell < full ? "\xE2\x96\xAE" : "\xE2\x96\xAF";
    return result;
}

/// Only what is out of the ordinary: blank for an endpoint that sounds.
std::string listMuteWords(const std::optional<bool>& isMuted)
{
    if (!isMuted)
        return nothing;
    return *isMuted ? "muted" : "";
}

/// The beginning of the endpoint's own GUID: enough to name it by, as a rule.
std::string shortId(const std::string& id)
{
    constexpr std::size_t length = 8;
    const std::size_t brace = id.rfind('{');
    return brace == std::string::npos ? id : id.substr(brace + 1, length);
}

/// The short ids of all endpoints, whole ids where two would be the same.
std::map<std::string, std::string> shortIds(const std::vector<Card>& cards)
{
    std::map<std::string, unsigned> uses;
    for (const Card& card : cards)
    {
        for (const Endpoint& endpoint : card.endpoints)
            ++uses[lowerCase(shortId(endpoint.id))];
    }
    std::map<std::string, std::string> result;
    for (const Card& card : cards)
    {
        for (const Endpoint& endpoint : card.endpoints)
        {
            const std::string beginning = shortId(endpoint.id);
            result[endpoint.id] = uses[lowerCase(beginning)] == 1 ? beginning : endpoint.id;
        }
    }
    return result;
}

/// The cards as a tree of lines.
class Tree
{
public:
    Tree(const Environment& environment, std::vector<Card>& cards) : m_environment(environment), m_cards(cards) {}

    void show();

private:
    Row row(Endpoint& endpoint, bool isLast);
    std::string heading(const Card& card) const;
    void showFooter() const;

    const Environment& m_environment;
    std::vector<Card>& m_cards;
    std::map<std::string, std::string> m_shortIds;
    bool m_hasDefault = false;
};

void Tree::show()
{
    m_shortIds = shortIds(m_cards);
    Table table(columns());
    for (Card& card : m_cards)
    {
        for (std::size_t i = 0; i < card.endpoints.size(); ++i)
            table.add(row(card.endpoints[i], i + 1 == card.endpoints.size()));
    }

    const std::vector<std::string> lines = table.lines(m_environment.width, m_environment.hasColours);
    std::size_t line = 0;
    for (const Card& card : m_cards)
    {
        m_environment.out << heading(card) << "\n";
        for (std::size_t i = 0; i < card.endpoints.size(); ++i)
            m_environment.out << lines[line++] << "\n";
        m_environment.out << "\n";
    }
    showFooter();
}

Row Tree::row(Endpoint& endpoint, bool isLast)
{
    const EndpointLevel level = readLevel(endpoint.device);
    const bool isTheDefault = isDefault(endpoint);
    m_hasDefault = m_hasDefault || isTheDefault;
    const bool isActive = endpoint.state == std::optional<unsigned>(DEVICE_STATE_ACTIVE);
    const Paint plain = isActive ? Paint::none : Paint::dim;
    const bool isMuted = level.isMuted.value_or(false);
    return {
        {isLast ? "\xE2\x94\x94\xE2\x94\x80" : "\xE2\x94\x9C\xE2\x94\x80", Paint::dim},
        {isTheDefault ? "*" : " ", Paint::green},
        {printable(endpoint.description.value_or("(no description)")), isTheDefault ? Paint::bold : plain},
        {kindWords(endpoint.jackType), plain},
        {flowWords(endpoint.flow), plain},
        {stateWords(endpoint.state), isActive ? Paint::green : Paint::dim},
        {m_environment.isTerminal ? bar(level.master.percent) : "", isActive && !isMuted ? Paint::cyan : Paint::dim},
        {percentText(level.master.percent), plain},
        {decibelText(level.master.decibels), plain},
        {listMuteWords(level.isMuted), isMuted ? Paint::red : Paint::dim},
        {m_shortIds[endpoint.id], Paint::dim}};
}

/// Name, marks for the jacks that not every card has, and the instance id, which stands whole on a line of its own to
/// be copied from there.
std::string Tree::heading(const Card& card) const
{
    const auto has = [&](bool (*isOfThatKind)(const GUID&))
    {
        return std::any_of(card.endpoints.begin(), card.endpoints.end(),
                           [&](const Endpoint& endpoint)
                           { return endpoint.jackType && isOfThatKind(*endpoint.jackType); });
    };
    std::string marks;
    if (has(isLineJack))
        marks += " [line]";
    if (has(isDigitalJack))
        marks += " [digital]";
    const bool hasColours = m_environment.hasColours;
    const std::string id = card.instanceId.value_or(card.id.empty() ? noInstancePath : card.id);
    return painted(printable(card.name), Paint::bold, hasColours) + painted(marks, Paint::yellow, hasColours) + "\n" +
           painted(printable(id), Paint::dim, hasColours);
}

void Tree::showFooter() const
{
    std::size_t endpoints = 0;
    for (const Card& card : m_cards)
        endpoints += card.endpoints.size();
    std::string text = counted(m_cards.size(), "card") + ", " + counted(endpoints, "endpoint");
    if (m_hasDefault)
        text += ", * default";
    m_environment.out << painted(text, Paint::dim, m_environment.hasColours) << "\n";
}

void showMachine(const Context& context)
{
    if (!context.session.machineName())
        return;
    const std::string& description = context.session.machineDescription();
    const std::string text = "Simulated machine " + printable(*context.session.machineName()) +
                             (description.empty() ? "" : ": " + printable(description));
    const unsigned width = context.environment.width;
    const std::string fitting = width > 0 ? shortened(text, width) : text;
    context.environment.out << painted(fitting, Paint::dim, context.environment.hasColours) << "\n\n";
}

Json listJson(const Context& context, std::vector<Card>& cards)
{
    Json list = Json::array();
    for (Card& card : cards)
    {
        Json endpoints = Json::array();
        for (Endpoint& endpoint : card.endpoints)
            endpoints.append(endpointJson(endpoint, readLevel(endpoint.device)));
        list.append(cardJson(card).set("endpoints", endpoints));
    }
    return Json::document({{"machine", context.session.machineName()}, {"cards", list}});
}
}

void runList(Context& context)
{
    std::vector<Card> cards = readCards();
    if (context.arguments.isJson)
    {
        context.environment.out << listJson(context, cards).text() << "\n";
        return;
    }
    showMachine(context);
    if (cards.empty())
        context.environment.out << "There is no sound card.\n";
    else
        Tree(context.environment, cards).show();
}
}
