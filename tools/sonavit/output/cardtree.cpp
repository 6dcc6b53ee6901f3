#include "tools/sonavit/output/cardtree.h"

#include "sonavit/nodekind.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <string>

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

/// The cards as a tree of lines.
class Tree
{
public:
    Tree(const Environment& environment, const std::vector<Card>& cards, const std::map<std::string, ShortId>& ids)
        : m_environment(environment),
          m_cards(cards),
          m_ids(ids)
    {
    }

    void show();

private:
    static Row header();
    Row row(const Endpoint& endpoint, bool isLast);
    std::string heading(const Card& card) const;
    void showFooter(const std::vector<std::string>& leftOut) const;
    void showDim(const std::string& line) const;

    const Environment& m_environment;
    const std::vector<Card>& m_cards;
    const std::map<std::string, ShortId>& m_ids;
    std::string m_marks; ///< all that occur
};

void Tree::show()
{
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
    const ShortId& id = m_ids.at(endpoint.id().text());
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
    for (const std::string& line : wrapped(text, m_environment.width))
        showDim(line);
    for (const std::string& line : leftOutNote(leftOut, m_environment.width))
        showDim(line);
}

void Tree::showDim(const std::string& line) const
{
    m_environment.out << painted(line, Paint::dim, m_environment.hasColours) << "\n";
}
}

void showCardTree(const Environment& environment, const std::vector<Card>& cards,
                  const std::map<std::string, ShortId>& ids)
{
    Tree(environment, cards, ids).show();
}
}
