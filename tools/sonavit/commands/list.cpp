#include "tools/sonavit/accountrights.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/endpoint.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <map>
#include <utility>

namespace sonavit::program
{
namespace
{
constexpr unsigned barCells = 10;
constexpr const char* noInstancePath = "(no instance path)";

using Align = Table::Column::Align;
using Row = std::vector<Table::Cell>;

/// Branch, mark, name, jack, flow, state, bar, percent, decibels, mute, short id. Mark, state, percent and mute say how
/// the endpoint is, and are never left out.
std::vector<Table::Column> columns()
{
    return {{Align::left, 0, Table::decoration, 0, 0, ""},
            {Align::left, 1, 0, 0, 0, ""},
            {Align::left, 1, 0, 10, 4, ""},
            {Align::left, 2, 3, 0, 0, "jack"},
            {Align::left, 2, 4, 0, 0, "flow"},
            {Align::left, 2, 0, 0, 0, ""},
            {Align::left, 2, Table::goodToHave, 0, 0, ""},
            {Align::right, 2, 0, 0, 0, ""},
            {Align::right, 2, 5, 0, 0, "decibels"},
            {Align::left, 2, 0, 0, 0, ""},
            {Align::left, 2, 2, 0, 0, "id"}};
}

/// Ten cells, of which one is full for each ten percent.
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

/// Blank for the usual case, an endpoint that is not muted.
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

/// How an endpoint's id is shown.
struct ShownId
{
    std::string usual;   ///< the short id, or the whole id if two short ones are equal
    std::string compact; ///< the beginning of the short id that no other one has
};

std::size_t commonLength(const std::string& left, const std::string& right)
{
    const std::size_t length = std::min(left.size(), right.size());
    std::size_t common = 0;
    while (common < length && left[common] == right[common])
        ++common;
    return common;
}

/// The ids of all endpoints, as they are shown.
std::map<std::string, ShownId> shownIds(const std::vector<Card>& cards)
{
    constexpr std::size_t shortest = 4;
    std::vector<std::pair<std::string, std::string>> sorted; // beginnings in lower case, whole ids
    for (const Card& card : cards)
    {
        for (const Endpoint& endpoint : card.endpoints)
            sorted.emplace_back(lowerCase(shortId(endpoint.id)), endpoint.id);
    }
    std::sort(sorted.begin(), sorted.end());
    std::map<std::string, ShownId> result;
    for (std::size_t i = 0; i < sorted.size(); ++i)
    {
        const auto& [beginning, id] = sorted[i];
        std::size_t common = i > 0 ? commonLength(beginning, sorted[i - 1].first) : 0;
        if (i + 1 < sorted.size())
            common = std::max(common, commonLength(beginning, sorted[i + 1].first));
        const bool isUnique = common < beginning.size();
        const std::string usual = isUnique ? shortId(id) : id;
        result[id] = {printable(usual), isUnique ? printable(usual.substr(0, std::max(common + 1, shortest))) : ""};
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
    void showFooter(const std::vector<std::string>& leftOut) const;
    void showDim(const std::string& line) const;

    const Environment& m_environment;
    std::vector<Card>& m_cards;
    std::map<std::string, ShownId> m_ids;
    bool m_hasDefault = false;
};

void Tree::show()
{
    m_ids = shownIds(m_cards);
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
    showFooter(table.leftOut(m_environment.width));
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
        {m_ids[endpoint.id].usual, Paint::dim, m_ids[endpoint.id].compact}};
}

/// Name, marks for the jacks that not every card has, and the instance id, never cut, on a line of its own, so that it
/// can be copied.
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

void Tree::showFooter(const std::vector<std::string>& leftOut) const
{
    std::size_t endpoints = 0;
    for (const Card& card : m_cards)
        endpoints += card.endpoints.size();
    std::string text = counted(m_cards.size(), "card") + ", " + counted(endpoints, "endpoint");
    if (m_hasDefault)
        text += ", * default";
    showDim(text);
    for (const std::string& line : leftOutNote(leftOut, m_environment.width))
        showDim(line);
}

void Tree::showDim(const std::string& line) const
{
    m_environment.out << painted(line, Paint::dim, m_environment.hasColours) << "\n";
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
    reportUnreadable(context, cards);
    if (context.arguments.isJson)
    {
        context.environment.out << listJson(context, cards).text() << "\n";
        return;
    }
    if (cards.empty())
        context.environment.out << "There is no sound card.\n";
    else
        Tree(context.environment, cards).show();
}
}
