#include "sonavit/nodekind.h"
#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/text.h"
#include "tools/sonavit/problemnote.h"

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

/// Branch, marks, name, jack, flow, state, bar, percent, decibels, mute, short id. Marks, state, percent and mute say
/// how the endpoint is, and are never left out.
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
std::string bar(const std::optional<Percent>& percent)
{
    if (!percent)
        return {};
    const unsigned full = std::min((percent->rounded() + barCells / 2) / barCells, barCells);
    std::string result;
    for (unsigned cell = 0; cell < barCells; ++cell)
        result += cell < full ? "\xE2\x96\xAE" : "\xE2\x96\xAF";
    return result;
}

/// Blank for the usual case, an endpoint that is not muted.
std::string listMuteWords(const std::optional<Volume>& volume)
{
    if (!volume || !volume->isMuted)
        return nothing;
    return *volume->isMuted ? "muted" : "";
}

/// "*" for the default of the console role, which most programs use. The others follow where they differ from it: "m"
/// for multimedia, "c" for communications.
std::string marks(Roles roles)
{
    const bool isConsole = roles.contains(Role::console);
    const bool isMultimedia = roles.contains(Role::multimedia);
    const bool isCommunications = roles.contains(Role::communications);
    if (isConsole && isMultimedia && isCommunications)
        return "*";
    return std::string(isConsole ? "*" : "") + (isMultimedia ? "m" : "") + (isCommunications ? "c" : "");
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
        for (const Endpoint& endpoint : card.endpoints())
            sorted.emplace_back(lowerCase(shortId(endpoint.id().text())), endpoint.id().text());
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
    Tree(const Environment& environment, const std::vector<Card>& cards) : m_environment(environment), m_cards(cards) {}

    void show();

private:
    static Row header();
    Row row(const Endpoint& endpoint, bool isLast);
    std::string heading(const Card& card) const;
    void showFooter(const std::vector<std::string>& leftOut) const;
    void showDim(const std::string& line) const;

    const Environment& m_environment;
    const std::vector<Card>& m_cards;
    std::map<std::string, ShownId> m_ids;
    std::string m_marks; ///< all that occur
};

void Tree::show()
{
    m_ids = shownIds(m_cards);
    Table table(columns());
    table.add(header());
    for (const Card& card : m_cards)
    {
        for (std::size_t i = 0; i < card.endpoints().size(); ++i)
            table.add(row(card.endpoints()[i], i + 1 == card.endpoints().size()));
    }

    const std::vector<std::string> lines = table.lines(m_environment.width, m_environment.hasColours);
    m_environment.out << lines[0] << "\n";
    std::size_t line = 1;
    for (const Card& card : m_cards)
    {
        m_environment.out << heading(card) << "\n";
        for (std::size_t i = 0; i < card.endpoints().size(); ++i)
            m_environment.out << lines[line++] << "\n";
        m_environment.out << "\n";
    }
    showFooter(table.leftOut(m_environment.width));
}

Row Tree::header()
{
    Row row = {{}, {}, {"ENDPOINT"}, {"JACK"}, {"FLOW"}, {"STATE"}, {}, {"LEVEL"}, {"DECIBELS"}, {"MUTE"}, {"ID"}};
    for (Table::Cell& cell : row)
        cell.paint = Paint::dim;
    return row;
}

Row Tree::row(const Endpoint& endpoint, bool isLast)
{
    const std::optional<Volume>& volume = endpoint.volume();
    const Level level = volume ? volume->master : Level();
    const std::string ownMarks = marks(endpoint.roles());
    m_marks += ownMarks;
    const bool isDefault = endpoint.roles().contains(Role::console);
    const Paint plain = endpoint.isActive() ? Paint::none : Paint::dim;
    const bool isMuted = volume && volume->isMuted.value_or(false);
    const ShownId& id = m_ids[endpoint.id().text()];
    return {{isLast ? "\xE2\x94\x94\xE2\x94\x80" : "\xE2\x94\x9C\xE2\x94\x80", Paint::dim},
            {ownMarks.empty() ? " " : ownMarks, Paint::green},
            {printable(endpoint.description().value_or("(no description)")), isDefault ? Paint::bold : plain},
            {jackWords(endpoint), plain, endpoint.jackKind() ? wordsOf(*endpoint.jackKind()) : nothing},
            {wordsOf(endpoint.flow()), plain},
            {stateWords(endpoint.state()), endpoint.isActive() ? Paint::green : Paint::dim},
            {m_environment.isTerminal ? bar(level.percent) : "",
             endpoint.isActive() && !isMuted ? Paint::cyan : Paint::dim},
            {percentWords(level.percent), plain},
            {decibelWords(level.decibels), plain},
            {listMuteWords(volume), isMuted ? Paint::red : Paint::dim},
            {id.usual, Paint::dim, id.compact}};
}

/// Name, marks for the jacks that not every card has, and the instance id, never cut, on a line of its own, so that it
/// can be copied.
std::string Tree::heading(const Card& card) const
{
    const auto has = [&](auto isOfThatKind)
    {
        return std::any_of(card.endpoints().begin(), card.endpoints().end(),
                           [&](const Endpoint& endpoint)
                           { return endpoint.jackKind() && isOfThatKind(*endpoint.jackKind()); });
    };
    std::string jackMarks;
    if (has([](NodeKind kind) { return kind == NodeKind::line; }))
        jackMarks += " [line]";
    if (has(isDigital))
        jackMarks += " [digital]";
    const bool hasColours = m_environment.hasColours;
    const std::string id = card.instanceId().value_or(card.instancePath().value_or(noInstancePath));
    return painted(printable(card.title()), Paint::bold, hasColours) + painted(jackMarks, Paint::yellow, hasColours) +
           "\n" + painted(printable(id), Paint::dim, hasColours);
}

void Tree::showFooter(const std::vector<std::string>& leftOut) const
{
    std::size_t endpoints = 0;
    for (const Card& card : m_cards)
        endpoints += card.endpoints().size();
    std::string text = counted(m_cards.size(), "card") + ", " + counted(endpoints, "endpoint");
    const auto hasMark = [&](char mark) { return m_marks.find(mark) != std::string::npos; };
    if (hasMark('*'))
        text += ", * default";
    if (hasMark('m'))
        text += ", m default for multimedia";
    if (hasMark('c'))
        text += ", c default for communications";
    showDim(text);
    for (const std::string& line : leftOutNote(leftOut, m_environment.width))
        showDim(line);
}

void Tree::showDim(const std::string& line) const
{
    m_environment.out << painted(line, Paint::dim, m_environment.hasColours) << "\n";
}

/// @p card with the endpoints that the user wants to see.
Card filtered(const Arguments& arguments, const Card& card)
{
    Card::Content content = card.content();
    std::vector<Endpoint>& endpoints = content.endpoints;
    const auto isUnwanted = [&](const Endpoint& endpoint)
    {
        return (arguments.isOnlyActive && !endpoint.isActive()) ||
               (arguments.isOnlyOutputs && endpoint.flow() != Flow::output) ||
               (arguments.isOnlyInputs && endpoint.flow() != Flow::input);
    };
    endpoints.erase(std::remove_if(endpoints.begin(), endpoints.end(), isUnwanted), endpoints.end());
    return Card(std::move(content));
}

/// Cards of which nothing is left are left out.
std::vector<Card> filtered(const Arguments& arguments, const std::vector<Card>& cards)
{
    if (!arguments.isOnlyActive && !arguments.isOnlyOutputs && !arguments.isOnlyInputs)
        return cards;
    std::vector<Card> result;
    for (const Card& card : cards)
    {
        Card kept = filtered(arguments, card);
        if (!kept.endpoints().empty())
            result.push_back(std::move(kept));
    }
    return result;
}

/// An endpoint on one line, in columns that scripts can cut; what is not known is empty.
std::string shortLine(const Card& card, const Endpoint& endpoint)
{
    const std::optional<Volume>& volume = endpoint.volume();
    const Level level = volume ? volume->master : Level();
    const std::string muted = volume && volume->isMuted ? (*volume->isMuted ? "muted" : "unmuted") : "";
    std::string roles;
    for (const Role role : endpoint.roles().list())
        roles += (roles.empty() ? "" : ",") + std::string(keyOf(role));
    const std::vector<std::string> columns = {
        endpoint.id().text(),
        wordsOf(endpoint.flow()),
        endpoint.state() ? keyOf(*endpoint.state()) : "",
        roles,
        level.percent ? std::to_string(level.percent->rounded()) : "",
        level.decibels ? decimalText(static_cast<float>(level.decibels->value()), 2) : "",
        muted,
        endpoint.jackKind() ? keyOf(*endpoint.jackKind()) : "",
        card.title(),
        endpoint.title()};
    std::string line;
    for (const std::string& column : columns)
        line += (&column == &columns.front() ? "" : "\t") + printable(column);
    return line;
}

void showShort(const Environment& environment, const std::vector<Card>& cards)
{
    for (const Card& card : cards)
    {
        for (const Endpoint& endpoint : card.endpoints())
            environment.out << shortLine(card, endpoint) << "\n";
    }
}

std::size_t countProblems(const Snapshot& snapshot, const std::vector<Card>& cards)
{
    std::size_t count = snapshot.problems().size();
    for (const Card& card : cards)
    {
        count += card.problems().size();
        for (const Endpoint& endpoint : card.endpoints())
            count += endpoint.problems().size();
    }
    return count;
}

Json listJson(const Context& context, const Snapshot& snapshot, const std::vector<Card>& cards)
{
    Json list = Json::array();
    for (const Card& card : cards)
    {
        Json endpoints = Json::array();
        for (const Endpoint& endpoint : card.endpoints())
            endpoints.append(endpointJson(endpoint));
        list.append(cardJson(card).set("endpoints", endpoints).set("problems", problemsJson(card.problems())));
    }
    return machineDocument(context.session.machineName())
        .set("cards", list)
        .set("problems", problemsJson(snapshot.problems()));
}
}

void runList(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    const std::vector<Card> cards = filtered(context.arguments, requestedCards(context, snapshot));
    reportDenied(context, cards);
    if (context.arguments.isJson)
    {
        context.environment.out << listJson(context, snapshot, cards).text() << "\n";
        return;
    }
    if (context.arguments.isShort)
    {
        showShort(context.environment, cards);
        return;
    }
    if (snapshot.cards().empty())
        context.environment.out << "There is no sound card.\n";
    else if (cards.empty())
        context.environment.out << "There is no such endpoint.\n";
    else
        Tree(context.environment, cards).show();
    showProblems(context, countProblems(snapshot, cards), "--json and sonavit show ENDPOINT say why");
}
}
